#include "tools/PastableText.h"
#include "platform/VisibleText.h"
#include "support/HostileTexts.h"
#include "support/TestMain.h"

#include <QProcess>
#include <QTest>

#include <random>

using namespace Qt::StringLiterals;

namespace {

const QStringList shells{u"dash"_s, u"bash"_s};

/// What a terminal obeys, and what a shell does, in every order.
QStringList hostileWords()
{
    const QStringList pieces{u"\n"_s,     u"\n\n"_s,   u"\t"_s,         u"\r"_s,        u"\u001b[2J"_s,
                             u"\u007f"_s, u"\u009b"_s, u"\u202e"_s,     u"\u2028"_s,    u"\u061c"_s,
                             u"'"_s,      u"\""_s,     u"$(touch X)"_s, u"`touch X`"_s, u"\\"_s,
                             u"\\n"_s,    u"%s%n"_s,   u"!!"_s,         u"\\033"_s,     u"é"_s,
                             u"🎬"_s,      u"-"_s,      u" "_s,          u"1"_s};
    std::mt19937 random(12); // NOLINT: the same on every run
    QStringList words = support::hostileTexts(120) + pieces;
    while (words.size() < 260) {
        QString word;
        for (unsigned left = 1 + random() % 6; left > 0; --left)
            word += pieces.at(static_cast<qsizetype>(random() % static_cast<unsigned>(pieces.size())));
        words.append(word);
    }
    return words;
}

/// What the command printed when its line was fed to the shell as if it were pasted.
QByteArray pasted(const QString &shell, const QString &line)
{
    QProcess process;
    process.start(shell, QStringList());
    process.write((line + u'\n').toUtf8());
    process.closeWriteChannel();
    process.waitForFinished();
    return process.readAllStandardError() + process.readAllStandardOutput();
}

QByteArray betweenZeros(const QStringList &words)
{
    QByteArray bytes;
    for (const QString &word : words)
        bytes += word.toUtf8() + '\0';
    return bytes;
}

} // namespace

class PastableTextTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aPlainCommandStaysAsItIs()
    {
        QCOMPARE(
            tools::pastableCommand({{u"LANG"_s, u"C"_s}}, {u"/bin/echo"_s, u"it's"_s, u"a\\nb"_s, u"é"_s}),
            u"LANG=C /bin/echo 'it'\\''s' 'a\\nb' 'é'"_s);
        const QString line = u"export A=\"a!b%c\\d\"; echo 'é'"_s;
        QCOMPARE(tools::pastableLine(line), line);
    }

    void whatATerminalObeysIsBuiltByTheShell()
    {
        QCOMPARE(tools::pastableCommand({}, {u"echo"_s, u"a\u001b[31mb"_s}),
                 u"echo 'a'\"$(printf '\\033')\"'[31mb'"_s);
        QCOMPARE(tools::pastableCommand({}, {u"echo"_s, u"a\nbc"_s}),
                 u"echo 'a'\"$(printf '\\012\\142')\"'c'"_s); // a line feed at the end would be lost
    }

    void everyWordArrivesToTheByte_data()
    {
        QTest::addColumn<QString>("shell");
        for (const QString &shell : shells)
            QTest::newRow(qPrintable(shell)) << shell;
    }

    void everyWordArrivesToTheByte()
    {
        QFETCH(QString, shell);
        for (const QString &word : hostileWords()) {
            const QStringList words{word, u"x"_s, word};
            const QString line = tools::pastableCommand({}, QStringList{u"printf"_s, u"%s\\0"_s} + words);
            QVERIFY2(!platform::steersTerminals(line), qPrintable(line));
            QCOMPARE(pasted(shell, line), betweenZeros(words));
        }
    }

    void settingsArriveToTheByte_data() { everyWordArrivesToTheByte_data(); }

    void settingsArriveToTheByte()
    {
        QFETCH(QString, shell);
        for (const QString &value : hostileWords()) {
            const QString line = tools::pastableCommand({{u"SETTING"_s, value}},
                                                        {u"sh"_s, u"-c"_s, u"printf '%s\\0' \"$SETTING\""_s});
            QVERIFY2(!platform::steersTerminals(line), qPrintable(line));
            QCOMPARE(pasted(shell, line), betweenZeros({value}));
        }
    }

    void aWholeLineDoesWhatItDid_data() { everyWordArrivesToTheByte_data(); }

    void aWholeLineDoesWhatItDid()
    {
        QFETCH(QString, shell);
        for (const QString &word : hostileWords()) {
            QString quoted = word;
            quoted.replace(u"'"_s, u"'\\''"_s);
            const QString line =
                tools::pastableLine(u"A='"_s + quoted + u"'; printf '%s\\0' \"$A\" 'a!b' é"_s);
            QVERIFY2(!platform::steersTerminals(line), qPrintable(line));
            QCOMPARE(pasted(shell, line), betweenZeros({word, u"a!b"_s, u"é"_s}));
        }
    }
};

TESSARAY_TEST(PastableTextTest)
#include "PastableTextTest.moc"
