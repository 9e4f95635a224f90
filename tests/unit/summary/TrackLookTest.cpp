// What a track is, and what becomes of it, in a few words.
#include "summary/TrackLook.h"
#include "media/KXVideoFile.h"
#include "selection/ConversionSettings.h"
#include "selection/KXSelection.h"
#include "summary/ConversionSummary.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using selection::AudioOutput;
using selection::TrackEdit;

namespace {

TrackPointer trackOf(const QString &type, const QString &codec, const QString &channels = u"0"_s)
{
    auto track = std::make_shared<KXVideoTrack>();
    track->setTrackType(type);
    track->setTrackCodec(codec);
    track->setTrackNumberOfChannels(channels);
    track->setTrackSelected(true);
    return track;
}

TrackPointer soundOf(const QString &codec, const QString &channels, const selection::AudioOutputs &outputs)
{
    const TrackPointer track = trackOf(u"Audio"_s, codec, channels);
    selection::writeOutputs(*track, outputs);
    return track;
}

TrackPointer treated(const TrackPointer &track, const QString &userCodec)
{
    track->setUserCodec(userCodec);
    return track;
}

} // namespace

class TrackLookTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void codecsAsTheyStandOnBoxes()
    {
        QCOMPARE(summary::codecText(*trackOf(u"Video"_s, u"h264"_s)), u"H.264"_s);
        QCOMPARE(summary::codecText(*trackOf(u"Audio"_s, u"ac3"_s)), u"AC3"_s);
        QCOMPARE(summary::codecText(*trackOf(u"Subtitle"_s, u"srt"_s)), u"SRT"_s);
        QCOMPARE(summary::codecText(*trackOf(u"Subtitle"_s, u"none"_s)), QString());
        const TrackPointer enhanced = trackOf(u"Audio"_s, u"ac3"_s);
        enhanced->setProbedCodecName(u"eac3"_s);
        QCOMPARE(summary::codecText(*enhanced), u"E-AC3"_s);
        const TrackPointer dts = trackOf(u"Audio"_s, u"dtshd"_s);
        dts->setProbedCodecName(u"dts"_s); // nothing says that it is more
        QCOMPARE(summary::codecText(*dts), u"DTS"_s);
        QCOMPARE(summary::channelsText(u"6"_s), u"5.1"_s);
        QCOMPARE(summary::channelsText(u"5"_s), u"5 ch."_s);
        QCOMPARE(summary::channelsText(u"0"_s), QString());
    }

    void tracksBecomeWhatIsChosen_data()
    {
        QTest::addColumn<TrackPointer>("track");
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("becomes");
        QTest::addColumn<bool>("warns");
        const auto video = [](const QString &codec) {
            return treated(trackOf(u"Video"_s, u"h264"_s), codec);
        };
        const auto text = [](const QString &use, const QString &codec) {
            return treated(trackOf(u"Subtitle"_s, codec), use);
        };
        QTest::newRow("picture copied") << video(u"passthru"_s) << u"PS3"_s << u"Copied"_s << false;
        QTest::newRow("two passes") << video(u"h264"_s) << u"PS3"_s << u"H.264, 2 passes"_s << false;
        QTest::newRow("into AVI") << video(u"h264"_s) << u"AVI"_s << u"MPEG-4, 2 passes"_s << false;
        QTest::newRow("two streams") << soundOf(u"ac3"_s, u"6"_s,
                                                {{u"passthru"_s, {}, u"0"_s}, {u"aac"_s, u"2"_s, u"160"_s}})
                                     << u"PS3"_s << u"Copied + AAC stereo 160"_s << false;
        QTest::newRow("surround") << soundOf(u"dtshd"_s, u"6"_s, {{u"ac3"_s, u"6"_s, u"448"_s}}) << u"PS3"_s
                                  << u"AC3 5.1 448"_s << false;
        QTest::newRow("no stream") << soundOf(u"ac3"_s, u"6"_s, {}) << u"PS3"_s << u"Left out"_s << true;
        QTest::newRow("kept") << text(u"mux"_s, u"srt"_s) << u"PS3"_s << u"Kept as a track"_s << false;
        QTest::newRow("burned") << text(u"burn"_s, u"pgs"_s) << u"PS3"_s << u"Burned in"_s << false;
        QTest::newRow("picture in M4V") << text(u"mux"_s, u"pgs"_s) << u"PS3"_s << u"Left out"_s << true;
        QTest::newRow("picture in MKV")
            << text(u"mux"_s, u"pgs"_s) << u"MKV"_s << u"Kept as a track"_s << false;
        QTest::newRow("text in AVI") << text(u"mux"_s, u"srt"_s) << u"AVI"_s << u"Left out"_s << true;
    }

    void tracksBecomeWhatIsChosen()
    {
        QFETCH(TrackPointer, track);
        QFETCH(QString, target);
        QFETCH(QString, becomes);
        QFETCH(bool, warns);
        KXSelection selection;
        selection.initialize();
        selection.setTheDevice(target);
        selection.setUserPassNumber(u"2"_s);
        const summary::Becoming told = summary::becomesBy(selection, *track);
        QCOMPARE(told.text, becomes);
        QCOMPARE(told.tone == summary::Becoming::Tone::Warning, warns);
        QCOMPARE(!told.reason.isEmpty(), warns);
        track->setTrackSelected(false);
        QCOMPARE(summary::becomesBy(selection, *track).text, QString());
    }

    void editingNamesTheFateOfEveryTrack()
    {
        const TrackPointer own = trackOf(u"Audio"_s, u"aac"_s);
        const TrackPointer added = trackOf(u"Subtitle"_s, u"srt"_s);
        added->setExternalTrackFlag(true);
        const auto fates = [&](TrackEdit edit) {
            return QStringList{summary::becomesBy(edit, *own).text, summary::becomesBy(edit, *added).text};
        };
        QCOMPARE(fates(TrackEdit::Extract), QStringList({u"Own file"_s, u"Not in the file"_s}));
        QCOMPARE(fates(TrackEdit::Remove), QStringList({u"Removed"_s, u"Not in the file"_s}));
        QCOMPARE(fates(TrackEdit::Add), QStringList({u"Stays"_s, u"Added"_s}));
        own->setTrackSelected(false);
        added->setTrackSelected(false);
        QCOMPARE(fates(TrackEdit::Remove), QStringList({u"Stays"_s, u"Not in the file"_s}));
        QCOMPARE(fates(TrackEdit::Add), QStringList({u"Stays"_s, u"Not in the file"_s}));
    }

    void aConversionIsASentence()
    {
        KXSelection selection;
        selection.initialize();
        selection.setTheDevice(u"iPod (All non-Touch)"_s);
        selection.setUserPassNumber(u"2"_s);
        selection.setUserVideoBitRate(u"9000"_s); // above what it plays
        selection.setUserWidth(u"640"_s);
        selection.setVideoTrackWidth(u"1920"_s);
        const TrackPointer text = treated(trackOf(u"Subtitle"_s, u"srt"_s), u"mux"_s);
        selection.setTrackList(
            {treated(trackOf(u"Video"_s, u"h264"_s), u"h264"_s),
             soundOf(u"ac3"_s, u"6"_s, {{u"passthru"_s, {}, u"0"_s}, {u"aac"_s, u"2"_s, u"160"_s}}), text});
        QCOMPARE(summary::conversionText(selection),
                 u"Picture re-encoded H.264, 2 passes, 1500 kb/s, 640 wide · sound AC3 5.1 copied and AAC "
                 "stereo 160 kb/s · 1 subtitle as a track"_s);
        text->setUserCodec(u"burn"_s);
        text->setTrackLanguage(u"German"_s);
        QVERIFY(summary::conversionText(selection).endsWith(u" · German subtitle burned in"_s));
        selection.setTrackList({treated(trackOf(u"Video"_s, u"h264"_s), u"passthru"_s)});
        QCOMPARE(summary::conversionText(selection), u"Picture copied as it is · no sound"_s);
    }

    void problemsAreToldWithWhatMendsThem()
    {
        KXVideoFile film(nullptr);
        film.setTheNumberOfVideoTracks(u"1"_s);
        KXSelection selection;
        selection.initialize();
        selection.setTheDevice(u"PS3"_s);
        QCOMPARE(summary::conversionProblem(film, selection).text, u"Tick exactly one video track."_s);
        QVERIFY(summary::conversionProblem(film, selection).prevents);
        const TrackPointer video = treated(trackOf(u"Video"_s, u"h264"_s), u"passthru"_s);
        selection.setTrackList({video, treated(trackOf(u"Subtitle"_s, u"srt"_s), u"burn"_s)});
        QVERIFY(
            summary::conversionProblem(film, selection).text.startsWith(u"The subtitle can’t be burned"_s));
        selection.setTrackList({video, treated(trackOf(u"Subtitle"_s, u"pgs"_s), u"mux"_s)});
        QVERIFY(summary::conversionProblem(film, selection).text.startsWith(u"A picture subtitle"_s));
        selection.setTrackList({video});
        QCOMPARE(summary::conversionProblem(film, selection).text, QString());
        film.setTheNumberOfVideoTracks(u"0"_s);
        QCOMPARE(summary::conversionProblem(film, selection).text,
                 u"This file has no video track to convert."_s);
    }

    void aFilmStaysForAReason()
    {
        KXVideoFile film(nullptr);
        film.setTheNumberOfVideoTracks(u"1"_s);
        const TrackPointer video = trackOf(u"Video"_s, u"h264"_s);
        film.setTrackList({video});
        QCOMPARE(summary::reasonToStay(film), QString());
        video->setTrackSelected(false);
        QCOMPARE(summary::reasonToStay(film), u"no video ticked"_s);
        film.setTheNumberOfVideoTracks(u"0"_s);
        QCOMPARE(summary::reasonToStay(film), u"no video track"_s);
    }
};

TESSARAY_TEST(TrackLookTest)
#include "TrackLookTest.moc"
