#include "jobs/KXJob.h"

#include "jobs/QueuedJob.h"
#include "platform/Volumes.h"
#include "prefs/KXPreferences.h"
#include "prefs/SaveFolder.h"
#include "steps/FolderProblem.h"
#include "steps/ScratchFolder.h"
#include "tools/Numbers.h"
#include "tools/ProcessGroup.h"

#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QThread>
#include <QTime>

#include <algorithm>
#include <csignal>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int nothingRunsDelay = 100;
constexpr int sliceMs = 20;
constexpr qint64 almostFull = 999'999;
constexpr auto freeSpaceAlertTime = std::chrono::seconds(10);
constexpr int endOfKilledToolMs = 1000;
constexpr int endOfLoopMs = 2000;
constexpr auto slowEnd = std::chrono::milliseconds(300);

QString keptSentence(const QUrl &output)
{
    return u" The incomplete output %1 was kept."_s.arg(output.toLocalFile());
}

QString logSentence(const QUrl &log)
{
    return u" The log is %1."_s.arg(log.toLocalFile());
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

/// Why nothing can be written beside the outputs, where that is so and the job's sentence does not say it:
/// the tools seldom tell it in words for people.
QString sentenceOnFolder(const QList<ConverterPointer> &converters, const QString &said)
{
    for (const ConverterPointer &converter : converters) {
        const QUrl output = converter ? converter->outputFileURL() : QUrl();
        if (output.isEmpty())
            continue;
        const QString problem = steps::problemWithFolderOf(output);
        return problem.isNull() || said.contains(problem, Qt::CaseInsensitive)
                   ? QString()
                   : u' ' + steps::sentenceThatItCantBeMade(output, problem);
    }
    return {};
}

qint64 bytesIn(const QUrl &folder)
{
    qint64 sum = 0;
    if (!folder.isEmpty()) {
        for (const QFileInfo &file : QDir(folder.toLocalFile()).entryInfoList(QDir::Files | QDir::Hidden))
            sum += file.size();
    }
    return sum;
}

/// A step that is well needs no words to be judged by; those of hundreds of steps would fill the memory.
void dropWordsOf(KXConverter &converter)
{
    if (converter.outcome().verdict == steps::Verdict::Ok)
        converter.setLogString(u""_s);
}

} // namespace

KXJob::KXJob(const jobs::JobContext &context)
    : KXHelpers(&context.preferences, &context.alerts)
    , m_context(context)
    , m_guard(context.outputs, context.whenTaken)
    , m_durations(context.preferences)
    , m_results(m_context, m_guard)
{
    connect(&m_results, &jobs::JobResults::settled, this, &KXJob::finish);
    connect(&m_results, &jobs::JobResults::publishing, this, &KXJob::publishing);
    connect(&m_slowEnd, &QTimer::timeout, this, &KXJob::showSlowEnd);
    m_monitorQueue.setMaxThreadCount(1);
    connect(&m_flashProgressTimer, &QTimer::timeout, this, [this] {
        if (m_flashing)
            flashProgress(*m_flashing, QTime::currentTime().second());
    });
    m_firstPoll.setSingleShot(true);
    connect(&m_firstPoll, &QTimer::timeout, this, [this] { m_monitor(); });
    observe(u"taskCompletion"_s);
}

KXJob::~KXJob()
{
    *m_cancelled = true;
    pollSoon();
    m_monitorQueue.waitForDone();
    m_context.scratch.removeJobFolder(m_temporaryFolder);
}

void KXJob::setJobSelection(const SelectionPointer &selection)
{
    m_jobSelection = selection;
    m_guard.setInputs(jobs::sourcesOf(*selection));
}

void KXJob::initJobWithSelectionAndPreferences(const SelectionPointer &selection, const KXPreferences &)
{
    if (!selection)
        return;
    setJobSelection(selection);
    setJobStatus(u"Queued"_s);
    setJobType(selection->jobType());
    setJobFileName(selection->videoTrackFileName());
}

void KXJob::startJob() {}

QList<steps::Launch> KXJob::plan()
{
    m_guard.planOnly();
    return planned();
}

QList<steps::Launch> KXJob::planOf(const QList<ConverterPointer> &prepared)
{
    setStepConverterList(prepared);
    QList<steps::Launch> launches;
    for (const ConverterPointer &converter : prepared) {
        if (converter && converter->refusal().isNull())
            launches += converter->launches();
    }
    return launches;
}

void KXJob::monitorNotifications(const KXNotification &) {}

void KXJob::observe(const QString &name)
{
    m_subscriptions.push_back(m_context.notifications.subscribe(
        name, [this](const KXNotification &notification) { monitorNotifications(notification); }));
}

void KXJob::unsubscribe()
{
    m_subscriptions.clear();
}

const QString &KXJob::temporaryFolder()
{
    if (m_temporaryFolder.isEmpty() && !m_guard.isPlan()) {
        m_temporaryFolder = m_context.scratch.makeJobFolder();
        m_guard.files().setPrivateFolder(m_temporaryFolder);
    }
    return m_temporaryFolder;
}

steps::ConverterContext KXJob::converterContext()
{
    return {m_context.preferences, m_context.notifications, m_context.launcher, m_guard,    temporaryFolder(),
            &m_context.alerts,     toolsAtOnce(),           &m_durations,       m_cancelled};
}

void KXJob::stepStarted(const ConverterPointer &converter, const tools::ToolProcessPointer &task)
{
    if (task)
        addTask(task);
    m_progressList.append({converter->stepName(), task ? u"0%"_s : u"Complete"_s});
    if (task)
        m_results.stepStarted(*converter);
    noteFilesOf(*converter);
}

void KXJob::startSingleStep(const ConverterPointer &converter)
{
    setStepTaskList({});
    setProgressList({});
    setStepConverterList({converter});
    const auto task = converter->refusal().isNull() ? converter->startPrepared() : nullptr;
    if (jobIsCancelled())
        return;
    stepStarted(converter, task);
    postProgress(m_progressList);
    endIfNothingRuns();
}

void KXJob::startInTurn(const QList<ConverterPointer> &converters)
{
    setStepConverterList(converters);
    for (qsizetype index = 0; index < converters.size(); ++index) {
        const KXConverter &converter = *converters.at(index);
        const bool isRefused = !converter.refusal().isNull();
        m_progressList.append({converter.stepName(), isRefused ? u"Complete"_s : u"0%"_s});
        noteFilesOf(converter);
        if (!isRefused)
            m_waitingSteps.append(index);
    }
    postProgress(m_progressList);
    startWaitingStepsOnceDurationsAreKnown();
}

/// All steps go by the same source as a rule, and a look is a tool too.
void KXJob::startWaitingStepsOnceDurationsAreKnown()
{
    const auto begin = [this] {
        startWaitingSteps();
        endIfNothingRuns();
    };
    if (!m_waitingSteps.isEmpty() &&
        m_durations.ask(m_stepConverterList.at(m_waitingSteps.constFirst())->timedSources()))
        connect(&m_durations, &steps::DurationLooks::answered, this, begin, Qt::SingleShotConnection);
    else
        begin();
}

void KXJob::startWaitingSteps()
{
    while (!m_waitingSteps.isEmpty() && !m_isPaused && !jobIsCancelled() &&
           m_runningSteps.size() < toolsAtOnce())
        startWaitingStep(m_waitingSteps.takeFirst());
}

void KXJob::startWaitingStep(qsizetype index)
{
    const auto task = m_stepConverterList.at(index)->startPrepared();
    if (task) {
        addTask(task);
        m_results.stepStarted(*m_stepConverterList.at(index));
        m_runningSteps.insert(index);
    } else {
        completeStep(index, m_stepConverterList.at(index)->stepName());
    }
}

void KXJob::backgroundStepStarted(const ConverterPointer &converter, const QString &pid)
{
    if (!pid.isEmpty())
        followBackground(*converter);
    m_progressList.append({converter->stepName(), u"0%"_s});
    noteFilesOf(*converter);
}

void KXJob::followBackground(KXConverter &converter)
{
    const QString pid = converter.doShell_ID();
    addTask(pid);
    m_inBackground.append(&converter);
    m_results.stepStarted(converter);
    connect(&converter, &KXConverter::toolEnded, this, [this, pid] {
        removeTask(pid); // the number may be another's soon
        toolEnded();
    });
}

void KXJob::toolEnded()
{
    pollSoon();
    if (m_firstPoll.isActive())
        m_firstPoll.start(0);
}

void KXJob::followSoon(const std::function<void()> &monitor)
{
    m_monitor = monitor;
    m_firstPoll.start(m_stepTaskList.isEmpty() ? 0 : m_context.intervals.firstPoll);
}

/// A step that was refused before it had names of its own has none to note.
void KXJob::noteFilesOf(const KXConverter &converter)
{
    m_tempFilesToDeleteList += converter.temporaryFiles();
    if (converter.isNeverKept())
        m_neverKept += converter.temporaryFiles();
    if (m_guard.hasClaimed(converter.logFileURL()))
        m_logFilesToDeleteList.append(converter.logFileURL());
}

void KXJob::addTask(const jobs::StepTask &task)
{
    m_stepTaskList.append(task);
}

void KXJob::removeTask(const jobs::StepTask &task)
{
    m_stepTaskList.removeIf([&](const jobs::StepTask &other) { return other == task; });
}

QUrl KXJob::resultFolder() const
{
    if (!m_jobSelection)
        return {};
    const QUrl own = m_jobSelection->outputFolder();
    return own.isEmpty() ? prefs::SaveFolder(appPreferences()).forSource(m_jobSelection->videoTrackFileURL())
                         : own;
}

/// What was expected may be too little, so what is written is held against how far the job is.
std::optional<qint64> KXJob::bytesToCome() const
{
    constexpr double enoughToTell = 5;
    if (m_isEnding || m_ended)
        return 0;
    const auto written = static_cast<double>(bytesIn(m_guard.workFolder()));
    std::optional<qint64> bytes;
    if (m_expectedBytes)
        bytes = std::max<qint64>(*m_expectedBytes - qRound64(written), 0);
    if (const double percent = m_pace.pace().percent; percent >= enoughToTell)
        bytes = std::max(bytes.value_or(0), qRound64(written / percent * (100 - percent)));
    return bytes;
}

jobs::Pace KXJob::pace() const
{
    jobs::Pace pace = m_pace.pace();
    for (const ConverterPointer &converter : m_stepConverterList) {
        const steps::RunSpeed speed = converter ? converter->runSpeed() : steps::RunSpeed();
        pace.speed = speed.speed ? speed.speed : pace.speed;
        pace.fps = speed.fps ? speed.fps : pace.fps;
    }
    return pace;
}

void KXJob::postProgress(const jobs::ProgressList &list)
{
    m_pace.take(list);
    m_context.notifications.post(u"progressUpdate"_s, QVariant::fromValue(list),
                                 {{u"theJob"_s, QVariant::fromValue<QObject *>(this)}});
}

void KXJob::updateProgressWithProgressList(const jobs::ProgressList &list)
{
    postProgress(list);
}

void KXJob::updateProgressWithProgressItem(const jobs::ProgressUpdate &update)
{
    stopFlashing();
    if (update.index < 0 || update.index >= m_progressList.size())
        return;
    m_progressList[update.index] = update.item;
    postProgress(m_progressList);
}

void KXJob::flashProgressWithProgressItem(const jobs::ProgressUpdate &update)
{
    if (m_flashProgressTimer.isActive())
        return;
    m_flashing = update;
    m_flashProgressTimer.start(m_context.intervals.flash);
}

void KXJob::flashProgress(const jobs::ProgressUpdate &update, int second)
{
    if (update.index < 0 || update.index >= m_progressList.size())
        return;
    m_progressList[update.index] = {update.item.step, second % 2 != 0 ? update.item.progress : u""_s};
    postProgress(m_progressList);
}

void KXJob::stopFlashing()
{
    m_flashProgressTimer.stop();
    m_flashing.reset();
}

qsizetype KXJob::stepOf(const KXNotification &notification) const
{
    const auto *converter = notification.userInfo.value(u"theConverter"_s).value<QObject *>();
    for (qsizetype i = 0; converter != nullptr && i < m_stepConverterList.size(); ++i) {
        if (m_stepConverterList.at(i).get() == converter)
            return i;
    }
    return -1;
}

void KXJob::followNotification(const KXNotification &notification, const QString &monitorName)
{
    const qsizetype index = stepOf(notification);
    if (index < 0)
        return;
    const QString label = notification.userInfo.value(u"stepName"_s).toString();
    const QString value = notification.object.toString();
    if (notification.name == monitorName && value.contains(u'%'))
        updateProgressWithProgressItem({index, {label, value}});
    if (notification.name != u"taskCompletion"_s)
        return;
    if (value == u"Complete"_s) {
        completeStep(index, label);
        if (m_runningSteps.remove(index))
            dropWordsOf(*m_stepConverterList.at(index));
        startWaitingSteps();
    }
    if (everyStepIsComplete())
        requestJobDone();
}

void KXJob::completeStep(qsizetype index, const QString &label)
{
    updateProgressWithProgressItem({index, {label, u"Complete"_s}});
}

bool KXJob::everyStepIsComplete() const
{
    return std::all_of(m_progressList.begin(), m_progressList.end(),
                       [](const jobs::ProgressItem &item) { return item.isComplete(); });
}

void KXJob::requestJobDone(int afterMilliseconds)
{
    QTimer::singleShot(afterMilliseconds, this, [this] { jobDone(); });
}

void KXJob::endIfNothingRuns()
{
    const bool nothingRuns = m_stepTaskList.isEmpty() && m_waitingSteps.isEmpty();
    if (nothingRuns || everyStepIsComplete())
        requestJobDone(nothingRunsDelay);
}

/// A stop is not waited for, as it may be waiting for us.
void KXJob::runOnMain(const std::function<void()> &work, Qt::ConnectionType how)
{
    if (jobIsCancelled())
        return;
    // Work that waits to be done does not keep the job: it might be dropped when nothing else is left.
    const auto guarded = [weak = weak_from_this(), work] {
        const auto self = weak.lock();
        if (self && !self->jobIsCancelled())
            work();
    };
    if (how == Qt::QueuedConnection || QThread::currentThread() == thread()) {
        QMetaObject::invokeMethod(this, guarded, how == Qt::QueuedConnection ? how : Qt::DirectConnection);
        return;
    }
    const auto done = std::make_shared<QSemaphore>();
    QMetaObject::invokeMethod(
        this,
        [guarded, done] {
            guarded();
            done->release();
        },
        Qt::QueuedConnection);
    while (!done->tryAcquire(1, sliceMs) && !jobIsCancelled()) {
    }
}

jobs::ProgressList KXJob::firstProgress() const
{
    jobs::ProgressList first;
    for (const ConverterPointer &converter : m_stepConverterList) {
        if (converter)
            first.append({converter->stepName(), u"0%"_s});
    }
    return first;
}

void KXJob::poll(const jobs::ProgressList &first, const Cycle &cycle, const std::function<void()> &finished)
{
    monitorQueue()->start([this, self = shared_from_this(), cycle, finished, previous = first]() mutable {
        bool isFinished = false;
        while (!isFinished && !jobIsCancelled()) {
            jobs::ProgressList current;
            isFinished = cycle(previous, current);
            runOnMain([this, current] { setProgressList(current); }, Qt::BlockingQueuedConnection);
            runOnMain([this, current] { updateProgressWithProgressList(current); }, Qt::QueuedConnection);
            previous = current;
            if (!isFinished && m_news.tryAcquire(1, m_context.intervals.poll))
                m_news.tryAcquire(m_news.available()); // one look sees all of it
        }
        // The hold goes to the main thread: where the loop runs, its end can't be waited for.
        QMetaObject::invokeMethod(
            this,
            [self = std::move(self), finished] {
                if (!self->jobIsCancelled())
                    finished();
            },
            Qt::QueuedConnection);
    });
}

void KXJob::pauseJob()
{
    m_isPaused = true;
    m_pace.pause();
    for (const jobs::StepTask &task : std::as_const(m_stepTaskList)) {
        if (const auto *process = std::get_if<tools::ToolProcessPointer>(&task)) {
            if (*process)
                (*process)->suspend();
        } else {
            signalBackground(std::get<QString>(task), SIGSTOP);
        }
    }
    m_results.pause();
}

void KXJob::resumeJob()
{
    m_isPaused = false;
    m_pace.resume();
    for (const jobs::StepTask &task : std::as_const(m_stepTaskList)) {
        if (const auto *process = std::get_if<tools::ToolProcessPointer>(&task)) {
            if (*process)
                (*process)->resume();
        } else {
            signalBackground(std::get<QString>(task), SIGCONT);
        }
    }
    m_results.resume();
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

/// Files that have their names by now are finished ones: a job that is stopped so late is done.
void KXJob::stopJob()
{
    if (m_ended)
        return;
    const auto self = shared_from_this(); // an observer may let go of us
    if (!m_results.cancel())
        return;
    unsubscribe();
    m_ended = true;
    *m_cancelled = true;
    pollSoon();
    m_monitorQueue.clear();
    stopFlashing();
    m_slowEnd.stop();
    m_firstPoll.stop();
    m_waitingSteps.clear();
    m_durations.end();
    for (const jobs::StepTask &task : std::exchange(m_stepTaskList, {}))
        stopTask(task);
    waitForKilledTools();
    endLoop(m_monitorQueue, this);
    postProgress({});
    releaseEverything();
    m_receipt.clear();
    m_outcome = steps::Outcome::stopped();
    Q_EMIT outcomeChanged();
}

/// Nothing of it ever runs, so it speaks for no name.
void KXJob::endedBefore(const steps::Outcome &outcome, const QList<QUrl> &outputs)
{
    unsubscribe();
    m_ended = true;
    m_outcome = outcome;
    m_earlierOutputs = outputs;
    m_guard.setInputs({});
    releaseEverything();
    setJobStatus(u"Completed"_s);
}

void KXJob::refuse(const QString &reason)
{
    addOutcome(steps::Outcome::failed(reason));
    requestJobDone();
}

void KXJob::jobDone()
{
    if (m_ended || m_isEnding)
        return;
    m_isEnding = true;
    unsubscribe();
    stopFlashing();
    m_durations.end();
    for (const ConverterPointer &converter : std::as_const(m_stepConverterList)) {
        if (converter)
            addOutcome(outcomeOfStep(*converter));
    }
    m_slowEnd.start(slowEnd);
    m_results.publish();
}

/// Said only where it takes its time.
void KXJob::showSlowEnd()
{
    jobs::ProgressList list = m_progressList;
    const QString word = m_results.isPublishing()  ? u"writing to disk"_s
                         : m_results.isVerifying() ? u"verifying"_s
                                                   : u"checking"_s;
    if (list.isEmpty() || word == m_shownEnd)
        return;
    m_shownEnd = word;
    list.last().progress = word;
    postProgress(list);
}

/// What was measured goes into the receipt, what was found into the outcome.
void KXJob::takeResults()
{
    for (auto film = m_results.films().begin(); film != m_results.films().end(); ++film) {
        if (film->isOpen)
            m_receipt.takeStreams(film.key(), media::sourceStreamsOf(film.value()));
    }
    m_receipt.takeMeasured(m_results.measured());
    if (m_results.found().verdict == steps::Verdict::Unknown)
        return;
    if (m_results.tellsOfEnd())
        m_outcome = m_outcome.withoutDamage();
    addOutcome(m_results.found());
    for (const QUrl &log : m_results.logsOfFailed()) {
        m_logsToKeep.append(log);
        if (m_guard.files().isOwn(log))
            m_outcome.sentence += logSentence(log);
    }
}

/// Every file has its name, or none of them will.
void KXJob::finish()
{
    if (m_ended)
        return;
    const auto self = shared_from_this();
    m_slowEnd.stop();
    if (!m_shownEnd.isEmpty())
        postProgress(m_progressList);
    takeResults();
    for (const auto &[from, to] : m_results.renamed())
        m_receipt.rename(from, to);
    m_receipt.keepOnly(outputs());
    published();
    addWordsOfReceipt();
    m_ended = true;
    settleOutcome();
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

steps::Outcome KXJob::outcomeOfStep(KXConverter &converter)
{
    steps::Outcome outcome = converter.outcome();
    const bool wasStarted = converter.converterTask() || !converter.doShell_ID().isEmpty();
    if (wasStarted)
        m_results.add(converter, outcome.verdict);
    m_receipt.add(converter, outcome.verdict);
    if (outcome.verdict == steps::Verdict::Failed) {
        m_logsToKeep.append(converter.logFileURL());
        if (wasStarted && m_guard.files().isOwn(converter.logFileURL()))
            outcome.sentence += logSentence(converter.logFileURL());
    }
    return outcome;
}

void KXJob::settleOutcome()
{
    if (m_outcome.verdict == steps::Verdict::Unknown)
        m_outcome = steps::Outcome::ok();
    if (m_outcome.verdict == steps::Verdict::Failed) {
        m_outcome.sentence += sentenceOnFolder(m_stepConverterList, m_outcome.sentence);
        const QUrl incomplete = m_results.keepIncomplete(); // a wrong verdict must never cost anybody a film
        if (!incomplete.isEmpty())
            m_outcome.sentence += keptSentence(incomplete);
    }
    keepFiles();
}

/// A note changes no verdict.
void KXJob::addWordsOfReceipt()
{
    const media::Receipt receipt = m_receipt.receipt();
    for (const QString &warning : media::sentencesOf(receipt, media::Told::AsAWarning))
        addOutcome(steps::Outcome::warnings(warning));
    for (const QString &note : media::sentencesOf(receipt, media::Told::AsANote))
        addOutcome({steps::Verdict::Ok, note, {}});
    for (const QString &verified : media::sentencesOfVerified(receipt))
        addOutcome({steps::Verdict::Ok, verified, {}});
}

/// Logs and intermediate files stay or go together, on purpose; the log of a failed step stays in any case.
void KXJob::keepFiles()
{
    const bool all = appPreferences().panelFlag(u"keepLogsFlag"_s);
    const QString line = u"\nTessaray: %1%2\n"_s.arg(
        m_outcome.word(), m_outcome.sentence.isEmpty() ? QString() : u": "_s + m_outcome.sentence);
    const media::Receipt receipt = m_receipt.receipt();
    for (const QUrl &log : std::as_const(m_logFilesToDeleteList)) {
        const QString tracks = m_receipt.linesFor(log, receipt).join(u'\n');
        const QString end = tracks.isEmpty() ? line : u"\nTracks:\n"_s + tracks + line;
        const QUrl kept = all || m_logsToKeep.contains(log) ? m_results.keepLog(log, end) : QUrl();
        if (!kept.isEmpty())
            m_outcome.sentence.replace(logSentence(log), logSentence(kept));
    }
    for (const QUrl &file : all ? std::as_const(m_tempFilesToDeleteList) : QList<QUrl>()) {
        if (m_guard.hasClaimed(file) && !m_neverKept.contains(file))
            m_guard.keep(file);
    }
}

void KXJob::keepOutputOf(const KXConverter &converter)
{
    m_tempFilesToDeleteList.removeIf(
        [kept = converter.outputFiles()](const QUrl &file) { return kept.contains(file); });
    m_results.want(converter.outputFiles());
    m_receipt.addWanted(converter);
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
    return m_earlierOutputs.isEmpty() ? m_results.outputs() : m_earlierOutputs;
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
