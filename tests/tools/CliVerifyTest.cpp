// With --verify a finished film gets its name when its copied tracks are those of the source to the bit, and
// the job says so; a byte that a tool flipped, which neither lengths nor packets show, is found.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/Words.h"
#include "support/jobs/CheckClips.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::words;

namespace {

/// Flips a bit in the middle of what it has written; what it only reads it lets be.
const QString flippingFfmpeg = u"case \" $* \" in *\" streamhash \"*) sleep 1; exec ffmpeg \"$@\";; esac\n"
                               "ffmpeg \"$@\"; status=$?\n"
                               "for output; do :; done\n"
                               "at=$(($(stat -c %s \"$output\") / 2))\n"
                               "byte=$(od -An -tu1 -j$at -N1 \"$output\")\n"
                               "printf \"\\\\$(printf %03o $((byte ^ 1)))\" |\n"
                               "    dd of=\"$output\" bs=1 seek=$at conv=notrunc 2>/dev/null\n"
                               "exit $status\n"_s;
const QString hangingFfmpeg = u"case \" $* \" in *\" streamhash \"*) exec sleep 100;; esac\n"
                              "exec ffmpeg \"$@\"\n"_s;

struct Told
{
    int status = -1;
    QString message;
    QStringList proofs; ///< of tracks that are in an output
    QStringList outputs;
    QStringList progress;
    QString log;
};

Told toldBy(const CliFixture::Run &run)
{
    Told told;
    told.status = run.status;
    for (const QJsonObject &object : run.objects()) {
        if (object.value(u"event"_s) == u"progress"_s)
            told.progress.append(object.value(u"progress"_s).toString());
        if (object.value(u"event"_s) != u"done"_s)
            continue;
        told.message = object.value(u"message"_s).toString();
        for (const QJsonValue track : object.value(u"tracks"_s).toArray()) {
            if (!track[u"output"_s].isNull())
                told.proofs.append(track[u"proof"_s].toString());
        }
        for (const QJsonValue output : object.value(u"outputs"_s).toArray())
            told.outputs.append(QFileInfo(output.toString()).fileName());
        const QString log = object.value(u"log"_s).toString();
        if (!log.isEmpty())
            told.log = QString::fromUtf8(support::contentOf(log));
    }
    return told;
}

} // namespace

class CliVerifyTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void copiesAreProven_data()
    {
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("message");
        struct Row
        {
            QString source;
            QString line;
            QString message;
        };
        QList<Row> rows;
        for (const QString &source : {u"mkv"_s, u"mp4"_s, u"mov"_s, u"ts"_s}) {
            rows.append({source, u"convert FILM"_s, u"film.m4v: proven bit for bit."_s});
            rows.append({source, u"convert FILM --kind mkv"_s, u"mkv: proven bit for bit."_s});
        }
        rows.append({u"mkv"_s, u"remux FILM"_s, u"film.mkv.remux.mkv: proven bit for bit."_s});
        rows.append({u"mkv"_s, u"join FILM FILM"_s, u"film.mkv.joined.mkv: proven bit for bit."_s});
        rows.append({u"mp4"_s, u"join FILM FILM"_s, u"film.mp4.joined.mp4: proven bit for bit."_s});
        rows.append({u"mkv"_s, u"split FILM --duration 00:00:20"_s,
                     u"film.mkv.split-001.mkv: proven bit for bit."_s});
        rows.append(
            {u"mkv"_s, u"extract FILM"_s,
             u"film.mkv.stream0.h264: proven bit for bit. film.mkv.stream1.aac: proven bit for bit."_s});
        for (const Row &row : support::drawn(rows, 5))
            QTest::addRow("%s: %s", qPrintable(row.source), qPrintable(row.line))
                << row.source << row.line << row.message;
    }

    void copiesAreProven()
    {
        QFETCH(QString, source);
        QFETCH(QString, line);
        QFETCH(QString, message);
        const CliFixture cli;
        const QString film = cli.clip(support::minuteOf(source), u"film."_s + source);
        const Told told = run(cli, line, film);
        QCOMPARE(told.status, 0);
        QVERIFY2(told.message.contains(message), qPrintable(told.message));
        QVERIFY(!told.proofs.isEmpty());
        QCOMPARE(told.proofs.count(u"bits"_s), told.proofs.size());
        QVERIFY2(told.log.contains(u"; the same bits\n"_s), qPrintable(told.log));
        QVERIFY2(told.log.contains(message), qPrintable(told.log));
    }

    void whereNoWayIsKnownItIsNotProven()
    {
        const CliFixture cli;
        const Told told = run(cli, u"remux FILM"_s, cli.clip(support::vobsubMkv(), u"film.mkv"_s));
        QCOMPARE(told.status, 0);
        QCOMPARE(told.message, u"film.mkv.remux.mkv: not proven bit for bit: subtitle 6 (dvd_subtitle)."_s);
        QCOMPARE(told.proofs, QStringList(6, u"bits"_s) + QStringList{u"notProven"_s});
    }

    void aStretchIsNotProven()
    {
        const CliFixture cli;
        const Told told = run(cli, u"split FILM --time 00:00:10-00:00:30"_s,
                              cli.clip(support::minuteOf(u"mkv"_s), u"film.mkv"_s));
        QCOMPARE(told.status, 0);
        QCOMPARE(told.message,
                 u"film.mkv.split.mkv: not proven bit for bit: video 0 (h264), audio 1 (aac)."_s);
        QCOMPARE(told.proofs, (QStringList{u"notProven"_s, u"notProven"_s}));
        QVERIFY2(told.log.contains(u"; lengths compared; not proven bit for bit\n"_s), qPrintable(told.log));
    }

    void keyFramesOfEncodedVideoAreDecoded()
    {
        const CliFixture cli;
        const Told told =
            run(cli, u"convert FILM --video 1pass"_s, cli.clip(support::longMkv(4), u"film.mkv"_s));
        QCOMPARE(told.status, 0);
        QCOMPARE(told.message, u"film.m4v: proven bit for bit; its key frames decode."_s);
        QVERIFY(!told.proofs.contains(u"notProven"_s));
    }

    void aFlippedByteIsFound()
    {
        CliFixture cli;
        cli.useOwnTools();
        cli.setTool(u"ffmpeg/ffmpeg"_s, flippingFfmpeg);
        const Told told = run(cli, u"convert FILM"_s, cli.clip(support::minuteOf(u"mkv"_s), u"film.mkv"_s));
        QCOMPARE(told.status, 2);
        QVERIFY2(told.message.contains(u" of film.mkv ("_s) &&
                     told.message.contains(u") is not the same in film.m4v, bit for bit."_s),
                 qPrintable(told.message));
        QVERIFY(told.outputs.isEmpty());
        QVERIFY(cli.mediaNames().contains(u"film (incomplete).m4v"_s));
        QVERIFY(!cli.mediaNames().contains(u"film.m4v"_s));
        QVERIFY(told.progress.contains(u"verifying"_s)); // each of its tools takes a second here
    }

    /// That is what it is for: nothing else sees it.
    void withoutItAFlippedByteIsNotFound()
    {
        CliFixture cli;
        cli.useOwnTools();
        cli.setTool(u"ffmpeg/ffmpeg"_s, flippingFfmpeg);
        const QString film = cli.clip(support::minuteOf(u"mkv"_s), u"film.mkv"_s);
        QCOMPARE(cli.run({u"convert"_s, film}).status, 0);
    }

    void thePreferenceVerifiesToo()
    {
        const CliFixture cli;
        QCOMPARE(cli.run(words(u"prefs set verifyFlag true"_s)).status, 0);
        const QString film = cli.clip(support::longMkv(4), u"film.mkv"_s);
        const Told told = toldBy(cli.run({u"--json"_s, u"remux"_s, film}));
        QCOMPARE(told.message, u"film.mkv.remux.mkv: proven bit for bit."_s);
    }

    void itCanBeInterrupted()
    {
        CliFixture cli;
        cli.useOwnTools();
        cli.setTool(u"ffmpeg/ffmpeg"_s, hangingFfmpeg);
        const QString film = cli.clip(support::longMkv(4), u"film.mkv"_s);
        const auto process = cli.start({u"--json"_s, u"convert"_s, film, u"--verify"_s});
        QByteArray output;
        QVERIFY(support::waitFor([&] {
            output += process->readAllStandardOutput();
            return output.contains("verifying");
        }));
        ::kill(static_cast<pid_t>(process->processId()), SIGINT);
        QCOMPARE(CliFixture::outcomeOf(*process).status, 130);
        QCOMPARE(cli.mediaNames(), QStringList{u"film.mkv"_s});
        QVERIFY(support::waitFor([&] { return cli.processes().isEmpty(); }));
    }

private:
    static Told run(const CliFixture &cli, const QString &line, const QString &film)
    {
        QStringList all{u"--json"_s, u"--verify"_s, u"--keep-logs"_s};
        for (const QString &word : line.split(u' '))
            all.append(word == u"FILM"_s ? film : word);
        return toldBy(cli.run(all));
    }
};

TESSARAY_TEST(CliVerifyTest)
#include "CliVerifyTest.moc"
