#include "support/SheetBench.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace support {

namespace {

const Scratch &stored(const Scratch &scratch)
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

SheetBench::SheetBench()
    : program(stored(scratch))
    , presets(program.presets)
{
    program.open(probedFilm());
}

QString SheetBench::listed() const
{
    return namesOf(presets.presetSelectionsList());
}

QString SheetBench::settingsListed() const
{
    return namesOf(presets.presetSettingsList());
}

/// A folder in its place can be neither read nor replaced.
bool SheetBench::block() const
{
    const QString path = scratch.path(u"defaults.json"_s);
    return QFile::remove(path) && QDir().mkdir(path);
}

} // namespace support
