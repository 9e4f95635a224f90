#include "cli/Help.h"

#include "cli/Command.h"
#include "cli/CommandLine.h"
#include "cli/Commands.h"

using namespace Qt::StringLiterals;

namespace cli {

namespace {

constexpr int leftColumn = 34;

QString row(const QString &left, const QString &right)
{
    if (left.size() > leftColumn)
        return u"  "_s + left + u'\n' + row({}, right);
    return u"  "_s + left.leftJustified(leftColumn) + u' ' + right + u'\n';
}

QString optionRow(const OptionSpec &option)
{
    const QString value = option.valueName.isEmpty() ? QString() : u' ' + option.valueName;
    return row(u"--"_s + option.name + value, option.help);
}

} // namespace

QString generalHelp()
{
    QString text = u"Usage: tessaray-cli [OPTIONS] COMMAND ...\n\n"
                   "Prepares video files for other devices and reshapes Matroska files.\n\nCommands:\n"_s;
    for (const auto &command : allCommands())
        text += row(command->name() + u' ' + command->arguments(), command->summary());
    text += u"\nOptions of every command:\n"_s;
    for (const OptionSpec &option : allOptions()) {
        if (option.isGlobal)
            text += optionRow(option);
    }
    return text + u"\nExit status: 0 success, 1 finished with warnings, 2 something failed, 64 wrong usage,\n"
                  "130 interrupted, 141 the reader of the results went away, 143 terminated.\n\n"
                  "Example: tessaray-cli convert film.mkv --device \"PS3\"\n"_s;
}

QString shortHelp()
{
    return u"The lines that are needed most:\n\n"
           "  tessaray-cli probe film.mkv\n"
           "  tessaray-cli convert film.mkv --device \"Apple TV (3 and Later)\" --video 1pass\n"
           "  tessaray-cli convert *.mkv --track-preset \"All Tracks\" --save-dir ~/Converted\n"
           "  tessaray-cli extract film.mkv --tracks 1,2\n"
           "  tessaray-cli watch ~/Incoming --track-preset \"First Track\" --settings-preset NAME\n\n"
           "All commands: tessaray-cli --help. One of them: tessaray-cli COMMAND --help.\n"_s;
}

QString helpFor(const Command &command)
{
    QString text =
        u"Usage: tessaray-cli %1 %2\n\n%3\n"_s.arg(command.name(), command.arguments(), command.summary());
    if (!command.options().isEmpty())
        text += u"\nOptions:\n"_s;
    for (const OptionSpec &option : allOptions()) {
        if (command.options().contains(option.name))
            text += optionRow(option);
    }
    return text +
           u"\nExit status: 0 success, 1 warnings, 2 failed, 64 wrong usage, 130 interrupted, 141 not read.\n"
           "\nExample: %1\n"_s.arg(command.example());
}

QString versionText()
{
    return u"tessaray-cli " TESSARAY_VERSION ""_s;
}

} // namespace cli
