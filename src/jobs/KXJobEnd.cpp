// How a job is paused, stopped and ended.
#include "jobs/KXJob.h"

#include "platform/Volumes.h"
#include "prefs/KXPreferences.h"
#include "prefs/SaveFolder.h"
#include "steps/ScratchFolder.h"
#include "tools/Numbers.h"
#include "tools/ProcessGroup.h"

#include <QCoreApplication>
#include <QEvent>
#include <QFileInfo>

#include <csignal>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 almostFull = 999'999;
constexpr auto freeSpaceAlertTime = std::chrono::seconds(10);
constexpr int endOfKilledToolMs = 1000;
constexpr int endOfLoopMs = 2000;

QString keptSentence(const QUrl &output)
{
    return u" The incomplete output %1 was kept."_s.arg(output.toLocalFile());
}

/// It leads a group of its own.
void signalBackground(const QString &pid, int signal)
{
    tools::signalGroupOf(tools::isAllDigits(pid) ? pid.toLongLong() : 0, signal);
}

/// The loop of a cancelled job, which no longer waits for us, must not outlive what the job was handed.
void endLoop(QThreadPool &loop, QObject *job)
{
    loop.waitForDone(endOfLoopMs);
    QCoreApplication::removePostedEvents(job, QEvent::MetaCall);
}

} // namespace

void KXJob::pauseJob()
{
    m_isPaused = true;
    for (const jobs::StepTask &task : std::as_const(m_stepTaskList)) {
        if (const auto *process = std::get_if<tools::ToolProcessPointer>(&task)) {
            if (*process)
                (*process)->suspend();
        } else {
            signalBackground(std::get<QString>(task), SIGSTOP);
        }
    }
}

void KXJob::resumeJob()
{
    m_isPaused = false;
    for (const jobs::StepTask &task : std::as_const(m_stepTaskList)) {
        if (const auto *process = std::get_if<tools::ToolProcessPointer>(&task)) {
            if (*process)
                (*process)->resume();
        } else {
            signalBackground(std::get<QString>(task), SIGCONT);
        }
    }
    startWaitingSteps();
}

void KXJob::stopTask(const jobs::StepTask &task)
{
    if (const auto *pid = std::get_if<QString>(&task)) {
        signalBackground(*pid, SIGKILL);
        terminatePIDWaitUntilTerminated(*pid, Wait::No);
        return;
    }
    const auto process = std::get<tools::ToolProcessPointer>(task);
    if (!process || !process->isRunning())
        return;
    process->closeReaders();
    process->terminate();
    tools::signalGroupOf(process->processIdentifier(), SIGKILL);
    terminatePIDWaitUntilTerminated(QString::asprintf("%lli", process->processIdentifier()), Wait::No);
    process->waitUntilExit(endOfKilledToolMs); // so that what it wrote can be removed for good
}

/// So that what they wrote can be removed for good.
void KXJob::waitForKilledTools()
{
    for (const auto &converter : std::exchange(m_inBackground, {})) {
        if (converter)
            converter->waitForBackgroundEnd(endOfKilledToolMs);
    }
}

void KXJob::stopJob()
{
    if (m_ended)
        return;
    const auto self = shared_from_this(); // an observer may let go of us
    unsubscribe();
    m_ended = true;
    *m_cancelled = true;
    pollSoon();
    m_monitorQueue.clear();
    stopFlashing();
    m_firstPoll.stop();
    m_waitingSteps.clear();
    m_durations.end();
    for (const jobs::StepTask &task : std::exchange(m_stepTaskList, {}))
        stopTask(task);
    waitForKilledTools();
    endLoop(m_monitorQueue, this);
    postProgress({});
    deleteUnfinishedOutputs();
    m_guard.putBackReplaced();
    deleteFiles(m_logFilesToDeleteList);
    deleteFiles(m_tempFilesToDeleteList);
    releaseEverything();
    m_receipt.clear();
    m_outcome = steps::Outcome::stopped();
    Q_EMIT outcomeChanged();
}

void KXJob::jobDone()
{
    if (m_ended)
        return;
    const auto self = shared_from_this();
    unsubscribe();
    m_ended = true;
    stopFlashing();
    m_durations.end();
    settleOutcome();
    if (!appPreferences().panelFlag(u"keepLogsFlag"_s)) {
        QList<QUrl> logs = m_logFilesToDeleteList;
        logs.removeIf([this](const QUrl &log) { return m_logsToKeep.contains(log); });
        deleteFiles(logs);
        deleteFiles(m_tempFilesToDeleteList); // kept together with the logs, on purpose
    }
    releaseEverything();
    m_progressList.clear();
    Q_EMIT outcomeChanged();
    m_context.notifications.post(u"jobDone"_s, QVariant::fromValue(jobs::ProgressList()),
                                 {{u"theJob"_s, QVariant::fromValue<QObject *>(this)}});
    checkFreeSpace();
}

void KXJob::addOutcome(const steps::Outcome &outcome)
{
    m_outcome = m_outcome.joinedWith(outcome);
}

/// What a failed step leaves of its output, as sentences. What is empty goes.
QString KXJob::remainsOf(const KXConverter &converter)
{
    QString sentences;
    for (const QUrl &file : converter.outputFiles()) {
        if (!m_guard.files().isOwn(file))
            continue;
        if (QFileInfo(file.toLocalFile()).size() == 0)
            m_guard.files().remove(file);
        else if (!converter.isTemporaryOutput())
            sentences += keptSentence(file);
    }
    return sentences;
}

/// A failed step's empty output goes; any other stays and is named: a wrong verdict must never cost
/// anybody a film.
steps::Outcome KXJob::outcomeOfStep(KXConverter &converter)
{
    steps::Outcome outcome = converter.outcome();
    const bool wasStarted = converter.converterTask() || !converter.doShell_ID().isEmpty();
    if (outcome.verdict == steps::Verdict::Failed) {
        m_logsToKeep.append(converter.logFileURL());
        if (wasStarted && m_guard.files().isOwn(converter.logFileURL()))
            outcome.sentence += u" The log is %1."_s.arg(converter.logFileURL().toLocalFile());
        if (wasStarted)
            outcome.sentence += remainsOf(converter);
    } else if (!converter.isTemporaryOutput()) {
        m_outputs += converter.outputFiles();
    }
    m_receipt.add(converter, outcome.verdict);
    return outcome;
}

/// A note changes no verdict.
void KXJob::addWordsOfReceipt()
{
    const media::Receipt receipt = m_receipt.receipt();
    for (const QString &warning : media::sentencesOf(receipt, media::Told::AsAWarning))
        addOutcome(steps::Outcome::warnings(warning));
    for (const QString &note : media::sentencesOf(receipt, media::Told::AsANote))
        addOutcome({steps::Verdict::Ok, note});
}

void KXJob::settleOutcome()
{
    for (const ConverterPointer &converter : std::as_const(m_stepConverterList)) {
        if (converter)
            addOutcome(outcomeOfStep(*converter));
    }
    addWordsOfReceipt();
    if (m_outcome.verdict == steps::Verdict::Unknown)
        m_outcome = steps::Outcome::ok();
    if (m_outcome.verdict == steps::Verdict::Failed) {
        for (const auto &[place, incomplete] : m_guard.putBackReplaced())
            m_outcome.sentence.replace(keptSentence(place), keptSentence(incomplete));
    } else {
        m_guard.forgetReplaced();
    }
    writeOutcomeToLogs();
}

void KXJob::writeOutcomeToLogs()
{
    const QString line = u"\nTessaray: %1%2\n"_s.arg(
        m_outcome.word(), m_outcome.sentence.isEmpty() ? QString() : u": "_s + m_outcome.sentence);
    const media::Receipt receipt = m_receipt.receipt();
    for (const QUrl &log : std::as_const(m_logFilesToDeleteList)) {
        const QString tracks = m_receipt.linesFor(log, receipt).join(u'\n');
        m_guard.files().append(log, (tracks.isEmpty() ? line : u"\nTracks:\n"_s + tracks + line).toUtf8());
    }
}

void KXJob::deleteFiles(const QList<QUrl> &files)
{
    for (const QUrl &file : files)
        m_guard.files().remove(file);
}

void KXJob::deleteUnfinishedOutputs()
{
    for (qsizetype i = 0; i < m_stepConverterList.size(); ++i) {
        const auto &converter = m_stepConverterList.at(i);
        const bool finished = i < m_progressList.size() && m_progressList.at(i).isComplete();
        const bool started = converter && (converter->converterTask() || !converter->doShell_ID().isEmpty());
        if (!started || finished)
            continue;
        deleteFiles(converter->outputFiles());
    }
}

void KXJob::releaseEverything()
{
    m_guard.release();
    m_context.scratch.removeJobFolder(m_temporaryFolder);
    m_temporaryFolder.clear();
}

QString KXJob::startProblem() const
{
    if (m_outcome.verdict == steps::Verdict::Failed)
        return m_outcome.sentence;
    for (const ConverterPointer &converter : m_stepConverterList) {
        if (converter && !converter->refusal().isNull())
            return converter->refusal();
    }
    return {};
}

QList<QUrl> KXJob::outputs() const
{
    return m_outputs;
}

void KXJob::checkFreeSpace()
{
    if (!m_jobSelection)
        return;
    const prefs::SaveFolder saveFolder(appPreferences());
    const auto free = m_context.volumes.freeSize(saveFolder.forSource(m_jobSelection->videoTrackFileURL()));
    if (!free || *free > almostFull)
        return;
    platform::Alert alert;
    alert.message = u"It appears that your save volume is almost out of free space."_s;
    alert.informativeText = u"The output of the just finished job may not be complete."_s;
    alert.closesAfter = freeSpaceAlertTime;
    const auto shown = std::make_shared<const platform::Alert>(alert);
    openAlertSheet(shown);
    // Never keeps the job: the program may end before. An alert whose job is gone closes itself.
    QTimer::singleShot(freeSpaceAlertTime, this, [this, shown] { alertTimedOut(shown); });
}
