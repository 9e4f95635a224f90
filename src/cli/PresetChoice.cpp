#include "cli/PresetChoice.h"

#include "cli/Session.h"

using namespace Qt::StringLiterals;

namespace cli {

namespace {

/// The index of the preset that an option names, or of the one that counts when it is not given; -1
/// with a sentence when there is none of that name.
int indexOf(const CommandLine &line, const QString &option, const QStringList &names,
            const QString &otherwise, QString &problem)
{
    const QString name = line.has(option) ? line.value(option) : otherwise;
    const int index = static_cast<int>(names.indexOf(name));
    if (index < 0)
        problem = u"--%1: there is no preset \"%2\". There are: %3."_s.arg(option, name, names.join(u", "_s));
    return index;
}

} // namespace

QString choosePresets(Session &session)
{
    KXPresetsController &presets = session.program().presets();
    QString problem;
    const int tracks = indexOf(session.line(), u"track-preset"_s, presets.presetSelectionsNamesList(),
                               u"First Track"_s, problem);
    const int settings = indexOf(session.line(), u"settings-preset"_s, presets.presetSettingsNamesList(),
                                 u"Manual"_s, problem);
    if (!problem.isNull())
        return problem;
    presets.setSelectionMethodIndex(tracks);
    presets.setSettingMethodIndex(settings);
    return {};
}

} // namespace cli
