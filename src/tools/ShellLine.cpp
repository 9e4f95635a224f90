#include "tools/ShellLine.h"

#include "tools/ToolEnvironment.h"
#include "tools/ToolPlaces.h"

using namespace Qt::StringLiterals;

namespace tools
{

namespace
{

using Quote = QString (*)(const QString &);

/// The head of the line. The library exports have no blank between them nor before the tool: the
/// spelling is meant and pinned by tests.
QString headFor(const QUrl &tool, const OptionList &options, const ToolPlaces &places, Quote inDouble,
                Quote inSingle)
{
    const QString resources = places.resourcesLocation().toLocalFile();
    QString head;
    switch (toolFamily(tool)) {
    case ToolFamily::Mkv: {
        const QString library = inSingle(resources + u"/mkvtoolnix/lib"_s);
        head = u"export LANG=en_US.UTF-8; export DYLD_LIBRARY_PATH="_s + library
               + u";export LD_LIBRARY_PATH="_s + library + u';';
        break;
    }
    case ToolFamily::Ffmpeg:
        if (burnsSubtitles(textsOf(options))) {
            head = u"export FONTCONFIG_PATH="_s + inDouble(resources + u"/fonts"_s)
                   + u"; export FONTCONFIG_FILE="_s + inDouble(resources + u"/fonts/fonts.conf"_s) + u';';
        }
        break;
    case ToolFamily::AtomicParsley:
        head = u"export AP_PADDING=\"DEFAULT_PAD=5128:MIN_PAD=0:MAX_PAD=5128\"; "_s;
        break;
    case ToolFamily::Other:
        break;
    }
    return head + inDouble(tool.toLocalFile());
}

/// The single-quoted export of the library folder as the rules write it: bare quotes around the path.
QString bareSingleQuotes(const QString &text)
{
    return u'\'' + text + u'\'';
}

QString shownOptions(const OptionList &options)
{
    QString line;
    for (const OptionItem &item : options)
        line += u' ' + item.shown();
    return line;
}

QString safeOptions(const OptionList &options, ShellKind kind)
{
    QString line;
    for (qsizetype i = 0; i < options.size(); ++i) {
        const bool redirects = !options.at(i).isFile() && options.at(i).text() == u"&>"_s;
        if (kind == ShellKind::PlainBourne && redirects && i + 1 < options.size()) {
            ++i;
            line += u" > "_s + options.at(i).safe() + u" 2>&1"_s;
        } else {
            line += u' ' + options.at(i).safe();
        }
    }
    return line;
}

} // namespace

ShellLine toolLine(const QUrl &tool, const OptionList &options, const ToolPlaces &places, ShellKind kind)
{
    return {headFor(tool, options, places, doubleQuoted, bareSingleQuotes) + shownOptions(options),
            headFor(tool, options, places, safelyDoubleQuoted, safelySingleQuoted) + safeOptions(options, kind)};
}

ShellLine commandLine(const QString &command, const OptionList &options, ShellKind kind)
{
    return {command + shownOptions(options), command + safeOptions(options, kind)};
}

} // namespace tools
