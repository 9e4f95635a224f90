#include "tools/ToolEnvironment.h"

#include "tools/ToolPlaces.h"

#include <clocale>
#include <locale.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace tools {

namespace {

bool localeExists(const char *name)
{
    const locale_t locale = newlocale(LC_ALL_MASK, name, nullptr);
    if (locale == nullptr)
        return false;
    freelocale(locale);
    return true;
}

QString mkvLocale()
{
    static const QString name = localeExists("en_US.UTF-8") ? u"en_US.UTF-8"_s : u"C.UTF-8"_s;
    return name;
}

} // namespace

ToolFamily toolFamily(const QUrl &tool)
{
    const QString name = tool.fileName().toLower();
    if (name.contains(u"mkv"_s))
        return ToolFamily::Mkv;
    if (name.contains(u"ffmpeg"_s))
        return ToolFamily::Ffmpeg;
    if (name.contains(u"atomicparsley"_s))
        return ToolFamily::AtomicParsley;
    return ToolFamily::Other;
}

bool burnsSubtitles(const QStringList &arguments)
{
    return std::any_of(arguments.begin(), arguments.end(),
                       [](const QString &text) { return text.contains(u"subtitles="_s); });
}

QList<std::pair<QString, QString>> addedEnvironment(const QUrl &tool, const QStringList &arguments,
                                                    const ToolPlaces &places)
{
    switch (toolFamily(tool)) {
    case ToolFamily::Mkv: {
        // Shell lines point at the resource folder, process objects at the tools folder; both are meant.
        const QString library = places.toolsLocation().toLocalFile() + u"/mkvtoolnix/lib"_s;
        return {{u"LANG"_s, u"en_US.UTF-8"_s},
                {u"DYLD_LIBRARY_PATH"_s, library},
                {u"LD_LIBRARY_PATH"_s, library}};
    }
    case ToolFamily::Ffmpeg: {
        if (!burnsSubtitles(arguments))
            return {};
        const QString fonts = places.resourcesLocation().toLocalFile() + u"/fonts"_s;
        return {{u"FONTCONFIG_PATH"_s, fonts}, {u"FONTCONFIG_FILE"_s, fonts + u"/fonts.conf"_s}};
    }
    case ToolFamily::AtomicParsley:
        return {{u"AP_PADDING"_s, u"DEFAULT_PAD=5128:MIN_PAD=0:MAX_PAD=5128"_s}};
    case ToolFamily::Other:
        break;
    }
    return {};
}

QProcessEnvironment processEnvironment(const QUrl &tool, const QStringList &arguments,
                                       const ToolPlaces &places)
{
    QProcessEnvironment environment = shellEnvironment(tool);
    for (const auto &[name, value] : addedEnvironment(tool, arguments, places))
        environment.insert(name, value);
    return environment;
}

QProcessEnvironment lineEnvironment(const QUrl &tool, const QStringList &arguments, const ToolPlaces &places)
{
    QProcessEnvironment environment = processEnvironment(tool, arguments, places);
    if (toolFamily(tool) == ToolFamily::Mkv) {
        const QString library = places.resourcesLocation().toLocalFile() + u"/mkvtoolnix/lib"_s;
        environment.insert(u"DYLD_LIBRARY_PATH"_s, library);
        environment.insert(u"LD_LIBRARY_PATH"_s, library);
    }
    return environment;
}

QProcessEnvironment shellEnvironment(const QUrl &tool)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(u"AV_LOG_FORCE_COLOR"_s); // colours would hide ffmpeg's lines from their readers
    if (toolFamily(tool) == ToolFamily::Mkv)
        environment.insert(u"LC_ALL"_s, mkvLocale());
    return environment;
}

} // namespace tools
