#include "cli/PlanCommand.h"

#include "cli/ConversionRequests.h"
#include "cli/DryRunPrinter.h"
#include "cli/Records.h"
#include "cli/Session.h"
#include "tools/PastableText.h"

#include <QCoreApplication>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using app::ConversionPlan;
using media::TrackFate;

namespace cli {

namespace {

/// A film with its request, or why there is none.
struct Film
{
    QString path;
    std::optional<ConversionRequest> request;
    QStringList problems;
};

/// The options of a line that mean the same in "convert", in words: paths are absolute, so that the line
/// means the same in another folder.
QStringList optionsToHandOn(const CommandLine &line)
{
    static const QStringList ownOptions{u"commands"_s, u"json"_s, u"quiet"_s, u"help"_s, u"version"_s};
    static const QStringList paths{u"save-dir"_s, u"defaults"_s, u"add"_s};
    QStringList words;
    for (const OptionSpec &option : allOptions()) {
        if (ownOptions.contains(option.name))
            continue;
        for (const QString &value : line.values(option.name)) {
            words.append(u"--"_s + option.name);
            if (!option.valueName.isEmpty())
                words.append(paths.contains(option.name) ? absolutePath(value) : value);
        }
    }
    return words;
}

/// As we were called: by a path, which is written whole, or by a name that PATH holds.
QString programWord()
{
    const QString called = QCoreApplication::arguments().value(0);
    return called.contains(u'/') ? absolutePath(called) : called;
}

QString commandFor(const CommandLine &line, const QString &path)
{
    QStringList words{programWord(), u"convert"_s};
    words += optionsToHandOn(line);
    return tools::pastableCommand({}, words + QStringList{u"--"_s, path});
}

QJsonValue jsonOf(const std::optional<double> &value)
{
    return value ? QJsonValue(*value) : QJsonValue();
}

QJsonObject objectOf(const ConversionPlan &plan)
{
    QJsonArray outputs;
    for (const QUrl &output : plan.outputs)
        outputs.append(output.toLocalFile());
    const bool isSourceKnown = plan.size && plan.size->sourceBytes > 0;
    return {{u"source"_s, plan.source.toLocalFile()},
            {u"target"_s, plan.target.isNull() ? QJsonValue() : QJsonValue(plan.target)},
            {u"outputs"_s, outputs},
            {u"tracks"_s, receiptRecord({plan.tracks})},
            {u"seconds"_s, jsonOf(plan.seconds)},
            {u"estimatedBytes"_s, plan.size ? QJsonValue(plan.size->bytes) : QJsonValue()},
            {u"sourceBytes"_s, isSourceKnown ? QJsonValue(plan.size->sourceBytes) : QJsonValue()},
            {u"problems"_s, QJsonArray::fromStringList(plan.problems)},
            {u"notes"_s, QJsonArray::fromStringList(plan.notes)}};
}

QString wordsOf(const TrackFate &fate)
{
    switch (fate.became) {
    case media::Became::Copied:
        return u"copied"_s;
    case media::Became::Reencoded:
        return fate.to.isNull() ? u"re-encoded"_s : u"re-encoded to "_s + fate.to;
    case media::Became::Burned:
        return u"burned in"_s;
    case media::Became::LeftOut:
        break;
    }
    return u"left out"_s;
}

QString lineOf(const TrackFate &fate)
{
    constexpr int ofIndex = 3;
    constexpr int ofKind = 10;
    constexpr int ofCodec = 14;
    constexpr int ofWords = 24;
    const QString index = fate.index < 0 ? u"-"_s : QString::number(fate.index);
    const QString codec = fate.codec.isNull() ? u"-"_s : fate.codec;
    QString line = u"  "_s + index.rightJustified(ofIndex) + u"  "_s + fate.kind.leftJustified(ofKind) +
                   u"  "_s + codec.leftJustified(ofCodec) + u"  "_s + wordsOf(fate).leftJustified(ofWords) +
                   u"  "_s + fate.reason;
    while (line.endsWith(u' '))
        line.chop(1);
    return line;
}

QString sizeOf(const ConversionPlan &plan)
{
    if (!plan.size)
        return u"its size can't be estimated"_s;
    const QString source =
        plan.size->sourceBytes > 0 ? u" of "_s + selection::sizeText(plan.size->sourceBytes) : QString();
    return u"about "_s + selection::sizeText(plan.size->bytes) + source;
}

void show(Console &console, const ConversionPlan &plan)
{
    console.result(plan.source.toLocalFile());
    for (const QUrl &output : plan.outputs)
        console.result(u"  -> %1 for %2, %3"_s.arg(output.toLocalFile(), plan.target, sizeOf(plan)));
    for (const TrackFate &fate : plan.tracks)
        console.result(lineOf(fate));
    for (const QString &note : plan.notes)
        console.result(u"  note: "_s + note);
    for (const QString &problem : plan.problems)
        console.result(u"  problem: "_s + problem);
}

/// Of a film that can't be converted all that is known.
ConversionPlan planWithout(const Film &film)
{
    ConversionPlan plan;
    plan.source = QUrl::fromLocalFile(film.path);
    plan.problems = film.problems;
    return plan;
}

ConversionPlan planOf(Session &session, const Film &film)
{
    if (!film.request)
        return planWithout(film);
    steps::OutputRegistry outputs;
    const auto jobs = plannedJobs(session, outputs, {film.request->job});
    ConversionPlan plan =
        jobs.isEmpty() ? planWithout(film) : app::planOf(*jobs.constFirst(), film.request->film);
    const QUrl source = film.request->job.selection->videoTrackFileURL();
    if (!session.saveFolder().takesResultsOf(source))
        plan.problems.append(prefs::SaveFolder::notWritable());
    return plan;
}

/// Answers whether it would be converted.
bool showOne(Session &session, const Film &film)
{
    const ConversionPlan plan = planOf(session, film);
    if (!session.line().has(u"commands"_s)) {
        session.console().object(objectOf(plan));
        show(session.console(), plan);
    } else if (plan.problems.isEmpty()) {
        session.console().command(commandFor(session.line(), film.path));
    } else {
        session.console().say(u"%1: %2"_s.arg(film.path, plan.problems.join(u' ')));
    }
    return plan.problems.isEmpty();
}

QList<Film> filmsOf(Session &session, ConversionRequests &requests, ExitStatus &worst)
{
    QList<Film> films;
    for (const QString &argument : session.line().arguments()) {
        ExitStatus status = ExitStatus::AllWell;
        const QString path = absolutePath(argument);
        const auto request = requests.requestFor(path, status);
        if (session.isInterrupted())
            return {};
        films.append({path, request, {}});
        if (!request)
            films.last().problems = QStringList{requests.problem(), requests.wayOut()};
        films.last().problems.removeAll(QString());
        worst = worse(worst, status);
    }
    return films;
}

QString clashOf(Session &session, const QList<Film> &films)
{
    QList<jobs::JobRequest> jobs;
    for (const Film &film : films) {
        if (film.request)
            jobs.append(film.request->job);
    }
    return jobs.size() > 1 ? DryRunPrinter(session).clash(jobs) : QString();
}

} // namespace

QString PlanCommand::example() const
{
    return u"tessaray-cli plan film.mkv --device PS3 --auto quality"_s;
}

QStringList PlanCommand::options() const
{
    return ConversionRequests::options() + QStringList{u"force"_s, u"commands"_s};
}

ExitStatus PlanCommand::execute(Session &session) const
{
    if (session.line().arguments().isEmpty())
        return session.wrongUsage(u"No file was named. See tessaray-cli plan --help."_s);
    if (session.line().has(u"commands"_s) && session.console().isJson())
        return session.wrongUsage(
            u"--commands prints lines for a shell, so --json has no place beside it."_s);
    ConversionRequests requests(session);
    if (const ExitStatus status = requests.begin(); status != ExitStatus::AllWell)
        return status;
    ExitStatus worst = ExitStatus::AllWell;
    const QList<Film> films = filmsOf(session, requests, worst);
    if (worst == ExitStatus::WrongUsage)
        return worst;
    if (const QString clash = clashOf(session, films); !clash.isNull())
        return session.wrongUsage(clash);
    for (const Film &film : films) {
        if (!showOne(session, film))
            worst = worse(worst, ExitStatus::Failed);
    }
    return worst;
}

} // namespace cli
