// What is answered for a separate file that is to be added, and what is left of one that is refused.
#include "media/KXVideoFile.h"

#include "support/ProbeJson.h"
#include "support/TestMain.h"
#include "support/media/AddingFixture.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTest>
#include <QTimer>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

const QByteArrayList aac{"index=0", "codec_type=audio", "codec_name=aac", "channels=2"};
const QByteArrayList srt{"index=0", "codec_type=subtitle", "codec_name=subrip"};
const QByteArrayList h264{"index=0", "codec_type=video", "codec_name=h264"};
const QByteArrayList png{"index=1", "codec_type=video", "codec_name=png"};
const QByteArrayList opus{"index=0", "codec_type=audio", "codec_name=opus"};
const QByteArrayList webvtt{"index=1", "codec_type=subtitle", "codec_name=webvtt"};
const QByteArrayList data{"index=1", "codec_type=data", "codec_name=bin_data"};

/// Where a refusal leaves the probe: nowhere, alone, or with the codec that was the problem.
enum class Left { Nothing, Probe, Codec };

} // namespace

class KXVideoFileAddedTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answers_data()
    {
        QTest::addColumn<QByteArray>("probe");
        QTest::addColumn<QString>("whatToDo");
        QTest::addColumn<QString>("refusal");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<int>("left");
        QTest::addColumn<QByteArray>("codec");
        const auto row = [](const char *name, const QList<QByteArrayList> &streams, const QString &whatToDo,
                            const QString &refusal, const QString &answer, Left left = Left::Nothing,
                            const QByteArray &codec = {}) {
            QTest::newRow(name) << probeJson(streams) << whatToDo << refusal << answer << int(left) << codec;
        };
        const QString add = u"add file"_s;
        const QString replace = u"replace file"_s;
        const QString none = u"not a video file"_s;
        const QString many = u"too many tracks"_s;
        const QString video = u"video track"_s;
        const QString addsVideo = u"adding video track"_s;
        const QString unknown = u"track not identified"_s;
        const QString notAVideo = u"not a video"_s;

        row("a lone audio stream", {aac}, add, {}, u"OK"_s);
        row("a lone subtitle", {srt}, add, {}, u"OK"_s);
        row("audio and data", {aac, data}, add, {}, u"OK"_s);
        row("a subtitle behind data", {data, srt}, add, {}, u"OK"_s);
        row("audio and an attachment", {aac, {"index=1", "codec_type=attachment"}}, add, {}, u"OK"_s);
        row("audio and a stream without a type", {aac, {"index=1", "codec_name=h264"}}, add, {}, u"OK"_s);
        row("audio and an empty type", {aac, {"index=1", "codec_type=", "codec_name=h264"}}, add, {},
            u"OK"_s);
        row("types are told in small letters", {{"index=0", "codec_type=Video", "codec_name=h264"}, srt}, add,
            {}, u"OK"_s);

        row("audio and a subtitle", {aac, srt}, replace, {}, many);
        row("a subtitle and audio", {srt, aac}, replace, {}, many);
        row("two audio streams", {aac, aac}, replace, many, many);
        row("two subtitles", {srt, srt}, replace, many, many);
        row("audio, a subtitle, audio", {aac, srt, aac}, replace, many, many);
        row("two audio streams and a video", {aac, aac, h264}, replace, many, many);

        row("a video", {h264}, replace, video, addsVideo);
        row("video and audio", {h264, aac}, replace, video, addsVideo);
        row("audio and a video behind it", {aac, h264}, replace, video, addsVideo);
        row("audio with a cover", {aac, png}, replace, video, addsVideo);
        row("only a cover", {png}, replace, video, addsVideo);
        row("a video of no known codec", {{"codec_type=video", "codec_name=hevc"}}, replace, video,
            addsVideo);
        row("a video in front of an unknown codec", {h264, opus}, replace, video, addsVideo);

        row("unknown audio", {opus}, add, unknown, unknown, Left::Codec, "opus");
        row("an unknown subtitle", {webvtt}, add, unknown, unknown, Left::Codec, "webvtt");
        row("audio without a codec", {{"codec_type=audio"}}, add, unknown, unknown, Left::Codec, "");
        row("a subtitle with an empty codec", {{"codec_type=subtitle", "codec_name="}}, add, unknown, unknown,
            Left::Codec, "");
        row("unknown audio in front of a video", {opus, h264}, replace, unknown, unknown, Left::Codec,
            "opus");
        row("known audio, unknown subtitle", {aac, webvtt}, replace, unknown, unknown, Left::Codec, "webvtt");
        row("known audio, unknown audio", {aac, opus}, replace, unknown, unknown, Left::Codec, "opus");
        row("a codec of the other kind", {{"codec_type=subtitle", "codec_name=flac"}}, add, unknown, unknown,
            Left::Codec, "flac");

        row("no streams", {}, none, notAVideo, notAVideo, Left::Probe);
        row("only data", {data}, none, notAVideo, notAVideo, Left::Probe);
        row("only a stream without a type", {{"codec_name=aac"}}, none, notAVideo, notAVideo, Left::Probe);
        row("only a type in capitals", {{"codec_type=AUDIO", "codec_name=aac"}}, none, notAVideo, notAVideo,
            Left::Probe);
        QTest::newRow("no list of streams") << QByteArray("{\n\n}\n") << replace << notAVideo << notAVideo
                                            << int(Left::Probe) << QByteArray();
        QTest::newRow("an empty answer")
            << QByteArray() << replace << notAVideo << notAVideo << int(Left::Probe) << QByteArray();
        QTest::newRow("a title of invalid data")
            << probeJson({aac + QByteArrayList{"tags.title=Invalid data found"}}) << replace << notAVideo
            << notAVideo << int(Left::Probe) << QByteArray();
    }

    void answers()
    {
        QFETCH(QByteArray, probe);
        QFETCH(QString, whatToDo);
        QFETCH(QString, refusal);
        QFETCH(QString, answer);
        QFETCH(int, left);
        QFETCH(QByteArray, codec);
        AddingFixture fixture;
        fixture.play(probe);
        const QString name = u"new.xyz"_s;
        fixture.newFile(name);
        const QStringList before = fixture.everything();
        QCOMPARE(fixture.whatToDo(name), whatToDo);
        // Of the question alone only a probe that gave no list is left.
        QCOMPARE(fixture.leftAnErrorFile(name), left == int(Left::Probe) && whatToDo == u"replace file"_s);
        fixture.removeErrorFile(name);

        const bool leaves = left != int(Left::Nothing);
        const QByteArray reason = left == int(Left::Codec) ? "\n\nProblem Codec: " + codec : QByteArray();
        const QByteArray expected = leaves ? probe.trimmed() + reason : QByteArray();
        const auto created = fixture.created(name);
        QCOMPARE(created.refusal, refusal);
        QCOMPARE(created.tracks.isEmpty(), !refusal.isEmpty());
        QCOMPARE(fixture.leftAnErrorFile(name), leaves);
        QCOMPARE(fixture.errorFile(name), expected);
        fixture.removeErrorFile(name);
        QCOMPARE(fixture.everything(), before);

        QCOMPARE(fixture.add(name), answer);
        QCOMPARE(fixture.leftAnErrorFile(name), leaves);
        QCOMPARE(fixture.errorFile(name), expected);
        QCOMPARE(fixture.everything() == before, answer != u"OK"_s);
    }

    /// A probe that finds nothing in a file may just not know subtitles of that kind.
    void anEmptyFileIsASubtitleByItsName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("isSubtitle");
        for (const QString &name : {u"a.srt"_s, u"a.ssa"_s, u"a.ass"_s, u"a.ttxt"_s, u"a.SRT"_s, u"a.Ass"_s,
                                    u"a.b.srt"_s, u"a.sRt"_s})
            QTest::newRow(qPrintable(name)) << name << true;
        for (const QString &name : {u"a.sub"_s, u"a.idx"_s, u"a.sup"_s, u"a.vtt"_s, u"a.txt"_s, u"a.mkv"_s,
                                    u"a.srt.txt"_s, u"a.srtx"_s, u"srt"_s, u"a"_s, u"a."_s})
            QTest::newRow(qPrintable(name)) << name << false;
    }

    void anEmptyFileIsASubtitleByItsName()
    {
        QFETCH(QString, name);
        QFETCH(bool, isSubtitle);
        for (const QList<QByteArrayList> &streams : {QList<QByteArrayList>{}, QList<QByteArrayList>{data}}) {
            AddingFixture fixture;
            fixture.playStreams(streams);
            const QUrl url = fixture.newFile(name);
            QCOMPARE(fixture.file().whatToDoWithFile(url),
                     isSubtitle ? u"add file"_s : u"not a video file"_s);
            QVERIFY(!fixture.leftAnErrorFile(name));
            QCOMPARE(fixture.file().addTrack(url), u"not a video"_s);
        }
    }

    /// The name does not help where the probe found streams, or no list of them.
    void theNameCountsForNothingElse()
    {
        AddingFixture fixture;
        fixture.playStreams({aac, srt});
        QCOMPARE(fixture.whatToDo(), u"replace file"_s);
        fixture.playStreams({h264});
        QCOMPARE(fixture.whatToDo(), u"replace file"_s);
        fixture.play("nothing");
        QCOMPARE(fixture.whatToDo(), u"replace file"_s);
    }

    void withNoFileOpenEverythingReplaces()
    {
        AddingFixture fixture(u""_s);
        fixture.playStreams({srt});
        for (const QString &name : {u"new.srt"_s, u"vanished.srt"_s, u"film.mkv"_s, u""_s})
            QCOMPARE(fixture.whatToDo(name), u"replace file"_s);
        QCOMPARE(fixture.file().whatToDoWithFile(QUrl()), u"replace file"_s);
        QVERIFY(fixture.runs().isEmpty());
    }

    /// Another refusal in between costs nothing of what was added before.
    void aRefusedFileChangesNothing()
    {
        AddingFixture fixture(u"Video,Audio,Subtitle"_s);
        fixture.playStreams({srt});
        QCOMPARE(fixture.add(), u"OK"_s);
        const QStringList before = fixture.everything();
        const auto refused = [&](const QByteArray &probe, const QString &answer) {
            fixture.play(probe);
            QCOMPARE(fixture.add(), answer);
            QCOMPARE(fixture.everything(), before);
        };
        refused(probeJson({aac, srt}), u"too many tracks"_s);
        refused(probeJson({aac, aac}), u"too many tracks"_s);
        refused(probeJson({h264}), u"adding video track"_s);
        refused(probeJson({opus}), u"track not identified"_s);
        refused(probeJson({}), u"not a video"_s);
        refused("nothing", u"not a video"_s);
        fixture.playStreams({aac});
        QCOMPARE(fixture.add(), u"OK"_s);
        QCOMPARE(fixture.file().trackList().size(), 5);
    }

    void theToolIsRunAsOftenAsNeeded_data()
    {
        QTest::addColumn<QByteArray>("probe");
        QTest::addColumn<int>("count");
        QTest::newRow("a track") << probeJson({srt}) << 1;
        QTest::newRow("a video") << probeJson({h264}) << 1;
        QTest::newRow("too many") << probeJson({aac, srt}) << 1;
        QTest::newRow("no list") << QByteArray("nothing") << 1;
        QTest::newRow("an unknown codec is probed again") << probeJson({opus}) << 2;
        QTest::newRow("no streams are probed again") << probeJson({}) << 2;
    }

    void theToolIsRunAsOftenAsNeeded()
    {
        QFETCH(QByteArray, probe);
        QFETCH(int, count);
        AddingFixture fixture;
        fixture.play(probe);
        fixture.add();
        QCOMPARE(fixture.runs().size(), count);
        const QByteArrayList expected{"-i", fixture.path().toUtf8(), "-show_streams", "-print_format",
                                      "json"};
        for (const FakeTool::Run &run : fixture.runs())
            QCOMPARE(run.arguments, expected);
    }

    /// Whatever it had found before: a tool that fails is heard by its error stream.
    void aToolThatFailsLeavesItsWords()
    {
        AddingFixture fixture;
        fixture.play({}, {u"out \"streams\": ["_s, u"err out of memory"_s, u"exit 1"_s});
        QCOMPARE(fixture.whatToDo(), u"replace file"_s);
        QCOMPARE(fixture.add(), u"not a video"_s);
        QCOMPARE(fixture.errorFile(), QByteArray("out of memory"));
    }

    void anOlderErrorFileIsReplaced()
    {
        AddingFixture fixture;
        fixture.scratch().write(u"media/new.srt.error.txt"_s, QByteArray(100000, 'x'));
        fixture.playStreams({opus});
        QCOMPARE(fixture.add(), u"track not identified"_s);
        QCOMPARE(fixture.errorFile(), probeJson({opus}).trimmed() + "\n\nProblem Codec: opus");
    }

    void whatIsNotOursIsNotOverwritten_data()
    {
        QTest::addColumn<QByteArray>("probe");
        QTest::newRow("unknown codec") << probeJson({opus});
        QTest::newRow("no streams") << probeJson({});
        QTest::newRow("no list") << QByteArray("nothing");
    }

    void whatIsNotOursIsNotOverwritten()
    {
        QFETCH(QByteArray, probe);
        AddingFixture fixture;
        fixture.play(probe);
        const QString precious = fixture.scratch().write(u"precious"_s, "film");
        const QString place = fixture.path(u"new.srt.error.txt"_s);
        QFile::link(precious, place);
        fixture.add();
        QVERIFY(QFileInfo(place).isSymLink());
        QCOMPARE(fixture.scratch().read(u"precious"_s), QByteArray("film"));
        QFile::remove(place);

        QFile::link(fixture.scratch().path(u"nowhere"_s), place);
        fixture.add();
        QVERIFY(!QFile::exists(fixture.scratch().path(u"nowhere"_s)));
        QFile::remove(place);

        QDir().mkpath(place);
        fixture.add();
        QVERIFY(QDir(place).isEmpty());
        QDir().rmdir(place);

        // A second name of the added file itself, and of any other, keeps its content.
        QCOMPARE(::link(qPrintable(fixture.path()), qPrintable(place)), 0);
        fixture.add();
        QCOMPARE(fixture.scratch().read(u"media/new.srt"_s), QByteArray("new"));
        QFile::remove(place);
        QCOMPARE(::link(qPrintable(precious), qPrintable(place)), 0);
        fixture.add();
        QCOMPARE(fixture.scratch().read(u"precious"_s), QByteArray("film"));
    }

    void onlyPlainFilesAreProbed()
    {
        AddingFixture fixture;
        fixture.playStreams({srt});
        QCOMPARE(::mkfifo(qPrintable(fixture.path(u"pipe.srt"_s)), 0600), 0);
        QDir().mkpath(fixture.path(u"folder.srt"_s));
        QFile::link(fixture.scratch().path(u"nowhere"_s), fixture.path(u"dangling.srt"_s));
        const QStringList before = fixture.names();
        for (const QString &name : {u"pipe.srt"_s, u"folder.srt"_s, u"dangling.srt"_s, u"vanished.srt"_s}) {
            QCOMPARE(fixture.whatToDo(name), u"replace file"_s);
            QCOMPARE(fixture.created(name).refusal, u"not a video"_s);
            QCOMPARE(fixture.add(name), u"not a video"_s);
        }
        for (const QUrl &url :
             {QUrl(), QUrl(u"https://example.org/a.srt"_s), QUrl::fromLocalFile(u"/dev/zero"_s)})
            QCOMPARE(fixture.file().addTrack(url), u"not a video"_s);
        QVERIFY(fixture.runs().isEmpty());
        QCOMPARE(fixture.names(), before);
        QCOMPARE(fixture.file().trackList().size(), 2);
    }

    void aLinkToAFileIsAsGoodAsTheFile()
    {
        AddingFixture fixture;
        fixture.playStreams({srt});
        QFile::link(fixture.path(), fixture.path(u"link.srt"_s));
        QCOMPARE(fixture.add(u"link.srt"_s), u"OK"_s);
        QCOMPARE(fixture.file().trackList().constLast()->trackFileURL(), fixture.url(u"link.srt"_s));
    }

    void withoutToolsNothingIsAdded()
    {
        AddingFixture fixture;
        KXVideoFile homeless(nullptr);
        homeless.setTrackList(tracksOfTypes(u"Video"_s));
        QCOMPARE(homeless.whatToDoWithFile(fixture.url()), u"replace file"_s);
        QCOMPARE(homeless.addTrack(fixture.url()), u"not a video"_s);
        QVERIFY(!fixture.leftAnErrorFile());
        // The shell's complaint about a missing tool is left like any other answer.
        QCOMPARE(fixture.add(), u"not a video"_s);
        QVERIFY(fixture.errorFile().contains("ffprobe"));
    }

    /// Bytes that are no text give no answer, so none is left.
    void anAnswerThatIsNoTextLeavesNothing()
    {
        AddingFixture fixture;
        fixture.play("\"streams\": [ \xe9\xff");
        QCOMPARE(fixture.add(), u"not a video"_s);
        QVERIFY(!fixture.leftAnErrorFile());
    }

    void aFileThatVanishesOnTheWayLeavesNothing()
    {
        AddingFixture fixture;
        fixture.playStreams({opus});
        const QString path = fixture.path();
        QTimer::singleShot(0, this, [&] { QFile::remove(path); });
        QCOMPARE(fixture.add(), u"track not identified"_s);
        QVERIFY(fixture.names().isEmpty());
        QCOMPARE(fixture.runs().size(), 1);
    }

    void aStopBeforehandRunsNothing()
    {
        AddingFixture fixture;
        fixture.play("nothing");
        fixture.file().setStopFlag(std::make_shared<std::atomic_bool>(true));
        QCOMPARE(fixture.whatToDo(), u"replace file"_s);
        QCOMPARE(fixture.created().refusal, u"not a video"_s);
        QCOMPARE(fixture.add(), u"not a video"_s);
        QVERIFY(fixture.runs().isEmpty());
        QCOMPARE(fixture.names(), QStringList{u"new.srt"_s});
    }

    void aStopEndsAHangingProbe_data()
    {
        QTest::addColumn<int>("run");
        QTest::addColumn<QByteArray>("probe");
        QTest::newRow("the first run") << 1 << probeJson({srt});
        QTest::newRow("after an unknown codec") << 2 << probeJson({opus});
        QTest::newRow("after no streams") << 2 << probeJson({});
    }

    void aStopEndsAHangingProbe()
    {
        QFETCH(int, run);
        QFETCH(QByteArray, probe);
        AddingFixture fixture;
        fixture.hangFrom(run, probe);
        const QStringList before = fixture.everything();
        const auto stop = std::make_shared<std::atomic_bool>(false);
        fixture.file().setStopFlag(stop);
        QTimer::singleShot(300, this, [&] { *stop = true; });
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(fixture.add(), u"not a video"_s);
        QVERIFY(clock.elapsed() >= 250);
        QCOMPARE(fixture.countedRuns(), run);
        QCOMPARE(fixture.names(), QStringList{u"new.srt"_s});
        QCOMPARE(fixture.everything(), before);
    }

    void aStopEndsTheQuestionToo()
    {
        AddingFixture fixture;
        fixture.hangFrom(1, {});
        const auto stop = std::make_shared<std::atomic_bool>(false);
        fixture.file().setStopFlag(stop);
        QTimer::singleShot(300, this, [&] { *stop = true; });
        QCOMPARE(fixture.whatToDo(), u"replace file"_s);
        QCOMPARE(fixture.names(), QStringList{u"new.srt"_s});
    }
};

TESSARAY_TEST(KXVideoFileAddedTest)
#include "KXVideoFileAddedTest.moc"
