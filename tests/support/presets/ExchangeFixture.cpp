#include "support/presets/ExchangeFixture.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace support {

namespace {

const Scratch &stored(const Scratch &scratch)
{
    storePresets(scratch, {selectionsRecord(u"Own"_s)}, {settingsRecord(u"For PS3"_s)});
    return scratch;
}

} // namespace

QByteArray presetFile(const QVariantList &selections, const QVariantList &settings)
{
    const QVariantMap file{
        {u"version"_s, 1}, {u"presetSelectionsArray"_s, selections}, {u"presetSettingsArray"_s, settings}};
    return QJsonDocument::fromVariant(file).toJson();
}

QVariantMap with(QVariantMap record, const QString &word, const QVariant &value)
{
    record.insert(word, value);
    return record;
}

QVariantMap without(QVariantMap record, const QString &word)
{
    record.remove(word);
    return record;
}

ExchangeFixture::ExchangeFixture()
    : program(stored(scratch))
    , presets(program.presets)
{
}

QString ExchangeFixture::namesAtNextStart() const
{
    const PresetFixture next(scratch);
    return next.presets.presetSelectionsNamesList().join(u", "_s) + u" / "_s +
           next.presets.presetSettingsNamesList().join(u", "_s);
}

} // namespace support
