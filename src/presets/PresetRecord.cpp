#include "presets/PresetRecord.h"

#include <QMetaProperty>

using namespace Qt::StringLiterals;

namespace presets {

namespace {

QMetaProperty propertyNamed(const QObject &object, const QString &word)
{
    const QMetaObject &meta = *object.metaObject();
    return meta.property(meta.indexOfProperty(word.toLatin1().constData()));
}

} // namespace

QVariantMap recordOf(const QObject &object, const QStringList &words)
{
    QVariantMap record;
    for (const QString &word : words)
        record.insert(word, propertyNamed(object, word).read(&object));
    return record;
}

void takeRecord(QObject &object, const QVariantMap &record, const QStringList &words)
{
    for (const QString &word : words) {
        const QMetaProperty property = propertyNamed(object, word);
        QVariant value = record.value(word);
        if (!value.convert(property.metaType())) // absent, or of a kind that makes no sense here
            value = QVariant(property.metaType());
        property.write(&object, value);
    }
}

QVariantMap otherFields(QVariantMap record, const QStringList &words)
{
    for (const QString &word : words)
        record.remove(word);
    return record;
}

QVariantMap withOthers(QVariantMap record, const QVariantMap &others)
{
    for (auto field = others.cbegin(); field != others.cend(); ++field) {
        if (!record.contains(field.key()))
            record.insert(field.key(), *field);
    }
    return record;
}

bool isFreeName(const QString &name)
{
    static const QStringList builtIn{u"Manual"_s, u"Extract Tracks"_s, u"Remove Tracks"_s, u"First Track"_s,
                                     u"All Tracks"_s};
    return !name.trimmed().isEmpty() && !builtIn.contains(name);
}

} // namespace presets
