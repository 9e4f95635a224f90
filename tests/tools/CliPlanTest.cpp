// The command "plan": what it says of real films, and that the conversion then does just that.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/TestMain.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;

namespace {

/// "1 ac3 copied": what becomes of each track, and why.
QStringList fatesIn(const QJsonArray &tracks)
{
    QStringList fates;
    for (const QJsonValue &value : tracks) {
        const QJsonObject track = value.toObject();
        if (track.value(u"kind"_s) == QJsonValue(u"chapters"_s))
            continue; // a plan does not read these
        fates.append(u"%1 %2 %3 %4 %5"_s.arg(track.value(u"index"_s).toInt())
                         .arg(track.value(u"codec"_s).toString(), track.value(u"became"_s).toString(),
                              track.value(u"to"_s).toString(), track.value(u"reason"_s).toString()));
    }
    fates.sort();
    return fates;
}

/// 62 s of noise at 25 pictures a second with a sound, which need every bit that they are given.
QString noisyFilm()
{
    return support::clip(u"noise-62s.mkv"_s, [](const QString &path) {
        support::runProgram(
            u"ffmpeg"_s,
            u"-nostdin -y -v error -f lavfi -i color=gray:s=176x144:r=25:d=62,noise=alls=60:allf=t -f lavfi "
            u"-i "
            "anoisesrc=d=62:r=48000 -c:v libx264 -preset ultrafast -b:v 1500k -c:a ac3 -b:a 192k"_s.split(
                u' ')
                << path);
    });
}

} // namespace

class CliPlanTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_cli = std::make_unique<CliFixture>(); }

    void aPlanIsWhatTheReceiptTellsAfterwards_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::newRow("a guess") << QStringList{u"--device"_s,       u"PS3"_s,       u"--auto"_s, u"speed"_s,
                                                u"--track-preset"_s, u"All Tracks"_s};
        QTest::newRow("by hand") << QStringList{u"--video"_s, u"1pass"_s,    u"--subtitles"_s,
                                                u"burn"_s,    u"--tracks"_s, u"0,2,3"_s};
    }

    void aPlanIsWhatTheReceiptTellsAfterwards()
    {
        QFETCH(QStringList, options);
        const QString film = m_cli->clip(support::fullMkv(), u"film.mkv"_s);
        const auto plan = m_cli->run(QStringList{u"plan"_s, u"film.mkv"_s, u"--json"_s} + options);
        QVERIFY2(plan.status == 0, plan.error.constData());
        QCOMPARE(m_cli->mediaNames(), QStringList{u"film.mkv"_s});
        const QJsonObject told = plan.objects().first();
        QCOMPARE(told.value(u"source"_s).toString(), film);
        QCOMPARE(told.value(u"outputs"_s).toArray(), QJsonArray{m_cli->media(u"film.m4v"_s)});
        QVERIFY(qAbs(told.value(u"seconds"_s).toDouble() - 8) < 0.2);
        QCOMPARE(told.value(u"sourceBytes"_s).toInteger(), QFileInfo(film).size());
        QCOMPARE(told.value(u"problems"_s).toArray(), QJsonArray());
        const auto run = m_cli->run(QStringList{u"convert"_s, u"film.mkv"_s, u"--json"_s} + options);
        QVERIFY2(run.status == 0, run.error.constData());
        const QJsonObject done = run.objects().constLast();
        QCOMPARE(fatesIn(told.value(u"tracks"_s).toArray()), fatesIn(done.value(u"tracks"_s).toArray()));
        QCOMPARE(done.value(u"outputs"_s).toArray(), told.value(u"outputs"_s).toArray());
    }

    void forPeople()
    {
        m_cli->clip(support::fullMkv(), u"film.mkv"_s);
        const auto run =
            m_cli->run({u"plan"_s, u"film.mkv"_s, u"--device"_s, u"iPhone 4"_s, u"--auto"_s, u"quality"_s});
        QVERIFY2(run.status == 0 && run.error.isEmpty(), run.error.constData());
        const QString text = QString::fromUtf8(run.output);
        for (const QString &part : {u"film.m4v for iPhone 4, about "_s, u"re-encoded to h264"_s,
                                    u"in two passes"_s, u"plays AAC, not AC3."_s, u"It was not chosen."_s})
            QVERIFY2(text.contains(part), qPrintable(text));
    }

    void problemsAreTold()
    {
        m_cli->clip(support::fullMkv(), u"film.mkv"_s);
        support::writeContent(m_cli->media(u"film.m4v"_s), "x");
        support::writeContent(m_cli->media(u"bad.mkv"_s), "no film");
        const auto run = m_cli->run({u"plan"_s, u"film.mkv"_s, u"bad.mkv"_s, u"--json"_s});
        QCOMPARE(run.status, 2);
        QVERIFY(run.objects().at(0).value(u"problems"_s).toArray().at(0).toString().contains(u"film.m4v"_s));
        QCOMPARE(run.objects().at(1).value(u"problems"_s).toArray(), QJsonArray{u"not a video"_s});
        QCOMPARE(m_cli->run({u"plan"_s, u"film.mkv"_s, u"--force"_s}).status, 0);
    }

    void twoFilmsThatWantOneNameAreWrongUsage()
    {
        m_cli->clip(support::fullMkv(), u"film.mkv"_s);
        m_cli->clip(support::textMp4(), u"film.mp4"_s);
        QCOMPARE(m_cli->run({u"plan"_s, u"film.mkv"_s, u"film.mp4"_s}).status, 64);
        QCOMPARE(m_cli->run({u"plan"_s}).status, 64);
        QCOMPARE(m_cli->run({u"plan"_s, u"film.mkv"_s, u"--commands"_s, u"--json"_s}).status, 64);
        QCOMPARE(m_cli->run({u"plan"_s, u"film.mkv"_s, u"--dry-run"_s}).status, 64);
    }

    /// Each line does one film, in any folder, whatever its name.
    void commandsRunInAnyFolder()
    {
        const QStringList names{u"it's $(touch gone) a \"film\".mkv"_s, u"-x.mkv"_s};
        for (const QString &name : names)
            m_cli->clip(support::fullMkv(), name);
        QDir(m_cli->media()).mkdir(u"out"_s);
        const auto plan =
            m_cli->run(QStringList{u"plan"_s, u"--commands"_s, u"--device"_s, u"Apple TV 2"_s,
                                   u"--save-dir"_s, u"out"_s, u"--video"_s, u"passthru"_s, u"--"_s} +
                       names);
        QVERIFY2(plan.status == 0, plan.error.constData());
        QCOMPARE(plan.lines().size(), names.size());
        QProcess shell;
        shell.setWorkingDirectory(m_cli->scratch().path());
        shell.setProcessEnvironment(m_cli->environment());
        shell.start(u"/bin/sh"_s, {u"-e"_s, u"-c"_s, QString::fromUtf8(plan.output)});
        QVERIFY(shell.waitForFinished(240000));
        QVERIFY2(shell.exitCode() == 0, shell.readAllStandardError().constData());
        QStringList made = QDir(m_cli->media(u"out"_s)).entryList(QDir::Files);
        made.removeIf([](const QString &name) { return !name.endsWith(u".m4v"_s); });
        QCOMPARE(made, QStringList({u"-x.m4v"_s, u"it's $(touch gone) a \"film\".m4v"_s}));
        QVERIFY(!QFile::exists(m_cli->scratch().path(u"gone"_s)));
    }

    void theSizeIsNearTheResult()
    {
        m_cli->clip(noisyFilm(), u"film.mkv"_s);
        const QStringList options{u"film.mkv"_s,        u"--json"_s, u"--video"_s, u"1pass"_s,
                                  u"--video-bitrate"_s, u"600"_s,    u"--audio"_s, u"1=passthru,aac:2:96"_s};
        const auto plan = m_cli->run(QStringList{u"plan"_s} + options);
        const double estimate = plan.objects().first().value(u"estimatedBytes"_s).toDouble();
        const auto run = m_cli->run(QStringList{u"convert"_s} + options);
        QVERIFY2(run.status == 0, run.error.constData());
        const auto size = static_cast<double>(QFileInfo(m_cli->media(u"film.m4v"_s)).size());
        QVERIFY2(qAbs(estimate - size) < 0.15 * size, qPrintable(u"%1 for %2"_s.arg(estimate).arg(size)));
        const QJsonObject progress = lastProgress(run);
        QVERIFY(progress.value(u"percent"_s).toDouble() > 0);
        QVERIFY(progress.value(u"elapsedSeconds"_s).isDouble());
        QVERIFY(progress.value(u"speed"_s).toDouble() > 0);
        QVERIFY(progress.value(u"fps"_s).toDouble() > 0);
        QVERIFY(progress.contains(u"leftSeconds"_s));
    }

    void aResultThatWouldBeLargerIsToldBefore()
    {
        m_cli->clip(support::blackMkv(), u"film.mkv"_s);
        const QStringList options{u"film.mkv"_s, u"--video"_s, u"1pass"_s, u"--video-bitrate"_s, u"20000"_s};
        const auto plan = m_cli->run(QStringList{u"plan"_s} + options);
        QVERIFY2(QString::fromUtf8(plan.output).contains(u"note: About 20 MB, more than the "_s),
                 plan.output.constData());
        const auto run = m_cli->run(QStringList{u"convert"_s} + options);
        QVERIFY(run.said().contains(u"About 20 MB, more than the "_s));
    }

private:
    static QJsonObject lastProgress(const CliFixture::Run &run)
    {
        QJsonObject last;
        for (const QJsonObject &object : run.objects()) {
            const bool isRunning = object.value(u"progress"_s).toString().endsWith(u'%');
            if (object.value(u"event"_s) == QJsonValue(u"progress"_s) && isRunning)
                last = object;
        }
        return last;
    }

    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliPlanTest)
#include "CliPlanTest.moc"
