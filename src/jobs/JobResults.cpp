#include "jobs/JobResults.h"

#include "platform/OrdinaryFile.h"
#include "prefs/KXPreferences.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using steps::Outcome;
using steps::PublishResult;

namespace jobs {

namespace {

QString sentenceFor(const PublishResult &result)
{
    const QString path = result.name.toLocalFile();
    switch (result.end) {
    case PublishResult::End::NotFlushed:
        return u"%1 could not be brought to the disk."_s.arg(path);
    case PublishResult::End::NameTaken:
        return u"Something else stands at %1 by now."_s.arg(path);
    default:
        return u"The finished file could not be given the name %1."_s.arg(path);
    }
}

QString commandLine(const QUrl &tool, const tools::OptionList &list)
{
    QStringList words{tools::pastable(tool.toLocalFile())};
    for (const QString &word : tools::argumentsOf(list))
        words.append(tools::pastable(word));
    return words.join(u' ');
}

/// What was meant, and what was started.
QString commandsOf(const steps::Launch &run)
{
    const QString meant = run.line ? run.line->meant : commandLine(run.tool, run.meant);
    return u"Tessaray: meant: "_s + meant + u"\nTessaray: launched: "_s + commandLine(run.tool, run.started) +
           u'\n';
}

} // namespace

JobResults::JobResults(const JobContext &context, steps::OutputGuard &guard)
    : m_preferences(context.preferences)
    , m_guard(guard)
    , m_isChecking(context.checking == Checking::Outputs)
    , m_check(context.preferences, context.toolsAtOnce)
    , m_proof(context.preferences, context.toolsAtOnce)
{
    connect(&m_publisher, &steps::Publisher::ended, this, &JobResults::settle);
    connect(&m_check, &steps::OutputCheck::finished, this, &JobResults::checked);
    m_check.setOtherTools([this] { return runningTools(); });
    connect(&m_proof, &steps::OutputProof::finished, this, &JobResults::verified);
}

void JobResults::stepStarted(const KXConverter &converter)
{
    m_working.emplace_back(&converter);
    connect(&converter, &KXConverter::toolEnded, &m_check, &steps::OutputCheck::otherToolEnded);
    if (m_isChecking && converter.refusal().isNull() && !converter.isTemporaryOutput())
        m_check.readSources(converter.meantOutputs());
}

void JobResults::add(const KXConverter &converter, steps::Verdict verdict)
{
    m_runs += converter.runs();
    Step step;
    step.files = converter.outputFiles();
    step.meant = converter.meantOutputs();
    for (media::MeantOutput &output : step.meant)
        output.file = m_guard.fileOf(output.output);
    step.log = converter.logFileURL();
    step.told = converter.whatToolsTold();
    if (verdict == steps::Verdict::Warnings)
        step.damage = steps::OutputCheck::Damage::IsTold;
    step.isWhole = verdict != steps::Verdict::Failed;
    step.isWanted = !converter.isTemporaryOutput();
    m_steps.append(step);
}

void JobResults::want(const QList<QUrl> &names)
{
    for (Step &step : m_steps)
        step.isWanted = step.isWanted || step.files == names;
}

int JobResults::runningTools() const
{
    return static_cast<int>(std::count_if(m_working.begin(), m_working.end(), [](const auto &converter) {
        return converter && converter->hasRunningTool();
    }));
}

void JobResults::publish()
{
    m_working.clear();
    m_toCheck = 0;
    QList<QUrl> files;
    for (const QUrl &name : publishable())
        files.append(m_guard.fileOf(name));
    m_publisher.flushAhead(files);
    checkNext();
}

/// As far as is known by now.
QList<QUrl> JobResults::publishable() const
{
    QList<QUrl> names;
    for (const Step &step : m_steps) {
        for (const QUrl &file : step.files) {
            if (step.isWanted && step.isWhole && m_guard.files().isOwn(file) && !names.contains(file))
                names.append(file);
        }
    }
    return names;
}

/// One step after the other: the figures of a tool's log are of one run.
void JobResults::checkNext()
{
    while (m_isChecking && m_toCheck < m_steps.size()) {
        const Step &step = m_steps.at(m_toCheck);
        if (step.isWanted && step.isWhole && !step.meant.isEmpty())
            return m_check.begin(step.meant, step.told, step.damage);
        ++m_toCheck;
    }
    publishChecked();
}

void JobResults::checked()
{
    QList<media::MeantOutput> measured;
    for (const media::CheckedOutput &result : m_check.results())
        measured.append(result.output);
    m_tellsOfEnd = m_tellsOfEnd || m_check.tellsOfEnd();
    take(measured, m_check.outcome());
    if (m_steps.at(m_toCheck).isWhole && m_preferences.panelFlag(u"verifyFlag"_s))
        return m_proof.begin(measured, m_check.films());
    ++m_toCheck;
    checkNext();
}

void JobResults::verified()
{
    take(m_proof.outputs(), m_proof.outcome());
    ++m_toCheck;
    checkNext();
}

/// What was measured later holds what was measured before, and comes behind it.
void JobResults::take(const QList<media::MeantOutput> &measured, const Outcome &outcome)
{
    Step &step = m_steps[m_toCheck];
    m_measured += measured;
    step.isWhole = outcome.verdict != steps::Verdict::Failed;
    if (!step.isWhole)
        m_logsOfFailed.append(step.log);
    if (!outcome.sentence.isEmpty())
        m_found = m_found.joinedWith(outcome);
}

void JobResults::pause()
{
    m_check.pause();
    m_proof.pause();
}

void JobResults::resume()
{
    m_check.resume();
    m_proof.resume();
}

bool JobResults::cancel()
{
    m_check.end();
    m_proof.end();
    if (m_publisher.cancel())
        return true;
    takeNames();
    Q_EMIT settled();
    return false;
}

void JobResults::publishChecked()
{
    m_isPublishing = true;
    const QList<QUrl> names = publishable();
    m_publications = m_guard.publicationsOf(names);
    const QString problem = m_guard.problemWithPublishing(names);
    if (!problem.isNull())
        m_found = m_found.joinedWith(Outcome::failed(problem));
    if (names.isEmpty() || !problem.isNull())
        return Q_EMIT settled();
    Q_EMIT publishing(m_publications);
    m_publisher.start(m_guard.workFolder(), m_publications);
}

void JobResults::settle(const PublishResult &result)
{
    if (result.end == PublishResult::End::Done) {
        takeNames();
        return Q_EMIT settled();
    }
    const auto taken =
        std::find_if(m_publications.begin(), m_publications.end(),
                     [&](const steps::Publication &publication) { return publication.name == result.name; });
    const QUrl other = result.end == PublishResult::End::NameTaken ? m_guard.renamed(result.name) : QUrl();
    if (!other.isEmpty() && taken != m_publications.end()) {
        m_renamed.append({taken->name, other});
        taken->name = other;
        Q_EMIT publishing(m_publications);
        m_publisher.start(m_guard.workFolder(), m_publications);
        return;
    }
    m_found = m_found.joinedWith(Outcome::failed(sentenceFor(result)));
    Q_EMIT settled();
}

void JobResults::takeNames()
{
    for (const steps::Publication &publication : std::as_const(m_publications))
        m_outputs.append(publication.name);
    m_guard.published(m_outputs);
}

QUrl JobResults::keepIncomplete()
{
    QUrl largest;
    qint64 most = 0;
    for (const Step &step : std::as_const(m_steps)) {
        for (const QUrl &file : step.files) {
            const qint64 size = QFileInfo(m_guard.fileOf(file).toLocalFile()).size();
            if (!step.isWanted || m_outputs.contains(file) || size <= most || !m_guard.files().isOwn(file))
                continue;
            most = size;
            largest = file;
        }
    }
    return largest.isEmpty() ? QUrl() : m_guard.keepIncomplete(largest);
}

QByteArray JobResults::commandsFor(const QUrl &log) const
{
    QString lines;
    for (const steps::Launch &run : m_runs) {
        if (run.log == log)
            lines += commandsOf(run);
    }
    return lines.toUtf8();
}

/// A log that is too long to be read whole keeps its own beginning.
QUrl JobResults::keepLog(const QUrl &log, const QString &lastLine)
{
    if (!m_guard.files().isOwn(log))
        return {};
    const auto body = platform::readWhole(m_guard.fileOf(log).toLocalFile());
    if (body.problem.isNull())
        m_guard.files().write(log, commandsFor(log) + body.bytes);
    m_guard.files().append(log, lastLine.toUtf8());
    return m_guard.keep(log);
}

} // namespace jobs
