#include "platform/VisibleText.h"
#include "support/TestMain.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;

class VisibleTextTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatATerminalWouldObeyIsSpelledOut_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown");
        const auto row = [](const char *name, const QString &text, const QString &shown) {
            QTest::newRow(name) << text << shown;
        };
        row("letters", u"Füße & 映画 🎬 'x' \"y\""_s, u"Füße & 映画 🎬 'x' \"y\""_s);
        row("empty", u""_s, u""_s);
        row("colours", u"\u001b[31mred\u001b[0m"_s, uR"(\x1b[31mred\x1b[0m)"_s);
        row("other controls", QString::fromUtf16(u"\0\a\b\u007f\u0085\u009b", 6),
            uR"(\x00\x07\x08\x7f\x85\x9b)"_s);
        row("tab", u"a\tb"_s, uR"(a\tb)"_s);
        row("line feed", u"a\nb\n"_s, uR"(a\nb\n)"_s);
        row("carriage return", u"a\r\nb"_s, uR"(a\r\nb)"_s);
        row("other ends of lines", u"a\u2028b\u2029c"_s, uR"(a\u2028b\u2029c)"_s);
        row("directions", u"\u061c\u200e\u200f\u202a\u202b\u202c\u202d\u202e\u2066\u2067\u2068\u2069"_s,
            uR"(\u061c\u200e\u200f\u202a\u202b\u202c\u202d\u202e\u2066\u2067\u2068\u2069)"_s);
        row("neighbours of them", u"\u061b\u200d\u2010\u2027\u202f\u2065\u206a\u00a0"_s,
            u"\u061b\u200d\u2010\u2027\u202f\u2065\u206a\u00a0"_s);
        row("a family", u"👩\u200d👩\u200d👧"_s, u"👩\u200d👩\u200d👧"_s);
        row("a backslash", uR"(a\b C:\Films \)"_s, uR"(a\b C:\Films \)"_s);
        row("a spelling that was written by hand", uR"(a\nb \x1b \\ \u202e \t \r)"_s,
            uR"(a\\nb \\x1b \\\ \\u202e \\t \\r)"_s);
        row("a backslash in front of a line feed", u"a\\\nb"_s, uR"(a\\\nb)"_s);
    }

    void whatATerminalWouldObeyIsSpelledOut()
    {
        QFETCH(QString, text);
        QTEST(platform::visible(text), "shown");
    }

    /// Every text of up to three of these is told apart from every other one.
    void noTwoTextsLookAlike()
    {
        const QStringList letters{u"\\"_s, u"\n"_s, u"n"_s, u"x"_s, u"1"_s, u"b"_s, u"\u001b"_s, u""_s};
        QHash<QString, QString> seen;
        for (const QString &a : letters) {
            for (const QString &b : letters) {
                for (const QString &c : letters) {
                    for (const QString &d : letters) {
                        const QString text = a + b + c + d;
                        const QString shown = platform::visible(text);
                        QVERIFY2(!seen.contains(shown) || seen.value(shown) == text, qPrintable(shown));
                        seen.insert(shown, text);
                    }
                }
            }
        }
        QVERIFY(seen.size() > 2000);
    }

    void aTextOfOursKeepsItsLines()
    {
        QCOMPARE(platform::visibleInLines(u"a\u001b\nb\n"_s), u"a\\x1b\nb\n"_s);
    }

    void jsonKeepsItsValues()
    {
        QString all;
        for (char16_t c = 0; c < 0x2100; ++c)
            all += QChar(c);
        const QJsonArray array{all, u"\\u202e \\"_s, u"\u202e"_s, 1};
        for (const auto format : {QJsonDocument::Compact, QJsonDocument::Indented}) {
            const QByteArray json = platform::visibleJson(QJsonDocument(array).toJson(format));
            QCOMPARE(QJsonDocument::fromJson(json).array(), array);
            QString shown = QString::fromUtf8(json);
            QVERIFY(!platform::steersTerminals(shown.remove(u'\n')));
            QVERIFY(json.contains("\\u007f") && json.contains("\\u009b") && json.contains("\\u202e"));
        }
    }
};

TESSARAY_TEST(VisibleTextTest)
#include "VisibleTextTest.moc"
