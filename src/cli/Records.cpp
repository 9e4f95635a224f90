#include "cli/Records.h"

#include "media/KXVideoFile.h"
#include "media/KXVideoTrack.h"
#include "media/Receipt.h"

using namespace Qt::StringLiterals;

namespace cli {

namespace {

QJsonValue jsonOf(const QVariant &value)
{
    if (value.metaType() == QMetaType::fromType<AudioSettingsList>()) {
        QJsonArray settings;
        for (const QVariantMap &setting : value.value<AudioSettingsList>())
            settings.append(QJsonObject::fromVariantMap(setting));
        return settings;
    }
    switch (value.typeId()) {
    case QMetaType::QUrl:
        return value.toUrl().path().isEmpty() ? QJsonValue() : QJsonValue(value.toUrl().toLocalFile());
    case QMetaType::QString:
        return value.toString().isNull() ? QJsonValue() : QJsonValue(value.toString());
    default:
        return QJsonValue::fromVariant(value);
    }
}

QJsonValue jsonOf(const std::optional<double> &value)
{
    return value ? QJsonValue(*value) : QJsonValue();
}

QJsonValue jsonOf(const std::optional<qint64> &value)
{
    return value ? QJsonValue(*value) : QJsonValue();
}

/// A stream's index; what is no stream has none.
QJsonValue indexOf(int index)
{
    return index < 0 ? QJsonValue() : QJsonValue(index);
}

QJsonObject fateRecord(const media::TrackFate &fate)
{
    return {{u"source"_s, jsonOf(QVariant(fate.source))},
            {u"index"_s, indexOf(fate.index)},
            {u"kind"_s, fate.kind},
            {u"codec"_s, jsonOf(QVariant(fate.codec))},
            {u"became"_s, media::wordOf(fate.became)},
            {u"to"_s, jsonOf(QVariant(fate.to))},
            {u"reason"_s, jsonOf(QVariant(fate.reason))},
            {u"output"_s, jsonOf(QVariant(fate.output))},
            {u"outputIndex"_s, indexOf(fate.outputIndex)},
            {u"sourceSeconds"_s, jsonOf(fate.sourceSeconds)},
            {u"outputSeconds"_s, jsonOf(fate.outputSeconds)},
            {u"sourceBytes"_s, jsonOf(fate.sourceBytes)},
            {u"outputBytes"_s, jsonOf(fate.outputBytes)},
            {u"proof"_s, media::proofWordOf(fate)}};
}

QJsonObject recordOf(const QObject &object, const QStringList &words)
{
    QJsonObject record;
    for (const QString &word : words)
        record.insert(word, jsonOf(object.property(word.toLatin1().constData())));
    return record;
}

} // namespace

QJsonObject fileRecord(const KXVideoFile &file)
{
    return recordOf(file, file.propertiesKeysList());
}

QJsonObject trackRecord(const KXVideoTrack &track)
{
    return recordOf(track, KXVideoTrack::fieldNames());
}

QJsonArray receiptRecord(const media::Receipt &receipt)
{
    QJsonArray records;
    for (const media::TrackFate &fate : receipt.tracks)
        records.append(fateRecord(fate));
    return records;
}

} // namespace cli
