#include "selection/KXSelection.h"
#include "media/KXVideoFile.h"

#include <QMetaProperty>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// The properties of a selection itself, in their order.
QStringList fields()
{
    QStringList names;
    const QMetaObject &meta = KXSelection::staticMetaObject;
    for (int index = meta.propertyOffset(); index < meta.propertyCount(); ++index)
        names.append(QString::fromLatin1(meta.property(index).name()));
    return names;
}

const QStringList &keyList()
{
    static const QStringList keys{u"editFilesURLsList"_s,
                                  u"trackList"_s,
                                  u"keepTracksList"_s,
                                  u"jobStepList"_s,
                                  u"addedAudioTrackList"_s,
                                  u"videoTrackFilePath"_s,
                                  u"videoTrackFileURL"_s,
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
                                  u"jobStatus"_s,
                                  u"theDevice"_s,
                                  u"userVideoBitRate"_s,
                                  u"userAudioBitRate"_s,
                                  u"userFPS"_s,
                                  u"userHeight"_s,
                                  u"userWidth"_s,
                                  u"userPassNumber"_s,
                                  u"userParWidth"_s,
                                  u"userParHeight"_s,
                                  u"splitType"_s,
                                  u"splitSize"_s,
                                  u"splitNumber"_s,
                                  u"splitStartTimeText"_s,
                                  u"splitEndTimeText"_s,
                                  u"splitStartTimeSeconds"_s,
                                  u"splitEndTimeSeconds"_s,
                                  u"vidCount"_s,
                                  u"audCount"_s,
                                  u"subCount"_s};
    return keys;
}

TrackPointer audio(const QString &language, bool wantsStereo)
{
    auto track = std::make_shared<KXVideoTrack>();
    track->setTrackType(u"Audio"_s);
    track->setTrackLanguage(language);
    track->setCreateStereoCopyFlag(wantsStereo);
    return track;
}

/// A value of each field's type that no default has.
QVariant otherValue(const QString &field, const QMetaType &type)
{
    if (type == QMetaType::fromType<bool>())
        return true;
    if (type == QMetaType::fromType<QUrl>())
        return QUrl::fromLocalFile(u"/v/other.mkv"_s);
    if (type == QMetaType::fromType<QStringList>())
        return QStringList{u"step of "_s + field};
    if (type == QMetaType::fromType<QList<QUrl>>())
        return QVariant::fromValue(QList<QUrl>{QUrl::fromLocalFile(u"/v/1.mkv"_s)});
    if (type == QMetaType::fromType<TrackList>())
        return QVariant::fromValue(TrackList{audio(field, false)});
    return QString(u"other "_s + field);
}

void fillWithOtherValues(KXSelection &selection)
{
    for (const QString &field : fields()) {
        if (field == u"propertiesKeysList"_s)
            continue;
        const QByteArray name = field.toLatin1();
        const int index = selection.metaObject()->indexOfProperty(name.constData());
        QVERIFY(selection.setProperty(name.constData(),
                                      otherValue(field, selection.metaObject()->property(index).metaType())));
    }
}

QVariant valueOf(const KXSelection &selection, const QString &field)
{
    return selection.property(field.toLatin1().constData());
}

/// Fails for tracks that are merely alike.
bool same(const KXSelection &one, const KXSelection &other, const QString &field)
{
    return valueOf(one, field) == valueOf(other, field);
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

class KXSelectionTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fieldsAreAllThereByName()
    {
        QCOMPARE(fields().size(), 45);
        QStringList expected{u"forceLegacyEncoder"_s,   u"mp4Muxer"_s,
                             u"currentEncoder"_s,       u"splitDurationText"_s,
                             u"splitDurationSeconds"_s, u"propertiesKeysList"_s};
        expected += keyList();
        QStringList actual = fields();
        expected.sort();
        actual.sort();
        QCOMPARE(actual, expected);
    }

    void afterConstructionOnlyEncoderMuxerAndKeysAreSet()
    {
        const KXSelection selection;
        QCOMPARE(selection.mp4Muxer(), u"mp4box"_s);
        QCOMPARE(selection.currentEncoder(), u"ffmpeg"_s);
        QVERIFY(!selection.forceLegacyEncoder());
        QCOMPARE(selection.propertiesKeysList(), keyList());
        for (const QString &field : keyList()) {
            const QVariant value = valueOf(selection, field);
            if (value.typeId() == QMetaType::QString)
                QVERIFY2(value.toString().isNull(), qPrintable(field));
        }
        QVERIFY(selection.jobStepList().isEmpty());
        QVERIFY(selection.trackList().isEmpty());
        QVERIFY(selection.splitDurationText().isNull());
    }

    void initializeSetsTheDefaults()
    {
        KXSelection selection;
        selection.initialize();
        const QStringList none{u"videoTrackFilePath"_s,
                               u"videoTrackFileName"_s,
                               u"videoTrackFileShortName"_s,
                               u"videoTrackFileExtension"_s,
                               u"videoTrackCodec"_s,
                               u"videoTrackProfile"_s,
                               u"jobType"_s,
                               u"theDevice"_s,
                               u"splitType"_s};
        for (const QString &field : none)
            QVERIFY2(valueOf(selection, field) == QVariant(u"none"_s), qPrintable(field));
        const QStringList zero{u"videoTrackFPS"_s,       u"videoTrackWidth"_s,
                               u"videoTrackHeight"_s,    u"videoTrackBitRate"_s,
                               u"videoTrackPAR"_s,       u"userVideoBitRate"_s,
                               u"userAudioBitRate"_s,    u"userHeight"_s,
                               u"userPassNumber"_s,      u"userParWidth"_s,
                               u"userParHeight"_s,       u"splitSize"_s,
                               u"splitNumber"_s,         u"splitStartTimeSeconds"_s,
                               u"splitEndTimeSeconds"_s, u"splitDurationSeconds"_s};
        for (const QString &field : zero)
            QVERIFY2(valueOf(selection, field) == QVariant(u"0"_s), qPrintable(field));
        for (const QString &field : {u"splitStartTimeText"_s, u"splitEndTimeText"_s, u"splitDurationText"_s})
            QVERIFY2(valueOf(selection, field) == QVariant(u"00:00:00"_s), qPrintable(field));
        QCOMPARE(selection.userFPS(), u"29.97"_s);
        QVERIFY(selection.userWidth().isEmpty() && !selection.userWidth().isNull());
        QCOMPARE(selection.jobStatus(), u"Queued"_s);
        QCOMPARE(selection.jobStepList(), QStringList{u""_s});
        QVERIFY(selection.videoTrackFileURL().path().isEmpty());
        QVERIFY(!selection.headerRemovalFlag());
    }

    void initializeLeavesListsAndCountsAsTheyAre()
    {
        KXSelection selection;
        fillWithOtherValues(selection);
        selection.initialize();
        for (const QString &field :
             {u"editFilesURLsList"_s, u"trackList"_s, u"keepTracksList"_s, u"addedAudioTrackList"_s})
            QVERIFY2(!valueOf(selection, field).toList().isEmpty(), qPrintable(field));
        QCOMPARE(selection.vidCount(), u"other vidCount"_s);
        QCOMPARE(selection.audCount(), u"other audCount"_s);
        QCOMPARE(selection.subCount(), u"other subCount"_s);
        QCOMPARE(selection.currentEncoder(), u"other currentEncoder"_s);
        QVERIFY(selection.forceLegacyEncoder());
        QCOMPARE(selection.jobStepList(), QStringList{u""_s});
    }

    void initializeFromTakesWhatTheFileKnows()
    {
        KXVideoFile file(nullptr);
        file.setTheFilePath(u"/v/a b.mkv"_s);
        file.setTheFileURL(QUrl::fromLocalFile(u"/v/a b.mkv"_s));
        file.setTheFileName(u"a b.mkv"_s);
        file.setTheFileShortName(u"a b"_s);
        file.setTheFileExtension(u"mkv"_s);
        file.setTheVideoCodec(u"h264"_s);
        file.setTheFPS(u"23.976024"_s);
        file.setTheWidth(u"1920"_s);
        file.setTheHeight(u"800"_s);
        file.setTheVideoBitRate(u"9000"_s);
        file.setVideoPAR(u"1.5"_s);
        file.setCodecProfile(u"High@L4.1"_s);
        file.setHeaderRemovalFlag(true);
        KXSelection selection;
        selection.initialize();
        selection.setAddedAudioTrackList({audio(u"English"_s, false)});
        selection.initializeFrom(file);
        QCOMPARE(selection.videoTrackFilePath(), u"/v/a b.mkv"_s);
        QCOMPARE(selection.videoTrackFileURL(), QUrl::fromLocalFile(u"/v/a b.mkv"_s));
        QCOMPARE(selection.videoTrackFileName(), u"a b.mkv"_s);
        QCOMPARE(selection.videoTrackFileShortName(), u"a b"_s);
        QCOMPARE(selection.videoTrackFileExtension(), u"mkv"_s);
        QCOMPARE(selection.videoTrackCodec(), u"h264"_s);
        QCOMPARE(selection.videoTrackFPS(), u"23.976024"_s);
        QCOMPARE(selection.videoTrackWidth(), u"1920"_s);
        QCOMPARE(selection.videoTrackHeight(), u"800"_s);
        QCOMPARE(selection.videoTrackBitRate(), u"9000"_s);
        QCOMPARE(selection.videoTrackPAR(), u"1.5"_s);
        QCOMPARE(selection.videoTrackProfile(), u"High@L4.1"_s);
        QVERIFY(selection.headerRemovalFlag());
        QCOMPARE(selection.userVideoBitRate(), u"9000"_s);
        QCOMPARE(selection.userFPS(), u"23.976024"_s);
        QCOMPARE(selection.userWidth(), u"1920"_s);
        QCOMPARE(selection.vidCount(), u"0"_s);
        QCOMPARE(selection.audCount(), u"0"_s);
        QCOMPARE(selection.subCount(), u"0"_s);
        QVERIFY(selection.addedAudioTrackList().isEmpty());
        QCOMPARE(selection.userAudioBitRate(), u"0"_s); // the file has no say in it
        QCOMPARE(selection.theDevice(), u"none"_s);
    }

    void initializeFromLeavesTheChosenHeight()
    {
        KXVideoFile file(nullptr);
        file.setTheWidth(u"640"_s);
        file.setTheHeight(u"480"_s);
        KXSelection selection;
        selection.initialize();
        selection.setUserHeight(u"1080"_s);
        selection.setUserWidth(u"1920"_s);
        selection.initializeFrom(file);
        QCOMPARE(selection.userHeight(), u"1080"_s); // on purpose
        QCOMPARE(selection.userWidth(), u"640"_s);
        QCOMPARE(selection.videoTrackHeight(), u"480"_s);
    }

    void copyTakesEveryFieldButThree()
    {
        KXSelection selection;
        fillWithOtherValues(selection);
        selection.setPropertiesKeysList({u"jobType"_s}); // a copy has the list of every new selection
        const SelectionPointer copy = selection.copy();
        for (const QString &field : fields()) {
            const bool left = field == u"forceLegacyEncoder"_s || field == u"mp4Muxer"_s ||
                              field == u"currentEncoder"_s || field == u"propertiesKeysList"_s;
            QVERIFY2(same(*copy, selection, field) != left, qPrintable(field));
        }
        QCOMPARE(copy->propertiesKeysList(), keyList());
        QCOMPARE(copy->trackList().constFirst(), selection.trackList().constFirst()); // shared
    }

    void copyAlwaysCarriesTheUsualEncoder()
    {
        KXSelection selection;
        selection.setCurrentEncoder(u"mencoder"_s);
        selection.setMp4Muxer(u"ffmpeg"_s);
        selection.setForceLegacyEncoder(true);
        const SelectionPointer copy = selection.copy();
        QCOMPARE(copy->currentEncoder(), u"ffmpeg"_s); // on purpose
        QCOMPARE(copy->mp4Muxer(), u"mp4box"_s);
        QVERIFY(!copy->forceLegacyEncoder());
    }

    void copyIsIndependent()
    {
        KXSelection selection;
        selection.initialize();
        const SelectionPointer copy = selection.copy();
        selection.setJobType(u"MKV Remux"_s);
        selection.setTrackList({audio(u"English"_s, false)});
        QCOMPARE(copy->jobType(), u"none"_s);
        QVERIFY(copy->trackList().isEmpty());
    }

    void copyKeepsWhatIsAbsentAbsent()
    {
        const SelectionPointer copy = KXSelection().copy();
        QVERIFY(copy->vidCount().isNull());
        QVERIFY(copy->userWidth().isNull());
        QVERIFY(copy->splitDurationText().isNull());
    }

    void selfCopyLeavesTheSplitDuration()
    {
        KXSelection other;
        fillWithOtherValues(other);
        KXSelection selection;
        selection.initialize();
        selection.initializeSplitDurationForTimeText(u"00:01:00"_s);
        selection.makeSelfCopyOfSelection(other);
        QCOMPARE(selection.splitDurationText(), u"00:01:00"_s); // on purpose
        QCOMPARE(selection.splitDurationSeconds(), u"60"_s);
        QCOMPARE(selection.currentEncoder(), u"ffmpeg"_s);
        QVERIFY(!selection.forceLegacyEncoder());
        for (const QString &field : keyList())
            QVERIFY2(same(selection, other, field), qPrintable(field));
    }

    void selfCopyFollowsTheReceiversKeys()
    {
        KXSelection other;
        fillWithOtherValues(other);
        KXSelection selection;
        selection.initialize();
        selection.setPropertiesKeysList({u"jobType"_s});
        selection.makeSelfCopyOfSelection(other);
        QCOMPARE(selection.jobType(), u"other jobType"_s);
        QCOMPARE(selection.theDevice(), u"none"_s);
        QCOMPARE(selection.trackList(), other.trackList()); // always
    }

    void selfCopySharesTracksButNotTheList()
    {
        KXSelection other;
        other.setTrackList({audio(u"English"_s, false)});
        KXSelection selection;
        selection.makeSelfCopyOfSelection(other);
        other.setTrackList({});
        QCOMPARE(selection.trackList().size(), 1);
    }

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
        QTest::newRow("too short") << u"1:2"_s << u"3600"_s;
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

QTEST_GUILESS_MAIN(KXSelectionTest)
#include "KXSelectionTest.moc"
