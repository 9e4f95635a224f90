#include "presets/PresetRecord.h"

#include <QHash>
#include <QMetaProperty>

using namespace Qt::StringLiterals;

namespace presets {

namespace {

/// By word, made once a class: a record is read at every save.
const QHash<QString, QMetaProperty> &propertiesOf(const QMetaObject &meta)
{
    static QHash<const QMetaObject *, QHash<QString, QMetaProperty>> known;
    QHash<QString, QMetaProperty> &properties = known[&meta];
    for (int i = properties.isEmpty() ? 0 : meta.propertyCount(); i < meta.propertyCount(); ++i)
        properties.insert(QString::fromLatin1(meta.property(i).name()), meta.property(i));
    return properties;
}

QMetaProperty propertyNamed(const QObject &object, const QString &word)
{
    return propertiesOf(*object.metaObject()).value(word);
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
