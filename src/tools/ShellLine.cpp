#include "tools/ShellLine.h"

#include "tools/ToolEnvironment.h"
#include "tools/ToolPlaces.h"

using namespace Qt::StringLiterals;

namespace tools {

namespace {

using Quote = QString (*)(const QString &);

/// The string items: the name of a file asks for nothing.
QStringList stringsOf(const OptionList &options)
{
    QStringList strings;
    for (const OptionItem &item : options) {
        if (!item.isFile())
            strings.append(item.text());
    }
    return strings;
}

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
        head = u"export LANG=en_US.UTF-8; export DYLD_LIBRARY_PATH="_s + library +
               u";export LD_LIBRARY_PATH="_s + library + u';';
        break;
    }
    case ToolFamily::Ffmpeg:
        if (burnsSubtitles(stringsOf(options))) {
            head = u"export FONTCONFIG_PATH="_s + inDouble(resources + u"/fonts"_s) +
                   u"; export FONTCONFIG_FILE="_s + inDouble(resources + u"/fonts/fonts.conf"_s) + u';';
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

bool isRedirect(const OptionItem &item)
{
    return !item.isFile() && !item.hasData() && item.text() == u"&>"_s;
}

/// A raw string as a plain Bourne shell can read it: one that begins with "&> FILE" says it otherwise.
QString inPlainBourne(const OptionItem &item)
{
    const QString raw = item.safe();
    if (item.isFile() || item.hasData() || !raw.startsWith(u"&> "_s))
        return raw;
    const QString file = raw.section(u' ', 1, 1);
    return u"> "_s + file + u" 2>&1"_s + raw.mid(file.size() + 3);
}

QString safeOptions(const OptionList &options, ShellKind kind)
{
    QString line;
    for (qsizetype i = 0; i < options.size(); ++i) {
        if (kind == ShellKind::KnowsAmpersandRedirect)
            line += u' ' + options.at(i).safe();
        else if (isRedirect(options.at(i)) && i + 1 < options.size())
            line += u" > "_s + options.at(++i).safe() + u" 2>&1"_s;
        else
            line += u' ' + inPlainBourne(options.at(i));
    }
    return line;
}

} // namespace

ShellLine toolLine(const QUrl &tool, const OptionList &options, const ToolPlaces &places, ShellKind kind)
{
    return {headFor(tool, options, places, doubleQuoted, bareSingleQuotes) + shownOptions(options),
            headFor(tool, options, places, safelyDoubleQuoted, safelySingleQuoted) +
                safeOptions(options, kind)};
}

ShellLine commandLine(Literal command, const OptionList &options, ShellKind kind)
{
    return {command.text() + shownOptions(options), command.text() + safeOptions(options, kind)};
}

} // namespace tools
