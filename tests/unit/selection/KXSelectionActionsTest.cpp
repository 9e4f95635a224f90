#include "selection/KXSelection.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

TrackPointer audio(const QString &language, bool wantsStereo)
{
    auto track = std::make_shared<KXVideoTrack>();
    track->setTrackType(u"Audio"_s);
    track->setTrackLanguage(language);
    track->setCreateStereoCopyFlag(wantsStereo);
    return track;
}

/// Remembers what is logged; a number as "label number".
class Listener final : public KXSelection
{
public:
    void logString(const QString &text) const override { m_lines.append(text); }
    void logObjectWithString(const QVariant &object, const QString &label) const override
    {
        m_lines.append(label + u'=' + object.toString());
    }
    void logIntegerWithString(qint64 number, const QString &label) const override
    {
        m_lines.append(label + u' ' + QString::number(number));
    }
    const QStringList &lines() const { return m_lines; }

private:
    mutable QStringList m_lines;
};

} // namespace

/// What a selection does beside holding values: stereo copies, split times, the dump.
class KXSelectionActionsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stereoCopiesStandInTrackOrder()
    {
        KXSelection selection;
        auto video = std::make_shared<KXVideoTrack>();
        video->setTrackType(u"Video"_s);
        video->setCreateStereoCopyFlag(true); // only audio can have one
        selection.setTrackList(
            {video, audio(u"English"_s, true), audio(u"French"_s, false), audio(u"German"_s, true)});
        selection.addAnyStereoTracks();
        const TrackList added = selection.addedAudioTrackList();
        QCOMPARE(added.size(), 2);
        QCOMPARE(added.at(0)->trackTitle(), u"Added Stereo Track"_s);
        QCOMPARE(added.at(1)->trackTitle(), u"Added Stereo Track"_s);
        QCOMPARE(added.at(0)->trackLanguage(), u"English"_s);
        QCOMPARE(added.at(1)->trackLanguage(), u"German"_s);
    }

    void stereoCopiesAreNotDoubled()
    {
        KXSelection selection;
        selection.setTrackList({audio(u"English"_s, true), audio(u"German"_s, true)});
        selection.addAnyStereoTracks();
        selection.addAnyStereoTracks();
        QCOMPARE(selection.addedAudioTrackList().size(), 2);
        // A copy that is itself selected asks for none.
        selection.setTrackList(selection.trackList() + selection.addedAudioTrackList());
        selection.addAnyStereoTracks();
        QCOMPARE(selection.addedAudioTrackList().size(), 2);
        selection.setTrackList({audio(u"English"_s, false)});
        selection.addAnyStereoTracks();
        QVERIFY(selection.addedAudioTrackList().isEmpty());
    }

    void stereoCopyTakesItsSourcesPlaceAndItsOwnChoices()
    {
        const TrackPointer source = audio(u"German"_s, true);
        source->setTrackSelected(true);
        source->setTrackMp4boxID(u"3"_s);
        source->setTrackMencoderID(u"1"_s);
        source->setTrackIndex(u"2"_s);
        source->setTrackFfmpegID(u"2"_s);
        source->setTrackExtension(u"dts"_s);
        source->setTrackNumberOfChannels(u"6"_s);
        source->setTrackMkvmergeID(u"7"_s);
        source->setTrackDefaultFlag(true);
        source->setTrackForcedFlag(true);
        source->setTrackFileURL(QUrl::fromLocalFile(u"/v/a.mkv"_s));
        source->setTrackFilePath(u"/v/a.mkv"_s);
        source->setTrackFileName(u"a.mkv"_s);
        source->setTrackFileExtension(u"mkv"_s);
        source->setExternalTrackFlag(true);
        source->setWasReEncoded(true);
        source->setSelectedAudioTrackIndex(u"4"_s);
        source->setTrackInfo(u"Audio: (dts 6ch.)"_s);
        source->setTrackTitle(u"Surround"_s);
        source->setTrackCodec(u"dts"_s);
        source->setUserCodec(u"passthru"_s);
        source->setTrackBitRate(u"1536"_s);
        KXSelection selection;
        selection.setTrackList({source});
        selection.addAnyStereoTracks();
        const TrackPointer copy = selection.addedAudioTrackList().constFirst();
        const QStringList taken{
            u"trackSelected"_s,          u"trackType"_s,         u"trackMp4boxID"_s,
            u"trackMencoderID"_s,        u"trackIndex"_s,        u"trackFfmpegID"_s,
            u"trackLanguage"_s,          u"trackExtension"_s,    u"trackNumberOfChannels"_s,
            u"trackMkvmergeID"_s,        u"trackDefaultFlag"_s,  u"trackForcedFlag"_s,
            u"trackFileURL"_s,           u"trackFilePath"_s,     u"trackFileName"_s,
            u"trackFileExtension"_s,     u"externalTrackFlag"_s, u"wasReEncoded"_s,
            u"selectedAudioTrackIndex"_s};
        const KXVideoTrack fresh;
        for (const QString &field : taken) {
            const QByteArray name = field.toLatin1();
            QVERIFY2(source->property(name.constData()) != fresh.property(name.constData()),
                     name.constData());
            QVERIFY2(copy->property(name.constData()) == source->property(name.constData()),
                     name.constData());
        }
        QCOMPARE(copy->trackCodec(), u"aac"_s);
        QCOMPARE(copy->userCodec(), u"aac"_s);
        QCOMPARE(copy->userNumberOfChannels(), u"2"_s);
        QCOMPARE(copy->trackNumberOfChannels(), u"6"_s); // the source's, on purpose
        QCOMPARE(copy->userBitRate(), u"160"_s);
        QVERIFY(copy->isStereoCopyFlag());
        QVERIFY(!copy->createStereoCopyFlag());
        QCOMPARE(copy->trackInfo(), u"none"_s); // what is not taken is as in a new track
        QCOMPARE(copy->trackBitRate(), u"0"_s);
        QVERIFY(source->createStereoCopyFlag());
        QVERIFY(!source->isStereoCopyFlag());
    }

    void startWithoutEnd()
    {
        KXSelection selection;
        selection.initializeSplitForStartTimeAndEndTime(u"01:02:03"_s, {});
        QCOMPARE(selection.splitStartTimeText(), u"01:02:03"_s);
        QCOMPARE(selection.splitStartTimeSeconds(), u"3723"_s);
        QCOMPARE(selection.splitEndTimeText(), u"00:00:00"_s);
        QCOMPARE(selection.splitEndTimeSeconds(), u"0"_s);
    }

    void endWithoutStartAndEndBeforeStart()
    {
        KXSelection selection;
        selection.initializeSplitForStartTimeAndEndTime(QString(), u"10:00:59"_s);
        QCOMPARE(selection.splitStartTimeText(), u"00:00:00"_s);
        QCOMPARE(selection.splitStartTimeSeconds(), u"0"_s);
        QCOMPARE(selection.splitEndTimeSeconds(), u"36059"_s);
        selection.initializeSplitForStartTimeAndEndTime(u"00:00:20"_s, u"00:00:10"_s);
        QCOMPARE(selection.splitStartTimeSeconds(), u"20"_s);
        QCOMPARE(selection.splitEndTimeSeconds(), u"10"_s);
    }

    void timesAreReadByPosition_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("seconds");
        QTest::newRow("no range check") << u"00:99:99"_s << u"6039"_s;
        QTest::newRow("any separator") << u"01.02.03"_s << u"3723"_s;
        QTest::newRow("no digits") << u"ab:cd:ef"_s << u"0"_s;
        QTest::newRow("digits at the head only") << u"1x:2x:3x"_s << u"3723"_s;
        QTest::newRow("fraction is not looked at") << u"00:00:05.900"_s << u"5"_s;
    }

    void timesAreReadByPosition()
    {
        QFETCH(QString, text);
        QFETCH(QString, seconds);
        KXSelection selection;
        selection.initializeSplitDurationForTimeText(text);
        QCOMPARE(selection.splitDurationText(), text);
        QCOMPARE(selection.splitDurationSeconds(), seconds);
        selection.initializeSplitForStartTimeAndEndTime(text, text);
        QCOMPARE(selection.splitStartTimeSeconds(), seconds);
        QCOMPARE(selection.splitEndTimeSeconds(), seconds);
    }

    void dumpNamesEachKeyInItsOrder()
    {
        Listener selection;
        selection.initialize();
        selection.setTrackList({audio(u"English"_s, false), audio(u"French"_s, false)});
        selection.setVideoTrackFilePath(u"/v/a.mkv"_s);
        selection.logSelectionProperties();
        QStringList names;
        for (const QString &line : selection.lines())
            names.append(line.section(u'=', 0, 0));
        QCOMPARE(
            selection.lines().value(0),
            u"#############################  NEW SELECTION PROPERTIES  ################################"_s);
        QCOMPARE(selection.lines().value(1), u"videoTrackFilePath=/v/a.mkv"_s);
        const QStringList expected{selection.lines().value(0),
                                   u"videoTrackFilePath"_s,
                                   u"videoTrackFileName"_s,
                                   u"videoTrackFileShortName"_s,
                                   u"videoTrackFileExtension"_s,
                                   u"videoTrackCodec"_s,
                                   u"videoTrackFPS"_s,
                                   u"videoTrackWidth"_s,
                                   u"videoTrackHeight"_s,
                                   u"videoTrackBitRate"_s,
                                   u"videoTrackPAR"_s,
                                   u"videoTrackProfile"_s,
                                   u"headerRemovalFlag"_s,
                                   u"jobType"_s,
                                   u"theDevice"_s,
                                   u"userVideoBitRate"_s,
                                   u"userAudioBitRate"_s,
                                   u"userFPS"_s,
                                   u"userHeight"_s,
                                   u"userWidth"_s,
                                   u"userPassNumber"_s,
                                   u"splitType"_s,
                                   u"splitSize"_s,
                                   u"splitNumber"_s,
                                   u"splitStartTimeText"_s,
                                   u"splitEndTimeText"_s,
                                   u"splitStartTimeSeconds"_s,
                                   u"splitEndTimeSeconds"_s,
                                   u"splitDurationText"_s,
                                   u"splitDurationSeconds"_s,
                                   u"############################# PROPERTIES FOR TRACK 1"_s,
                                   u"############################# PROPERTIES FOR TRACK 2"_s};
        QCOMPARE(names, expected);
    }
};

TESSARAY_TEST(KXSelectionActionsTest)
#include "KXSelectionActionsTest.moc"
