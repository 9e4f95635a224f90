#include "selection/KXSelection.h"
#include "media/KXVideoFile.h"
#include "support/TestMain.h"

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
        QCOMPARE(selection.editFilesURLsList().size(), 1);
        QCOMPARE(selection.trackList().size(), 1);
        QCOMPARE(selection.keepTracksList().size(), 1);
        QCOMPARE(selection.addedAudioTrackList().size(), 1);
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
};

TESSARAY_TEST(KXSelectionTest)
#include "KXSelectionTest.moc"
