// A job is stored and read back as it was, whatever it holds.
#include "jobs/JobRecord.h"

#include "media/KXVideoTrack.h"
#include "support/Seeds.h"
#include "support/TestMain.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaProperty>
#include <QTest>

using namespace Qt::StringLiterals;
using jobs::JobKind;
using jobs::JobRecord;
using jobs::ReadRecord;
using support::Chances;

namespace {

const QList<JobKind> allKinds{JobKind::Conversion,      JobKind::Muxing,         JobKind::MkvEditing,
                              JobKind::TrackExtraction, JobKind::Joining,        JobKind::Splitting,
                              JobKind::Remux,           JobKind::SubtitleSending};
const QList<JobRecord::State> allStates{JobRecord::State::Waiting, JobRecord::State::Running,
                                        JobRecord::State::Publishing, JobRecord::State::Interrupted};

QString textBy(Chances &chances)
{
    static const QStringList texts{QString(),    u""_s,
                                   u"none"_s,    u"0"_s,
                                   u"Füße 🎬"_s,  u"a\"b\\c'\n"_s,
                                   u"日本語"_s,  u"\u0001\t%41&amp;"_s,
                                   u"e\u0301"_s, QString(300, u'x'),
                                   u"-i"_s,      u" blank "_s};
    return texts.at(chances.below(texts.size()));
}

QUrl fileBy(Chances &chances)
{
    static const QStringList names{u"/v/film.mkv"_s, u"/v/a %41#?.mkv"_s, u"/v/Füße 🎬/é.m4v"_s,
                                   u"/v/a:b;c\n.mkv"_s};
    const qsizetype number = chances.below(names.size() + 1);
    return number == names.size() ? QUrl() : QUrl::fromLocalFile(names.at(number));
}

QVariant valueBy(Chances &chances, int kind)
{
    if (kind == QMetaType::QString)
        return textBy(chances);
    if (kind == QMetaType::Bool)
        return chances.below(2) == 0;
    if (kind == QMetaType::QUrl)
        return fileBy(chances);
    if (kind == QMetaType::QStringList)
        return QStringList{u"x"_s + textBy(chances), u"y"_s};
    if (kind == qMetaTypeId<QList<QUrl>>())
        return QVariant::fromValue(QList<QUrl>{fileBy(chances), QUrl::fromLocalFile(u"/w/z.mkv"_s)});
    if (kind == qMetaTypeId<AudioSettingsList>())
        return QVariant::fromValue(
            AudioSettingsList{{{u"userCodec"_s, u"ac3"_s}, {u"userBitRate"_s, u"448"_s}},
                              {{u"userCodec"_s, u"x"_s + textBy(chances)}}});
    return {};
}

/// Each field of the class itself gets a value; lists of tracks and the list of keys are left out.
void fill(QObject &object, Chances &chances)
{
    const QMetaObject &meta = *object.metaObject();
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QVariant value = valueBy(chances, meta.property(i).typeId());
        if (value.isValid() && meta.property(i).name() != QByteArray("propertiesKeysList"))
            meta.property(i).write(&object, value);
    }
}

TrackPointer trackBy(Chances &chances)
{
    auto track = std::make_shared<KXVideoTrack>();
    fill(*track, chances);
    track->setProbedCodecName(textBy(chances));
    track->setHasCompany(chances.below(2) == 0);
    track->setIsCover(chances.below(2) == 0);
    return track;
}

SelectionPointer selectionBy(Chances &chances)
{
    const auto selection = std::make_shared<KXSelection>();
    fill(*selection, chances);
    TrackList all;
    for (qsizetype i = chances.below(5); i >= 0; --i)
        all.append(trackBy(chances));
    selection->setTrackList(all);
    selection->setKeepTracksList({all.constLast(), trackBy(chances)}); // one track in two lists
    selection->setAddedAudioTrackList(chances.below(2) == 0 ? TrackList{} : TrackList{all.constFirst()});
    return selection;
}

/// "word: value" of every field whose value a record holds; a null text is told from an empty one.
QStringList fieldsOf(const QObject &object)
{
    QStringList fields;
    const QMetaObject &meta = *object.metaObject();
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QVariant value = meta.property(i).read(&object);
        if (value.typeId() == qMetaTypeId<TrackList>())
            continue;
        QString text;
        QDebug(&text).nospace() << value;
        if (value.typeId() == QMetaType::QString && value.toString().isNull())
            text = u"absent"_s;
        fields.append(QLatin1StringView(meta.property(i).name()) + u": "_s + text);
    }
    return fields;
}

QStringList fieldsOfTracks(const TrackList &tracks)
{
    QStringList fields;
    for (const TrackPointer &track : tracks)
        fields += fieldsOf(*track) +
                  QStringList{track->probedCodecName().isNull() ? u"absent"_s : track->probedCodecName(),
                              QString::number(track->hasCompany()), QString::number(track->isCover())};
    return fields;
}

JobRecord recordBy(Chances &chances, JobKind kind)
{
    JobRecord record;
    record.job.kind = kind;
    record.job.fileName = u"n"_s + textBy(chances);
    record.job.selection = selectionBy(chances);
    record.job.sources = {{u"/v/Füße \"x\".mkv"_s, 9007199254740993LL, 1795372800123LL}};
    record.state = allStates.at(chances.below(allStates.size()));
    record.place = 0.1 + static_cast<double>(chances.below(1000)) / 7;
    record.claimed = {QUrl::fromLocalFile(u"/out/a b.mkv"_s)};
    record.outputs = {{u"/out/%2.mkv"_s, 1, 2}};
    return record;
}

void compareSelections(const KXSelection &found, const KXSelection &meant)
{
    QCOMPARE(fieldsOf(found), fieldsOf(meant));
    QCOMPARE(fieldsOfTracks(found.trackList()), fieldsOfTracks(meant.trackList()));
    QCOMPARE(fieldsOfTracks(found.keepTracksList()), fieldsOfTracks(meant.keepTracksList()));
    QCOMPARE(fieldsOfTracks(found.addedAudioTrackList()), fieldsOfTracks(meant.addedAudioTrackList()));
    QCOMPARE(found.keepTracksList().constFirst(), found.trackList().constLast()); // one track, not two alike
}

QByteArray changedBytes(const JobRecord &record, const QString &key, const QJsonValue &value)
{
    QJsonObject object = QJsonDocument::fromJson(toBytes(record)).object();
    object.insert(key, value);
    return QJsonDocument(object).toJson();
}

QJsonObject selectionOf(const JobRecord &record)
{
    return QJsonDocument::fromJson(toBytes(record)).object().value(u"selection"_s).toObject();
}

} // namespace

class JobRecordTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKindAndFieldIsReadBack()
    {
        Chances chances(support::seed());
        for (int round = 0; round < support::times(500, 12); ++round) {
            for (const JobKind kind : allKinds) {
                const JobRecord meant = recordBy(chances, kind);
                const ReadRecord read = jobs::recordFrom(toBytes(meant));
                QVERIFY(read.kind == ReadRecord::Kind::Known);
                const JobRecord &found = read.record;
                QVERIFY(found.job.kind == meant.job.kind && found.state == meant.state);
                QCOMPARE(found.job.fileName, meant.job.fileName);
                QCOMPARE(found.place, meant.place);
                QVERIFY(found.job.sources == meant.job.sources && found.outputs == meant.outputs);
                QCOMPARE(found.claimed, meant.claimed);
                QVERIFY(found.job.outcome.verdict == steps::Verdict::Unknown);
                compareSelections(*found.job.selection, *meant.job.selection);
            }
        }
    }

    /// A field of a kind that nobody thought of would be lost.
    void everyFieldIsWritten()
    {
        Chances chances(1);
        const QJsonObject record = selectionOf(recordBy(chances, JobKind::Conversion));
        const QMetaObject &selection = KXSelection::staticMetaObject;
        for (int i = selection.propertyOffset(); i < selection.propertyCount(); ++i) {
            const QLatin1StringView word(selection.property(i).name());
            QVERIFY2(record.contains(word) != (word == "propertiesKeysList"_L1), word.data());
        }
        const QJsonObject track = record.value(u"tracks"_s).toArray().at(0).toObject();
        for (const QString &word : KXVideoTrack::fieldNames())
            QVERIFY2(track.contains(word), qPrintable(word));
    }

    void aCutAnywhereIsDamage()
    {
        Chances chances(support::seed());
        const QByteArray bytes = toBytes(recordBy(chances, JobKind::Conversion));
        QList<qsizetype> places;
        for (qsizetype place = 0; place < bytes.size(); ++place)
            places.append(place);
        for (const qsizetype place : support::drawn(places, 60))
            QVERIFY2(jobs::recordFrom(bytes.first(place)).kind == ReadRecord::Kind::Damaged,
                     qPrintable(QString::number(place)));
        QVERIFY(jobs::recordFrom(QByteArray(bytes.size(), '\0')).kind == ReadRecord::Kind::Damaged);
    }

    void versionsAreTold()
    {
        Chances chances(support::seed());
        const JobRecord record = recordBy(chances, JobKind::Remux);
        QVERIFY(jobs::recordFrom(changedBytes(record, u"version"_s, 2)).kind == ReadRecord::Kind::Newer);
        QVERIFY(jobs::recordFrom(R"({"version": 9, "all": "else"})").kind == ReadRecord::Kind::Newer);
        for (const QJsonValue &version : {QJsonValue(0), QJsonValue(u"1"_s), QJsonValue(), QJsonValue(0.5)})
            QVERIFY(jobs::recordFrom(changedBytes(record, u"version"_s, version)).kind ==
                    ReadRecord::Kind::Damaged);
    }

    void wordsThatCameLaterKeepTheirDefaultsAndOthersArePassedOver()
    {
        Chances chances(support::seed());
        const JobRecord record = recordBy(chances, JobKind::Remux);
        QJsonObject selection = selectionOf(record);
        selection.remove(u"mp4Muxer"_s);
        selection.insert(u"newerWord"_s, 7);
        const ReadRecord read = jobs::recordFrom(changedBytes(record, u"selection"_s, selection));
        QVERIFY(read.kind == ReadRecord::Kind::Known);
        QCOMPARE(read.record.job.selection->mp4Muxer(), u"mp4box"_s);
    }

    void whatDoesNotFitIsDamage_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("json");
        QTest::newRow("kind") << u"kind"_s << u"\"dancing\""_s;
        QTest::newRow("state") << u"state"_s << u"\"asleep\""_s;
        QTest::newRow("place") << u"place"_s << u"\"1\""_s;
        QTest::newRow("file name") << u"fileName"_s << u"3"_s;
        QTest::newRow("sources") << u"sources"_s << u"{}"_s;
        QTest::newRow("no selection") << u"selection"_s << u"null"_s;
        QTest::newRow("a text that is a number") << u"selection"_s << uR"({"theDevice": 5})"_s;
        QTest::newRow("a flag that is a text") << u"selection"_s << uR"({"headerRemovalFlag": "1"})"_s;
        QTest::newRow("a track that is not there")
            << u"selection"_s << uR"({"tracks": [], "trackList": [0]})"_s;
        QTest::newRow("a track that is none") << u"selection"_s << uR"({"tracks": [1], "trackList": []})"_s;
        QTest::newRow("a bad track") << u"selection"_s << uR"({"tracks": [{"trackType": []}]})"_s;
    }

    void whatDoesNotFitIsDamage()
    {
        QFETCH(QString, key);
        QFETCH(QString, json);
        Chances chances(support::seed());
        const QJsonValue value = QJsonDocument::fromJson("[" + json.toUtf8() + "]").array().at(0);
        const QByteArray bytes = changedBytes(recordBy(chances, JobKind::Joining), key, value);
        QVERIFY(jobs::recordFrom(bytes).kind == ReadRecord::Kind::Damaged);
    }
};

TESSARAY_TEST(JobRecordTest)
#include "JobRecordTest.moc"
