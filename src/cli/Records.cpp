#include "cli/Records.h"

#include "media/KXVideoFile.h"
#include "media/KXVideoTrack.h"

#include <QJsonArray>

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

} // namespace cli
