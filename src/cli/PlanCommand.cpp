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

/// The options of a line that mean the same in "convert", in words: paths are absolute, so that the line
/// means the same in another folder.
QStringList optionsToHandOn(const CommandLine &line)
{
    static const QStringList ownOptions{u"commands"_s, u"list"_s, u"json"_s,
                                        u"quiet"_s,    u"help"_s, u"version"_s};
    static const QStringList paths{u"defaults"_s, u"add"_s, u"output"_s};
    QStringList words;
    for (const OptionSpec &option : allOptions()) {
        if (ownOptions.contains(option.name) || option.name == u"save-dir"_s)
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

/// The save folder of one film: its own one where a tree is mirrored.
QStringList saveFolderWords(const CommandLine &line, const KXSelection &selection)
{
    const bool isMirrored = !selection.outputFolder().isEmpty() && selection.outputName().isNull();
    const QString folder =
        isMirrored ? selection.outputFolder().toLocalFile() : absolutePath(line.value(u"save-dir"_s));
    return folder.isEmpty() ? QStringList() : QStringList{u"--save-dir"_s, folder};
}

QString commandFor(const CommandLine &line, const RequestedFilm &film)
{
    QStringList words{programWord(), u"convert"_s};
    words += optionsToHandOn(line) + saveFolderWords(line, *film.request->job.selection);
    return tools::pastableCommand({}, words + QStringList{u"--"_s, film.path});
}

QJsonValue planNumber(const std::optional<double> &value)
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
            {u"seconds"_s, planNumber(plan.seconds)},
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
ConversionPlan planWithout(const RequestedFilm &film)
{
    ConversionPlan plan;
    plan.source = QUrl::fromLocalFile(film.path);
    plan.problems = QStringList{film.refusal, film.wayOut};
    plan.problems.removeAll(QString());
    return plan;
}

/// The folders of a mirrored tree are made when they are needed.
bool wouldTakeResult(Session &session, const KXSelection &selection)
{
    if (session.line().has(u"recursive"_s) && session.line().has(u"save-dir"_s))
        return true;
    const QUrl source = selection.videoTrackFileURL();
    return selection.outputName().isNull()
               ? session.saveFolder().takesResultsOf(source)
               : prefs::SaveFolder(selection.outputFolder()).takesResultsOf(source);
}

ConversionPlan planOf(Session &session, const RequestedFilm &film)
{
    if (!film.request)
        return planWithout(film);
    steps::OutputRegistry outputs;
    const auto jobs = plannedJobs(session, outputs, {film.request->job});
    ConversionPlan plan =
        jobs.isEmpty() ? planWithout(film) : app::planOf(*jobs.constFirst(), film.request->film);
    if (film.request && !wouldTakeResult(session, *film.request->job.selection))
        plan.problems.append(prefs::SaveFolder::notWritable());
    return plan;
}

/// Answers whether it would be converted.
bool showOne(Session &session, const RequestedFilm &film)
{
    const ConversionPlan plan = planOf(session, film);
    if (!session.line().has(u"commands"_s)) {
        session.console().object(objectOf(plan));
        show(session.console(), plan);
    } else if (plan.problems.isEmpty()) {
        session.console().command(commandFor(session.line(), film));
    } else {
        session.console().say(u"%1: %2"_s.arg(film.path, plan.problems.join(u' ')));
    }
    return plan.problems.isEmpty();
}

QString clashOf(Session &session, const QList<RequestedFilm> &films)
{
    QList<jobs::JobRequest> jobs;
    for (const RequestedFilm &film : films) {
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
    return ConversionRequests::options() + QStringList{u"commands"_s, u"list"_s};
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
    const QList<RequestedFilm> films = requests.films(worst);
    if (worst == ExitStatus::WrongUsage)
        return worst;
    if (const QString clash = clashOf(session, films); !clash.isNull())
        return session.wrongUsage(clash);
    for (const RequestedFilm &film : films) {
        if (!showOne(session, film))
            worst = worse(worst, ExitStatus::Failed);
    }
    return worst;
}

} // namespace cli
