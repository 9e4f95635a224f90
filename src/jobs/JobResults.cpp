#include "jobs/JobResults.h"

#include "platform/OrdinaryFile.h"

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

JobResults::JobResults(steps::OutputGuard &guard)
    : m_guard(guard)
{
    connect(&m_publisher, &steps::Publisher::ended, this, &JobResults::settle);
}

void JobResults::add(const KXConverter &converter, steps::Verdict verdict)
{
    m_runs += converter.runs();
    m_steps.append(
        {converter.outputFiles(), verdict != steps::Verdict::Failed, !converter.isTemporaryOutput()});
}

void JobResults::want(const QList<QUrl> &names)
{
    for (Step &step : m_steps)
        step.isWanted = step.isWanted || step.files == names;
}

void JobResults::publish()
{
    QList<QUrl> names;
    for (const Step &step : std::as_const(m_steps)) {
        for (const QUrl &file : step.files) {
            if (step.isWanted && step.isWhole && m_guard.files().isOwn(file) && !names.contains(file))
                names.append(file);
        }
    }
    m_publications = m_guard.publicationsOf(names);
    const QString problem = m_guard.problemWithPublishing(names);
    if (!problem.isNull())
        m_problem = Outcome::failed(problem);
    if (names.isEmpty() || !problem.isNull())
        return Q_EMIT settled();
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
        m_publisher.start(m_guard.workFolder(), m_publications);
        return;
    }
    m_problem = Outcome::failed(sentenceFor(result));
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
