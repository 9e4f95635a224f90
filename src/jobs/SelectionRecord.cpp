#include "jobs/SelectionRecord.h"

#include <QJsonArray>

#include <optional>

using namespace Qt::StringLiterals;

namespace jobs {

namespace {

const QString tracksKey = u"tracks"_s;
const QString probedCodecKey = u"probedCodecName"_s;
const QString companyKey = u"hasCompany"_s;
const QString coverKey = u"isCover"_s;
const QString secondsKey = u"sourceSeconds"_s;

/// How a value of a field is written; nothing for kinds that are written otherwise.
std::optional<QJsonValue> written(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString().isNull() ? QJsonValue() : QJsonValue(value.toString());
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::QUrl:
        return value.toUrl().isEmpty() ? QJsonValue()
                                       : QJsonValue(value.toUrl().toString(QUrl::FullyEncoded));
    case QMetaType::QStringList:
        return QJsonArray::fromStringList(value.toStringList());
    default:
        break;
    }
    if (value.typeId() == qMetaTypeId<QList<QUrl>>()) {
        QJsonArray list;
        for (const QUrl &url : value.value<QList<QUrl>>())
            list.append(url.toString(QUrl::FullyEncoded));
        return list;
    }
    if (value.typeId() == qMetaTypeId<AudioSettingsList>()) {
        QJsonArray list;
        for (const QVariantMap &settings : value.value<AudioSettingsList>())
            list.append(QJsonObject::fromVariantMap(settings));
        return list;
    }
    return std::nullopt;
}

QStringList textsIn(const QJsonArray &array)
{
    QStringList texts;
    for (const QJsonValue &value : array) {
        if (value.isString())
            texts.append(value.toString());
    }
    return texts;
}

QVariant listOfUrls(const QJsonArray &array)
{
    QList<QUrl> urls;
    for (const QString &text : textsIn(array))
        urls.append(QUrl(text));
    return QVariant::fromValue(urls);
}

QVariant audioSettingsIn(const QJsonArray &array)
{
    AudioSettingsList list;
    for (const QJsonValue &value : array)
        list.append(value.toObject().toVariantMap());
    return QVariant::fromValue(list);
}

/// What a field of that kind is given; nothing where the value is of another one.
std::optional<QVariant> read(const QJsonValue &value, int kind)
{
    const bool isTextOrAbsent = value.isString() || value.isNull();
    if (kind == QMetaType::QString && isTextOrAbsent)
        return value.isNull() ? QVariant(QString()) : QVariant(value.toString(u""_s));
    if (kind == QMetaType::QUrl && isTextOrAbsent)
        return QVariant(QUrl(value.toString()));
    if (kind == QMetaType::Bool && value.isBool())
        return value.toBool();
    if (!value.isArray())
        return std::nullopt;
    if (kind == QMetaType::QStringList)
        return textsIn(value.toArray());
    if (kind == qMetaTypeId<QList<QUrl>>())
        return listOfUrls(value.toArray());
    if (kind == qMetaTypeId<AudioSettingsList>())
        return audioSettingsIn(value.toArray());
    return std::nullopt;
}

/// The fields of the class itself, but the keys that it makes itself and its lists of tracks.
QList<QMetaProperty> fieldsOf(const QMetaObject &meta)
{
    QList<QMetaProperty> fields;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty field = meta.property(i);
        if (field.typeId() != qMetaTypeId<TrackList>() && field.name() != QByteArray("propertiesKeysList"))
            fields.append(field);
    }
    return fields;
}

QJsonObject wordsOf(const QObject &object)
{
    QJsonObject words;
    for (const QMetaProperty &field : fieldsOf(*object.metaObject())) {
        if (const auto value = written(field.read(&object)))
            words.insert(QLatin1StringView(field.name()), *value);
    }
    return words;
}

bool takeWords(QObject &object, const QJsonObject &words)
{
    for (const QMetaProperty &field : fieldsOf(*object.metaObject())) {
        const QJsonValue found = words.value(QLatin1StringView(field.name()));
        if (found.isUndefined())
            continue;
        const auto value = read(found, field.typeId());
        if (!value || !field.write(&object, *value))
            return false;
    }
    return true;
}

QJsonObject trackRecord(const KXVideoTrack &track)
{
    QJsonObject record = wordsOf(track);
    record.insert(probedCodecKey, *written(track.probedCodecName()));
    record.insert(companyKey, track.hasCompany());
    record.insert(coverKey, track.isCover());
    return record;
}

TrackPointer trackFrom(const QJsonValue &value)
{
    const QJsonObject record = value.toObject();
    auto track = std::make_shared<KXVideoTrack>();
    if (!value.isObject() || !takeWords(*track, record))
        return nullptr;
    if (record.value(probedCodecKey).isString())
        track->setProbedCodecName(record.value(probedCodecKey).toString());
    track->setHasCompany(record.value(companyKey).toBool());
    track->setIsCover(record.value(coverKey).toBool());
    return track;
}

struct TrackField
{
    QString word;
    TrackList (KXSelection::*get)() const;
    void (KXSelection::*set)(const TrackList &);
};

const QList<TrackField> &trackFields()
{
    static const QList<TrackField> fields{
        {u"trackList"_s, &KXSelection::trackList, &KXSelection::setTrackList},
        {u"keepTracksList"_s, &KXSelection::keepTracksList, &KXSelection::setKeepTracksList},
        {u"addedAudioTrackList"_s, &KXSelection::addedAudioTrackList, &KXSelection::setAddedAudioTrackList},
    };
    return fields;
}

/// The tracks by their places in the record; nothing where one of them is not there.
std::optional<TrackList> tracksAt(const QJsonArray &places, const TrackList &all)
{
    TrackList tracks;
    for (const QJsonValue &place : places) {
        const int number = place.toInt(-1);
        if (number < 0 || number >= all.size())
            return std::nullopt;
        tracks.append(all.at(number));
    }
    return tracks;
}

} // namespace

QJsonObject toRecord(const KXSelection &selection)
{
    QJsonObject record = wordsOf(selection);
    TrackList all;
    QJsonArray tracks;
    for (const TrackField &field : trackFields()) {
        QJsonArray places;
        for (const TrackPointer &track : (selection.*field.get)()) {
            if (!all.contains(track)) {
                all.append(track);
                tracks.append(trackRecord(*track));
            }
            places.append(all.indexOf(track));
        }
        record.insert(field.word, places);
    }
    record.insert(tracksKey, tracks);
    if (const auto seconds = selection.sourceSeconds())
        record.insert(secondsKey, *seconds);
    return record;
}

SelectionPointer selectionFrom(const QJsonObject &record)
{
    const auto selection = std::make_shared<KXSelection>();
    if (!takeWords(*selection, record))
        return nullptr;
    if (const QJsonValue seconds = record.value(secondsKey); seconds.isDouble())
        selection->setSourceSeconds(seconds.toDouble());
    TrackList all;
    for (const QJsonValue &value : record.value(tracksKey).toArray()) {
        all.append(trackFrom(value));
        if (!all.constLast())
            return nullptr;
    }
    for (const TrackField &field : trackFields()) {
        const auto tracks = tracksAt(record.value(field.word).toArray(), all);
        if (!tracks)
            return nullptr;
        ((*selection).*field.set)(*tracks);
    }
    return selection;
}

} // namespace jobs
