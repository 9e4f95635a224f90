#include "cli/Console.h"

#include <QTest>

using namespace Qt::StringLiterals;

class PrintableTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatATerminalWouldObeyIsTakenOut_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("inOneLine");
        const auto row = [](const char *name, const QString &text, const QString &shown,
                            const QString &inOneLine) { QTest::newRow(name) << text << shown << inOneLine; };
        row("letters", u"Füße & 映画 🎬 'x' \"y\""_s, u"Füße & 映画 🎬 'x' \"y\""_s,
            u"Füße & 映画 🎬 'x' \"y\""_s);
        row("empty", u""_s, u""_s, u""_s);
        row("colours", u"\u001b[31mred\u001b[0m"_s, u"?[31mred?[0m"_s, u"?[31mred?[0m"_s);
        row("other controls", u"\u0000\u0007\u0008\u007f\u0085\u009b"_s, u"??????"_s, u"??????"_s);
        row("tab", u"a\tb"_s, u"a\tb"_s, u"a\tb"_s);
        row("line feed", u"a\nb\n"_s, u"a\nb\n"_s, u"a?b?"_s);
        row("carriage return", u"a\r\nb"_s, u"a?\nb"_s, u"a??b"_s);
        row("other ends of lines", u"a\u2028b\u2029c"_s, u"a\u2028b\u2029c"_s, u"a?b?c"_s);
        row("a family", u"👩\u200d👩\u200d👧"_s, u"👩\u200d👩\u200d👧"_s, u"👩\u200d👩\u200d👧"_s);
    }

    void whatATerminalWouldObeyIsTakenOut()
    {
        QFETCH(QString, text);
        QTEST(cli::printable(text), "shown");
        QTEST(cli::inOneLine(text), "inOneLine");
    }
};

QTEST_GUILESS_MAIN(PrintableTest)
#include "PrintableTest.moc"
