#include "media/KXVideoTrack.h"
#include "support/TestMain.h"

#include <QMetaProperty>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

struct Field
{
    QString name;
    QVariant initial;
};

/// Every field in its declared order with the value that a new track has.
QList<Field> fields()
{
    const QString none = u"none"_s;
    const QString zero = u"0"_s;
    return {{u"trackSelected"_s, false},
            {u"trackType"_s, none},
            {u"trackMp4boxID"_s, zero},
            {u"trackFfmpegID"_s, zero},
            {u"trackInfo"_s, none},
            {u"trackTitle"_s, none},
            {u"trackMencoderID"_s, zero},
            {u"trackIndex"_s, zero},
            {u"selectedAudioTrackIndex"_s, zero},
            {u"trackLanguage"_s, u"undetermined"_s},
            {u"trackCodec"_s, none},
            {u"trackExtension"_s, none},
            {u"trackBitRate"_s, zero},
            {u"trackNumberOfChannels"_s, zero},
            {u"trackMkvmergeID"_s, zero},
            {u"trackDefaultFlag"_s, false},
            {u"trackForcedFlag"_s, false},
            {u"userCodec"_s, none},
            {u"userBitRate"_s, zero},
            {u"userNumberOfChannels"_s, zero},
            {u"userAudioSettingsDictionaryArray"_s, QVariant::fromValue(AudioSettingsList())},
            {u"trackFilePath"_s, none},
            {u"trackPathToFileFolder"_s, none},
            {u"trackFileURL"_s, QUrl()},
            {u"trackURLToFileFolder"_s, QUrl()},
            {u"convertedFileURL"_s, QUrl()},
            {u"trackFileName"_s, none},
            {u"trackFileExtension"_s, none},
            {u"isStereoCopyFlag"_s, false},
            {u"createStereoCopyFlag"_s, false},
            {u"externalTrackFlag"_s, false},
            {u"convertSubFlag"_s, false},
            {u"wasReEncoded"_s, false},
            {u"muxingTrackType"_s, none},
            {u"muxingTrackLanguage"_s, none},
            {u"muxingTrackTitle"_s, none},
            {u"muxingTrackMp4boxID"_s, none},
            {u"muxingTrackMencoderID"_s, none},
            {u"muxingTrackCodec"_s, none},
            {u"muxingTrackFileURL"_s, QUrl::fromLocalFile(u"temp/file.url"_s)},
            {u"muxingTrackExtension"_s, none},
            {u"muxingTrackFileExtension"_s, none}};
}

/// A value of the field's type that is not its default and differs from every other field's.
QVariant anotherValue(const Field &field)
{
    switch (field.initial.typeId()) {
    case QMetaType::Bool:
        return true;
    case QMetaType::QString:
        return u"new "_s + field.name;
    case QMetaType::QUrl:
        return QUrl::fromLocalFile(u"/new/"_s + field.name);
    default:
        return QVariant::fromValue(AudioSettingsList{{{u"userCodec"_s, field.name}}});
    }
}

/// A track none of whose fields has its default.
TrackPointer filledTrack()
{
    auto track = std::make_shared<KXVideoTrack>();
    for (const Field &field : fields())
        track->setProperty(qPrintable(field.name), anotherValue(field));
    return track;
}

QStringList linesOf(const KXVideoTrack &track)
{
    return track.stringFromTrackProperties().split(u'\n');
}

} // namespace

class KXVideoTrackTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hasEveryFieldInItsOrder()
    {
        QStringList names;
        for (const Field &field : fields())
            names.append(field.name);
        QCOMPARE(KXVideoTrack::fieldNames(), names);
    }

    void walksEveryField_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariant>("initial");
        QTest::addColumn<QVariant>("another");
        for (const Field &field : fields())
            QTest::newRow(qPrintable(field.name)) << field.name << field.initial << anotherValue(field);
    }

    void walksEveryField()
    {
        QFETCH(QString, name);
        QFETCH(QVariant, initial);
        QFETCH(QVariant, another);
        KXVideoTrack track;
        QCOMPARE(track.property(qPrintable(name)).metaType(), initial.metaType());
        QCOMPARE(track.property(qPrintable(name)), initial);
        QVERIFY(track.setProperty(qPrintable(name), another));
        QCOMPARE(track.property(qPrintable(name)), another);
        QCOMPARE(track.copy()->property(qPrintable(name)), another);
    }

    void writesEachFieldToItsOwnPlace()
    {
        const TrackPointer track = filledTrack();
        for (const Field &field : fields())
            QCOMPARE(track->property(qPrintable(field.name)), anotherValue(field));
    }

    void aCopyIsEqualInEveryFieldAndIndependent()
    {
        const TrackPointer track = filledTrack();
        track->setProbedCodecName(u"hdmv_pgs_subtitle"_s);
        track->setHasCompany(true);
        track->setIsCover(true);
        const TrackPointer copy = track->copy();
        for (const QString &name : KXVideoTrack::fieldNames())
            QCOMPARE(copy->property(qPrintable(name)), track->property(qPrintable(name)));
        QCOMPARE(copy->probedCodecName(), u"hdmv_pgs_subtitle"_s);
        QVERIFY(copy->hasCompany());
        QVERIFY(copy->isCover());
        copy->setUserCodec(u"aac"_s);
        copy->setUserAudioSettingsDictionaryArray({});
        copy->setProbedCodecName({});
        copy->setHasCompany(false);
        QCOMPARE(track->userCodec(), u"new userCodec"_s);
        QCOMPARE(track->userAudioSettingsDictionaryArray().size(), 1);
        QCOMPARE(track->probedCodecName(), u"hdmv_pgs_subtitle"_s);
        QVERIFY(track->hasCompany());
    }

    void aCopyKeepsWhatIsAbsent()
    {
        KXVideoTrack track;
        track.setTrackMkvmergeID({});
        QVERIFY(track.copy()->trackMkvmergeID().isNull());
        QVERIFY(track.copy()->probedCodecName().isNull());
        QVERIFY(!track.copy()->hasCompany());
        QVERIFY(!track.copy()->isCover());
    }

    void takesTheMuxingSnapshot()
    {
        const TrackPointer track = filledTrack();
        track->setExternalTrackFlag(false);
        track->setWasReEncoded(false);
        track->initializeForMuxing();
        QCOMPARE(track->muxingTrackType(), u"new trackType"_s);
        QCOMPARE(track->muxingTrackLanguage(), u"new trackLanguage"_s);
        QCOMPARE(track->muxingTrackTitle(), u"new trackTitle"_s);
        QCOMPARE(track->muxingTrackMp4boxID(), u"new trackMp4boxID"_s);
        QCOMPARE(track->muxingTrackMencoderID(), u"new trackMencoderID"_s);
        QCOMPARE(track->muxingTrackCodec(), u"new trackCodec"_s);
        QCOMPARE(track->muxingTrackFileURL(), QUrl::fromLocalFile(u"/new/trackFileURL"_s));
        QCOMPARE(track->muxingTrackExtension(), u"new trackExtension"_s);
        QCOMPARE(track->muxingTrackFileExtension(), u"new trackFileExtension"_s);
        QCOMPARE(track->trackMkvmergeID(), u"new trackMkvmergeID"_s);
    }

    void addressesAnExternalTrackAsOneTrack()
    {
        KXVideoTrack track;
        track.setExternalTrackFlag(true);
        track.setTrackMp4boxID(u"3"_s);
        track.setTrackMencoderID(u"2"_s);
        track.initializeForMuxing();
        QCOMPARE(track.muxingTrackMp4boxID(), u"one track"_s);
        QCOMPARE(track.muxingTrackMencoderID(), u"one track"_s);
        QCOMPARE(track.trackMp4boxID(), u"3"_s);
        QCOMPARE(track.trackMencoderID(), u"2"_s);
    }

    void aReEncodedTrackLosesItsMkvmergeNumber()
    {
        KXVideoTrack track;
        track.setTrackMkvmergeID(u"4"_s);
        track.setWasReEncoded(true);
        track.initializeForMuxing();
        QVERIFY(track.trackMkvmergeID().isNull());
        QCOMPARE(track.wasReEncoded(), false);
        track.initializeForMuxing();
        QVERIFY(track.trackMkvmergeID().isNull());
    }

    void aSecondSnapshotNoLongerClearsTheNumber()
    {
        KXVideoTrack track;
        track.setWasReEncoded(true);
        track.initializeForMuxing();
        track.setTrackMkvmergeID(u"7"_s);
        track.initializeForMuxing();
        QCOMPARE(track.trackMkvmergeID(), u"7"_s);
    }

    void printsANewTrack()
    {
        const QString expected = u"trackSelected = 0\n"
                                 "trackType = none\n"
                                 "trackMp4boxID = 0\n"
                                 "trackFfmpegID = 0\n"
                                 "trackInfo = none\n"
                                 "trackTitle = none\n"
                                 "trackMencoderID = 0\n"
                                 "trackIndex = 0\n"
                                 "selectedAudioTrackIndex = 0\n"
                                 "trackLanguage = undetermined\n"
                                 "trackCodec = none\n"
                                 "trackExtension = none\n"
                                 "trackBitRate = 0\n"
                                 "trackNumberOfChannels = 0\n"
                                 "trackMkvmergeID = 0\n"
                                 "trackDefaultFlag = 0\n"
                                 "trackForcedFlag = 0\n"
                                 "userCodec = none\n"
                                 "userBitRate = 0\n"
                                 "userNumberOfChannels = 0\n"
                                 "trackFilePath = none\n"
                                 "trackPathToFileFolder = none\n"
                                 "trackFileName = none\n"
                                 "trackFileExtension = none\n"
                                 "isStereoCopyFlag = 0\n"
                                 "createStereoCopyFlag = 0\n"
                                 "externalTrackFlag = 0\n"
                                 "convertSubFlag = 0\n"
                                 "wasReEncoded = 0\n"_s;
        QCOMPARE(KXVideoTrack().stringFromTrackProperties(), expected);
    }

    void printsFlagsAsNumbersAndAbsentValuesAsNothing()
    {
        KXVideoTrack track;
        track.setTrackSelected(true);
        track.setTrackMkvmergeID({});
        track.setTrackTitle(u"a = b"_s);
        const QStringList lines = linesOf(track);
        QVERIFY(lines.contains(u"trackSelected = 1"_s));
        QVERIFY(lines.contains(u"trackMkvmergeID = "_s));
        QVERIFY(lines.contains(u"trackTitle = a = b"_s));
    }

    void keepsTheProbedNameOutOfItsText()
    {
        KXVideoTrack track;
        track.setProbedCodecName(u"eac3"_s);
        QVERIFY(!track.stringFromTrackProperties().contains(u"eac3"_s));
        QVERIFY(!KXVideoTrack::fieldNames().contains(u"probedCodecName"_s));
    }
};

TESSARAY_TEST(KXVideoTrackTest)
#include "KXVideoTrackTest.moc"
