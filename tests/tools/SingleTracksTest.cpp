// A film whose tracks are converted one by one and muxed, with the real tools.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/engines/MkvRuns.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

constexpr int lengthOfFilm = 8;
constexpr double tolerance = 0.3;

/// h264 (0), aac 2ch (1), srt (2).
QString filmClip()
{
    return clip(u"film-with-text.mkv"_s, [](const QString &path) {
        runProgram(u"mkvmerge"_s, {u"-o"_s, path, u"--language"_s, u"0:eng"_s, longMkv(lengthOfFilm, 5),
                                   u"--language"_s, u"0:eng"_s, srtFile()});
    });
}

} // namespace

class SingleTracksTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aTrackIsTakenWhereverItStandsInItsFile_data()
    {
        QTest::addColumn<QString>("picture");
        QTest::addColumn<QString>("sound");
        QTest::addColumn<QString>("passes");
        QTest::addColumn<QString>("codecs");
        QTest::newRow("the sound") << u"passthru"_s << u"ac3"_s << u"1"_s << u"h264 ac3"_s;
        QTest::newRow("both, in two passes") << u"h264"_s << u"ac3"_s << u"2"_s << u"h264 ac3"_s;
    }

    void aTrackIsTakenWhereverItStandsInItsFile()
    {
        QFETCH(QString, picture);
        QFETCH(QString, sound);
        QFETCH(QString, passes);
        QFETCH(QString, codecs);
        MkvRuns runs;
        const SelectionPointer selection =
            runs.runs.reencoded(runs.runs.film(filmClip(), u"a.mkv"_s), u"MKV"_s, passes);
        TrackList tracks = selection->trackList().first(2);
        tracks.at(0)->setUserCodec(picture);
        tracks.at(1)->setUserCodec(sound);
        tracks.at(1)->setUserNumberOfChannels(u"2"_s);
        tracks.at(1)->setUserBitRate(u"128"_s);
        tracks.at(1)->setUserAudioSettingsDictionaryArray(
            {{{u"userCodec"_s, sound}, {u"userNumberOfChannels"_s, u"2"_s}, {u"userBitRate"_s, u"128"_s}}});
        selection->setTrackList(tracks);
        const auto job = runs.add(selection, jobs::JobKind::Muxing);
        QVERIFY(runs.run());
        QVERIFY2(job->outcome().verdict == steps::Verdict::Ok, qPrintable(job->outcome().sentence));
        QCOMPARE(job->outputs().size(), 1);
        const QString output = job->outputs().constFirst().toLocalFile();
        QCOMPARE(codecsOf(output), codecs);
        QVERIFY(std::abs(secondsOf(output) - lengthOfFilm) < tolerance);
    }
};

TESSARAY_TEST(SingleTracksTest)
#include "SingleTracksTest.moc"
