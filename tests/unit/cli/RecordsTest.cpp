#include "cli/Records.h"
#include "media/KXVideoFile.h"
#include "media/Receipt.h"
#include "support/TestMain.h"

#include <QJsonArray>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// The words that are copied between files.
const QStringList fileTexts{u"theFilePath"_s,
                            u"theFileName"_s,
                            u"theFileExtension"_s,
                            u"theFileShortName"_s,
                            u"pathToFileFolder"_s,
                            u"theNumberOfVideoTracks"_s,
                            u"theNumberOfAudioTracks"_s,
                            u"theNumberOfSubTracks"_s,
                            u"theDuration"_s,
                            u"theFPS"_s,
                            u"videoPAR"_s,
                            u"theWidth"_s,
                            u"theHeight"_s,
                            u"codecProfile"_s,
                            u"theVideoBitRate"_s,
                            u"theVideoCodec"_s};

const QStringList trackTexts{u"trackType"_s,
                             u"trackMp4boxID"_s,
                             u"trackFfmpegID"_s,
                             u"trackInfo"_s,
                             u"trackTitle"_s,
                             u"trackMencoderID"_s,
                             u"trackIndex"_s,
                             u"selectedAudioTrackIndex"_s,
                             u"trackLanguage"_s,
                             u"trackCodec"_s,
                             u"trackExtension"_s,
                             u"trackBitRate"_s,
                             u"trackNumberOfChannels"_s,
                             u"trackMkvmergeID"_s,
                             u"userCodec"_s,
                             u"userBitRate"_s,
                             u"userNumberOfChannels"_s,
                             u"trackFilePath"_s,
                             u"trackPathToFileFolder"_s,
                             u"trackFileName"_s,
                             u"trackFileExtension"_s,
                             u"muxingTrackType"_s,
                             u"muxingTrackLanguage"_s,
                             u"muxingTrackTitle"_s,
                             u"muxingTrackMp4boxID"_s,
                             u"muxingTrackMencoderID"_s,
                             u"muxingTrackCodec"_s,
                             u"muxingTrackExtension"_s,
                             u"muxingTrackFileExtension"_s};
const QStringList trackFlags{u"trackSelected"_s,    u"trackDefaultFlag"_s,     u"trackForcedFlag"_s,
                             u"isStereoCopyFlag"_s, u"createStereoCopyFlag"_s, u"externalTrackFlag"_s,
                             u"convertSubFlag"_s,   u"wasReEncoded"_s};
const QStringList trackLocations{u"trackFileURL"_s, u"trackURLToFileFolder"_s, u"convertedFileURL"_s,
                                 u"muxingTrackFileURL"_s};

void give(QObject &object, const QString &word, const QVariant &value)
{
    QVERIFY2(object.setProperty(qPrintable(word), value), qPrintable(word));
}

} // namespace

class RecordsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFileHasItsEighteenWords()
    {
        KXVideoFile file(nullptr);
        for (const QString &word : fileTexts)
            give(file, word, u"text of "_s + word);
        give(file, u"theFileURL"_s, QUrl::fromLocalFile(u"/v/100% \"ü\"#?.mkv"_s));
        give(file, u"headerRemovalFlag"_s, true);
        const QJsonObject record = cli::fileRecord(file);
        QCOMPARE(record.size(), 18);
        for (const QString &word : fileTexts)
            QCOMPARE(record.value(word), QJsonValue(u"text of "_s + word));
        QCOMPARE(record.value(u"theFileURL"_s), QJsonValue(u"/v/100% \"ü\"#?.mkv"_s));
        QCOMPARE(record.value(u"headerRemovalFlag"_s), QJsonValue(true));
    }

    void aTrackHasEveryWord()
    {
        KXVideoTrack track;
        for (const QString &word : trackTexts)
            give(track, word, u"text of "_s + word);
        for (const QString &word : trackFlags)
            give(track, word, true);
        for (const QString &word : trackLocations)
            give(track, word, QUrl::fromLocalFile(u"/v/"_s + word));
        const QJsonObject record = cli::trackRecord(track);
        QCOMPARE(record.size(), trackTexts.size() + trackFlags.size() + trackLocations.size() + 1);
        for (const QString &word : trackTexts)
            QCOMPARE(record.value(word), QJsonValue(u"text of "_s + word));
        for (const QString &word : trackFlags)
            QCOMPARE(record.value(word), QJsonValue(true));
        for (const QString &word : trackLocations)
            QCOMPARE(record.value(word), QJsonValue(u"/v/"_s + word));
        QVERIFY(record.value(u"userAudioSettingsDictionaryArray"_s).isArray());
    }

    void noWordOfTheModelIsMissing()
    {
        const QJsonObject track = cli::trackRecord(KXVideoTrack());
        for (const QString &word : KXVideoTrack::fieldNames())
            QVERIFY2(track.contains(word), qPrintable(word));
        const QJsonObject file = cli::fileRecord(KXVideoFile(nullptr));
        for (const QString &word : KXVideoFile::propertiesKeysList())
            QVERIFY2(file.contains(word), qPrintable(word));
    }

    void numbersStayTexts()
    {
        KXVideoTrack track;
        track.setTrackBitRate(u"160"_s);
        track.setTrackFfmpegID(u"1"_s);
        const QJsonObject record = cli::trackRecord(track);
        QCOMPARE(record.value(u"trackBitRate"_s), QJsonValue(u"160"_s));
        QCOMPARE(record.value(u"trackFfmpegID"_s), QJsonValue(u"1"_s));
    }

    void flagsThatAreOffAreFalse()
    {
        const QJsonObject record = cli::trackRecord(KXVideoTrack());
        for (const QString &word : trackFlags)
            QCOMPARE(record.value(word), QJsonValue(false));
    }

    void anAbsentTextIsNullAndAnEmptyOneIsEmpty()
    {
        KXVideoTrack track;
        track.setTrackTitle(QString());
        track.setTrackMkvmergeID(QString());
        track.setTrackInfo(u""_s);
        const QJsonObject record = cli::trackRecord(track);
        QVERIFY(record.value(u"trackTitle"_s).isNull());
        QVERIFY(record.value(u"trackMkvmergeID"_s).isNull());
        QVERIFY(record.contains(u"trackTitle"_s));
        QCOMPARE(record.value(u"trackInfo"_s), QJsonValue(u""_s));
    }

    void aLocationWithoutAPathIsNull()
    {
        KXVideoTrack track;
        track.setTrackFileURL(QUrl());
        track.setConvertedFileURL(QUrl::fromLocalFile(QString()));
        const QJsonObject record = cli::trackRecord(track);
        QVERIFY(record.value(u"trackFileURL"_s).isNull());
        QVERIFY(record.value(u"convertedFileURL"_s).isNull());
        QVERIFY(cli::fileRecord(KXVideoFile(nullptr)).value(u"theFileURL"_s).isNull());
    }

    void audioSettingsAreAListOfObjects()
    {
        KXVideoTrack track;
        track.setUserAudioSettingsDictionaryArray(
            {{{u"userCodec"_s, u"aac"_s}, {u"userBitRate"_s, u"160"_s}, {u"userNumberOfChannels"_s, u"2"_s}},
             {{u"userCodec"_s, u"passthru"_s}, {u"userBitRate"_s, u"0"_s}}});
        const QJsonArray settings =
            cli::trackRecord(track).value(u"userAudioSettingsDictionaryArray"_s).toArray();
        const QJsonObject first{
            {u"userCodec"_s, u"aac"_s}, {u"userBitRate"_s, u"160"_s}, {u"userNumberOfChannels"_s, u"2"_s}};
        const QJsonObject second{{u"userCodec"_s, u"passthru"_s}, {u"userBitRate"_s, u"0"_s}};
        QCOMPARE(settings, QJsonArray({first, second}));
        QCOMPARE(cli::trackRecord(KXVideoTrack()).value(u"userAudioSettingsDictionaryArray"_s),
                 QJsonValue(QJsonArray()));
    }

    void aReceiptIsAListOfObjects()
    {
        media::TrackFate fate;
        fate.source = QUrl::fromLocalFile(u"/v/a.mkv"_s);
        fate.index = 1;
        fate.kind = u"audio"_s;
        fate.codec = u"ac3"_s;
        fate.became = media::Became::Reencoded;
        fate.to = u"aac"_s;
        fate.output = QUrl::fromLocalFile(u"/v/a.m4v"_s);
        fate.outputIndex = 2;
        fate.sourceSeconds = 60.5;
        fate.outputSeconds = 60.25;
        fate.sourceBytes = 5'000'000'000;
        fate.outputBytes = 7;
        fate.proof = media::Proof::Lengths;
        const QJsonObject expected{{u"source"_s, u"/v/a.mkv"_s},  {u"index"_s, 1},
                                   {u"kind"_s, u"audio"_s},       {u"codec"_s, u"ac3"_s},
                                   {u"became"_s, u"reencoded"_s}, {u"to"_s, u"aac"_s},
                                   {u"reason"_s, QJsonValue()},   {u"output"_s, u"/v/a.m4v"_s},
                                   {u"outputIndex"_s, 2},         {u"sourceSeconds"_s, 60.5},
                                   {u"outputSeconds"_s, 60.25},   {u"sourceBytes"_s, 5'000'000'000.0},
                                   {u"outputBytes"_s, 7},         {u"proof"_s, u"lengths"_s}};
        QCOMPARE(cli::receiptRecord({{fate}}), QJsonArray{expected});
    }

    void whatAReceiptDoesNotKnowIsNull()
    {
        media::TrackFate fate;
        fate.source = QUrl::fromLocalFile(u"/v/a.mkv"_s);
        fate.kind = u"chapters"_s;
        fate.became = media::Became::LeftOut;
        fate.reason = u"An AVI carries no chapters."_s;
        QJsonObject expected{{u"source"_s, u"/v/a.mkv"_s},
                             {u"kind"_s, u"chapters"_s},
                             {u"became"_s, u"leftOut"_s},
                             {u"reason"_s, u"An AVI carries no chapters."_s},
                             {u"proof"_s, u"notProven"_s}};
        for (const QString &word :
             {u"index"_s, u"codec"_s, u"to"_s, u"output"_s, u"outputIndex"_s, u"sourceSeconds"_s,
              u"outputSeconds"_s, u"sourceBytes"_s, u"outputBytes"_s})
            expected.insert(word, QJsonValue());
        QCOMPARE(cli::receiptRecord({{fate}}), QJsonArray{expected});
        QCOMPARE(cli::receiptRecord({}), QJsonArray());
    }
};

TESSARAY_TEST(RecordsTest)
#include "RecordsTest.moc"
