#include "cli/SplitCommand.h"

#include "cli/FileJobs.h"
#include "cli/JobSubmission.h"
#include "cli/Session.h"
#include "selection/Refusals.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

const QStringList ways{u"time"_s, u"size"_s, u"duration"_s};

bool isTime(const QString &text)
{
    static const QRegularExpression mask(u"^[0-9]{2}:[0-5][0-9]:[0-5][0-9]$"_s);
    return mask.match(text).hasMatch();
}

/// Each writes its way of splitting into the selection; a null text, or what is wrong with the value.
QString takeTime(const QString &value, KXSelection &selection)
{
    const QString start = value.section(u'-', 0, 0);
    const QString end = value.section(u'-', 1);
    if (!isTime(start) || !isTime(end))
        return u"--time takes START-END as HH:MM:SS-HH:MM:SS, not \"%1\"."_s.arg(value);
    selection.initializeSplitForStartTimeAndEndTime(start, end);
    if (!selection::endsBehindStart(selection))
        return u"--time: the end has to come after the start, not \"%1\"."_s.arg(value);
    return {};
}

QString takeSize(const QString &value, KXSelection &selection)
{
    static const QRegularExpression number(u"^[0-9]{1,7}(\\.[0-9]{1,3})?$"_s);
    if (!number.match(value).hasMatch() || value.toDouble() <= 0)
        return u"--size takes megabytes above 0, not \"%1\"."_s.arg(value);
    selection.setSplitSize(value);
    return {};
}

QString takeDuration(const QString &value, KXSelection &selection)
{
    if (!isTime(value) || value == u"00:00:00"_s)
        return u"--duration takes HH:MM:SS above 0, not \"%1\"."_s.arg(value);
    selection.initializeSplitDurationForTimeText(value);
    return {};
}

QString takeWay(const CommandLine &line, KXSelection &selection)
{
    const QString way = line.has(u"time"_s) ? u"time"_s : line.has(u"size"_s) ? u"size"_s : u"duration"_s;
    selection.setSplitType(way);
    if (way == u"time"_s)
        return takeTime(line.value(way), selection);
    return way == u"size"_s ? takeSize(line.value(way), selection) : takeDuration(line.value(way), selection);
}

qsizetype waysGiven(const CommandLine &line)
{
    qsizetype given = 0;
    for (const QString &way : ways)
        given += line.has(way) ? 1 : 0;
    return given;
}

} // namespace

QStringList SplitCommand::options() const
{
    return ways + QStringList{u"force"_s, u"verify"_s, u"dry-run"_s, u"list"_s, u"print"_s, u"exec"_s};
}

ExitStatus SplitCommand::execute(Session &session) const
{
    if (waysGiven(session.line()) != 1)
        return session.wrongUsage(u"A split takes one of --time, --size and --duration."_s);
    KXSelection trial;
    const QString error = takeWay(session.line(), trial);
    if (!error.isNull())
        return session.wrongUsage(error);
    return submitEachFile(session, [&](const QString &path, ExitStatus &status) -> MaybeRequest {
        const QString refusal = refusalOfFile(path);
        if (!refusal.isNull()) {
            status = session.failed(u"%1: %2"_s.arg(path, refusal));
            return std::nullopt;
        }
        const auto request = requestForFiles(jobs::JobKind::Splitting, {path});
        takeWay(session.line(), *request.selection);
        return request;
    });
}

} // namespace cli
