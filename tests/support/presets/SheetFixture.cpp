#include "support/presets/SheetFixture.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace support {

namespace {

const Scratch &storedPresets(const Scratch &scratch)
{
    storeTwoOfEach(scratch);
    return scratch;
}

template <typename List>
QString namesOf(const List &list)
{
    QStringList names;
    for (const auto &preset : list)
        names.append(preset->pName());
    return names.join(u", "_s);
}

} // namespace

SheetFixture::SheetFixture()
    : program(storedPresets(scratch))
    , presets(program.presets)
{
    program.open(probedFilm());
}

QString SheetFixture::listed() const
{
    return namesOf(presets.presetSelectionsList());
}

QString SheetFixture::settingsListed() const
{
    return namesOf(presets.presetSettingsList());
}

/// A folder in its place can be neither read nor replaced.
bool SheetFixture::block() const
{
    const QString path = scratch.path(u"defaults.json"_s);
    return QFile::remove(path) && QDir().mkdir(path);
}

} // namespace support
