#include "steps/KXConverter.h"

#include "media/FileNames.h"
#include "media/KXVideoTrack.h"
#include "media/MatroskaPackets.h"
#include "media/Playlists.h"
#include "media/RunFigures.h"
#include "platform/OrdinaryFile.h"
#include "prefs/KXPreferences.h"
#include "prefs/SaveFolder.h"
#include "steps/DurationLooks.h"
#include "steps/FailureCause.h"
#include "steps/FfmpegProgress.h"
#include "steps/OutputGuard.h"
#include "steps/RunAsProcess.h"
#include "steps/RunVerdict.h"
#include "steps/ToolLog.h"
#include "tools/Numbers.h"
#include "tools/ToolEnvironment.h"

#include <QFileInfo>
#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;
using tools::ToolProcess;

namespace {

QUrl inFolder(const QUrl &folder, const QString &name)
{
    const QString path = folder.toLocalFile();
    return QUrl::fromLocalFile(path.endsWith(u'/') ? path + name : path + u'/' + name);
}

/// The files that a tool is given by name.
QList<QUrl> filesIn(const tools::OptionList &list)
{
    QList<QUrl> files;
    for (const tools::OptionItem &item : list) {
        if (item.isFile())
            files.append(QUrl::fromLocalFile(item.text()));
    }
    return files;
}

} // namespace

KXConverter::KXConverter(const steps::ConverterContext &context)
    : KXHelpers(&context.preferences, context.alerts)
    , m_context(context)
{
    // Reading must stay in order, so nothing in here may let further chunks arrive while it waits.
    setWaiting(tools::Waiting::Blocking);
    setStopFlag(context.stop);
}

KXConverter::~KXConverter() = default;

void KXConverter::initializeFor(const SelectionPointer &selection)
{
    setConverterSelection(selection);
    const TrackList tracks = selection->trackList();
    if (trackItemToProcess() >= 0 && trackItemToProcess() < tracks.size())
        setInputFileURL(tracks.at(trackItemToProcess())->trackFileURL());
    setSaveDirectoryURL(selection->outputFolder().isEmpty()
                            ? prefs::SaveFolder(appPreferences()).forSource(selection->videoTrackFileURL())
                            : selection->outputFolder());
    const QUrl base = inFolder(saveDirectoryURL(), inputFileURL().fileName());
    setLogFileURL(base);
    setOutputFileURL(base);
    setSubtitleFontURL(QUrl::fromLocalFile(u"/Library/Fonts/Arial Unicode.ttf"_s));
}

// The spelling of this name is meant.
void KXConverter::inititializeForTrackWithStepLabelKeepingTheOutput(qint64 track, const QString &label,
                                                                    Keeping keeping)
{
    setTrackItemToProcess(track);
    setStepName(label);
    setIsTemporaryOutput(keeping == Keeping::Temporary);
}

QString KXConverter::startConversionFor(const SelectionPointer &)
{
    return u"Parent"_s;
}

tools::ToolProcessPointer
KXConverter::startConversionForSelectionWithSaveDirectoryURL(const SelectionPointer &, const QUrl &)
{
    return nullptr;
}

tools::ToolProcessPointer KXConverter::startConversionForSelection(const SelectionPointer &)
{
    return nullptr;
}

void KXConverter::backgroundReadingCompleted() {}

void KXConverter::taskCompletion(const KXNotification &) {}

void KXConverter::determineSaveDirectoryURL()
{
    setSaveDirectoryURL(prefs::SaveFolder(appPreferences()).forSource(inputFileURL()));
}

QString KXConverter::checkForErrorsInOutputURLAndLogURL(const QUrl &, const QUrl &) const
{
    return u""_s;
}

bool KXConverter::claimOutput(const QUrl &wanted, steps::OutputForm form)
{
    const auto claim = m_context.guard.claimOutput(wanted, form);
    setOutputFileURL(claim.url);
    m_refusal = claim.refusal;
    return m_refusal.isNull();
}

void KXConverter::claimLog(const QUrl &wanted)
{
    setLogFileURL(m_context.guard.claimFree(wanted));
}

tools::OptionList KXConverter::launchForm(const tools::OptionList &meant)
{
    return meant;
}

void KXConverter::post(const QString &name, const QString &text) const
{
    auto *self = const_cast<KXConverter *>(this);
    m_context.notifications.post(name, text,
                                 {{u"stepName"_s, stepName()},
                                  {u"theTask"_s, QVariant::fromValue<QObject *>(converterTask().get())},
                                  {u"theConverter"_s, QVariant::fromValue<QObject *>(self)}});
}

void KXConverter::postConversionStarted() const
{
    m_context.notifications.post(u"conversionStarted"_s, outputFileURL());
}

steps::Launch KXConverter::launchOf(const QUrl &tool, const tools::OptionList &meant)
{
    steps::Launch launch;
    launch.stepName = stepName();
    launch.pass = currentPass();
    launch.tool = tool;
    launch.output = outputFileURL();
    launch.log = logFileURL();
    launch.meant = meant;
    launch.launched = fittingLaunchForm(meant);
    launch.environment = tools::addedEnvironment(tool, tools::textsOf(meant), appPreferences());
    return launch;
}

steps::Launch KXConverter::launchOfLine(const QUrl &tool, const tools::OptionList &meant)
{
    steps::Launch launch = launchOf(tool, meant);
    const tools::ShellKind kind = tools::shellKind();
    launch.line = tools::toolLine(tool, meant, appPreferences(), kind);
    launch.line->launched = tools::toolLine(tool, launch.launched, appPreferences(), kind).launched;
    return launch;
}

tools::OptionList KXConverter::fittingLaunchForm(const tools::OptionList &meant)
{
    const tools::OptionList launched = launchForm(meant);
    const tools::OptionList fitting = tools::withTitlesThatFit(launched);
    m_cutsTitles = m_cutsTitles || fitting != launched;
    return fitting;
}

/// The list with every file of the job where it lies until it gets its name.
tools::OptionList KXConverter::workingAside(const tools::OptionList &list) const
{
    tools::OptionList aside;
    for (const tools::OptionItem &item : list)
        aside.append(item.withFileAt([this](const QUrl &name) { return fileOf(name); }));
    return aside;
}

QUrl KXConverter::fileOf(const QUrl &name) const
{
    return m_context.guard.fileOf(name);
}

QUrl KXConverter::privateFile(const QString &name, const QString &behindOutput) const
{
    return QUrl::fromLocalFile(m_context.guard.isPlan() ? outputFileURL().toLocalFile() + behindOutput
                                                        : m_context.temporaryFolder + name);
}

/// Tools that drop files of their own drop them there too.
QString KXConverter::toolFolder() const
{
    const QUrl folder = m_context.guard.workFolder();
    return folder.isEmpty() ? appPreferences().workingFolder() : folder.toLocalFile();
}

/// In the work folder, where the plain name of the log is a number; without one there is none.
QUrl KXConverter::figures() const
{
    const QFileInfo log(fileOf(logFileURL()).toLocalFile());
    const QUrl folder = m_context.guard.workFolder();
    return folder.isEmpty() || log.absolutePath() != folder.toLocalFile()
               ? QUrl()
               : QUrl::fromLocalFile(folder.toLocalFile() + u"/figures"_s + log.completeBaseName());
}

void KXConverter::askForFigures(const QUrl &tool, QProcessEnvironment &environment) const
{
    const QString name = figures().fileName();
    if (tools::toolFamily(tool) != tools::ToolFamily::Ffmpeg || name.isEmpty())
        return;
    const auto [variable, value] = media::figuresVariable(name);
    environment.insert(variable, value);
}

QString KXConverter::whatToolsTold() const
{
    const auto verbose = platform::readWhole(figures().toLocalFile());
    return verbose.bytes.isEmpty() ? logString() : QString::fromUtf8(verbose.bytes);
}

/// Null, or why the tool must not be started.
QString KXConverter::makeWay()
{
    for (const QUrl &input : m_context.guard.inputs()) {
        if (media::namesOtherFiles(input))
            return u"%1 is a list of other files and no film, so nothing was started."_s.arg(
                input.toLocalFile());
    }
    for (const QUrl &name : namesToWrite()) {
        const QString problem = m_context.guard.prepare(name);
        if (!problem.isNull())
            return problem;
    }
    return {};
}

tools::ToolProcessPointer
KXConverter::runAndMonitorBinaryURLWithOptionsShouldWait(const QUrl &tool, const tools::OptionList &options,
                                                         ShouldWait wait)
{
    m_tool = tool;
    m_refusal = makeWay();
    if (!m_refusal.isNull())
        return nullptr;
    m_context.guard.files().remove(logFileURL()); // that of the run before
    steps::Launch launch = launchOf(tool, options);
    launch.started = workingAside(launch.launched);
    m_runs.append(launch);
    m_toolFiles = filesIn(launch.launched);
    keepLogPlace();
    ToolProcess::Request request;
    request.program = tool.toLocalFile();
    request.arguments = tools::argumentsOf(launch.started);
    request.environment = tools::processEnvironment(tool, tools::textsOf(options), appPreferences());
    askForFigures(tool, request.environment);
    request.workingFolder = toolFolder();
    setBackgroundReadStatus(0);
    setLogString(u""_s);
    m_logIsBegun = false;
    m_outputDecoder.resetState();
    m_errorDecoder.resetState();
    const auto task = m_context.launcher.start(launch, request);
    const QString name = tool.fileName().toLower();
    if (!name.contains(u"mediainfo"_s) && !name.contains(u"mkvinfo"_s)) {
        logObjectWithString(request.program, u"[theTask launchPath]"_s);
        logObjectWithString(request.environment.toStringList(), u"[theTask environment]"_s);
        logObjectWithString(tools::textsOf(options), u"optionsArray"_s);
        logObjectWithString(tools::textsOf(options).join(u' '), u"optionsArrayString"_s);
    }
    setConverterTask(task);
    watch(task);
    if (wait == ShouldWait::Yes)
        task->waitUntilExit(-1);
    return task;
}

void KXConverter::watch(const tools::ToolProcessPointer &task)
{
    const ToolProcess *source = task.get();
    const auto hand = [this, source](ToolProcess::Channel channel, const QByteArray &bytes) {
        const steps::ReadEvent event{channel, bytes, source};
        channel == ToolProcess::Channel::Output ? readTaskOutput(event) : readTaskError(event);
    };
    connect(source, &ToolProcess::chunkRead, this, hand);
    connect(source, &ToolProcess::channelEnded, this,
            [hand](ToolProcess::Channel channel) { hand(channel, QByteArray()); });
}

void KXConverter::readTaskOutput(const steps::ReadEvent &event)
{
    if (event.channel == ToolProcess::Channel::Output)
        take(event);
}

void KXConverter::readTaskError(const steps::ReadEvent &event)
{
    if (event.channel == ToolProcess::Channel::Error)
        take(event);
}

void KXConverter::take(const steps::ReadEvent &event)
{
    if (event.source != converterTask().get())
        return;
    if (isHolding())
        m_held.append(event);
    else
        deliver(event);
}

void KXConverter::deliver(const steps::ReadEvent &event)
{
    if (!event.data.isEmpty())
        return handleNewTaskResult(event);
    endOfStream(event.channel);
}

bool KXConverter::hasRunningTool() const
{
    return m_backgroundRuns || (converterTask() && converterTask()->isRunning());
}

/// Whichever stream ends second completes the reading.
void KXConverter::endOfStream(ToolProcess::Channel channel)
{
    const int mine = channel == ToolProcess::Channel::Output ? 1 : 2;
    const int others = 3 - mine;
    if (backgroundReadStatus() != others)
        return setBackgroundReadStatus(mine);
    backgroundReadingCompleted();
    Q_EMIT toolEnded();
}

void KXConverter::handleNewTaskResult(const steps::ReadEvent &event)
{
    if (event.data.isEmpty()) {
        logString(u"no data"_s);
        return;
    }
    const bool isOutput = event.channel == ToolProcess::Channel::Output;
    const QString text = isOutput ? m_outputDecoder.decode(event.data) : m_errorDecoder.decode(event.data);
    setMonitorOutputString(text);
    m_logString += text;
    appendToLog(event.data);
}

/// A log that can't be written is no reason to end the tool.
void KXConverter::appendToLog(const QByteArray &bytes)
{
    const bool isFirst = !std::exchange(m_logIsBegun, true);
    steps::OwnFiles &files = m_context.guard.files();
    // A log that was taken away is written whole again; a new one gets the bytes as they came, which
    // may end within a character.
    if (!files.append(logFileURL(), bytes))
        files.create(logFileURL(), isFirst ? bytes : m_logString.toUtf8());
}

/// Its poll looks into the log, which must be there then. Null, or why that was not possible.
QString KXConverter::makeLog()
{
    if (!m_context.guard.hasClaimed(logFileURL()))
        return u"The log %1 is not the job's own, so nothing was started."_s.arg(logFileURL().toLocalFile());
    if (m_context.guard.files().write(logFileURL(), {}))
        return {};
    return u"The log %1 can't be written, so nothing was started."_s.arg(logFileURL().toLocalFile());
}

QString KXConverter::startInBackground(const QUrl &tool, const tools::OptionList &options)
{
    m_tool = tool;
    m_refusal = makeWay();
    if (m_refusal.isNull())
        m_refusal = makeLog();
    if (!m_refusal.isNull())
        return {};
    steps::Launch launch = launchOfLine(tool, options);
    launch.started = workingAside(steps::runAsProcess(launch.launched));
    m_runs.append(launch);
    m_toolFiles = filesIn(launch.launched);
    keepLogPlace();
    ToolProcess::Request request;
    request.program = tool.toLocalFile();
    request.arguments = tools::argumentsOf(launch.started);
    request.environment = tools::lineEnvironment(tool, tools::textsOf(options), appPreferences());
    askForFigures(tool, request.environment);
    request.workingFolder = toolFolder();
    request.streams = ToolProcess::Streams::Merged;
    logObjectWithString(launch.line->meant, u"doShellScript String: "_s);
    m_background = m_context.launcher.start(launch, request);
    watchBackground();
    const qint64 pid = m_background->processIdentifier();
    if (pid > 0)
        return QString::number(pid);
    m_context.guard.files().remove(logFileURL());
    m_refusal = u"%1 could not be started."_s.arg(tool.fileName());
    return {};
}

/// Nothing is announced of what it prints: who wants to know asks monitorConversion().
void KXConverter::watchBackground()
{
    setLogString(u""_s);
    m_logIsBegun = false;
    m_outputDecoder.resetState();
    m_backgroundRuns = true;
    const ToolProcess *source = m_background.get();
    connect(source, &ToolProcess::chunkRead, this,
            [this, source](ToolProcess::Channel channel, const QByteArray &bytes) {
                KXConverter::handleNewTaskResult({channel, bytes, source});
            });
    connect(source, &ToolProcess::channelEnded, this, [this](ToolProcess::Channel channel) {
        if (channel != ToolProcess::Channel::Error) // the last one to be told
            return;
        m_backgroundRuns = false;
        Q_EMIT toolEnded();
    });
}

bool KXConverter::backgroundRuns() const
{
    return m_background ? m_backgroundRuns.load() : processIsRunningWithPID(doShell_ID());
}

void KXConverter::waitForBackgroundEnd(int milliseconds)
{
    if (m_background)
        m_background->waitUntilExit(milliseconds);
}

void KXConverter::keepLogPlace()
{
    const QUrl place = fileOf(logFileURL());
    const QMutexLocker locker(&m_logPlaceMutex);
    m_logPlace = place;
}

/// The guard answers on the main thread only, and polls come from another one.
QUrl KXConverter::logPlace() const
{
    const QMutexLocker locker(&m_logPlaceMutex);
    return m_logPlace.isEmpty() ? logFileURL() : m_logPlace;
}

bool KXConverter::stringFoundInLog(const QString &text) const
{
    const QUrl log = logPlace();
    if (!fileExistsAtURL(log))
        return false; // else the shell's complaint would be searched
    const tools::OptionItem pattern = tools::OptionItem(u"| grep ").withData(text, tools::Quoting::Single);
    const QString found = doUnixCommandWithOptions(u"tr '\\r' '\\n' < ", {log, u"| tail -20", pattern});
    return found.contains(text);
}

QString KXConverter::lastStatusInLog() const
{
    const QString line =
        doUnixCommandWithOptions(u"tr '\\r' '\\n' < ", {logPlace(), u"| tail -1", u"| grep time="});
    return steps::isStatusLine(line) ? line : QString();
}

QString KXConverter::lastLogLine() const
{
    return doUnixCommandWithOptions(u"tr '\\r' '\\n' < ", {logPlace(), u"| tail -1"});
}

QString KXConverter::pollPercentage() const
{
    if (!backgroundRuns())
        return u"Complete"_s;
    const QString piece = lastLogLine().section(u": "_s, -1);
    return piece.endsWith(u'%') ? piece : u"error"_s;
}

void KXConverter::warn(const platform::AlertPointer &alert)
{
    if (presenter() == nullptr)
        return;
    openAlertSheet(alert);
    QTimer::singleShot(alert->closesAfter, this, [this, alert] { alertTimedOut(alert); });
}

QString KXConverter::monitorConversion()
{
    if (doShell_ID().isEmpty())
        return {};
    if (!backgroundRuns()) {
        if (currentPass() != 1)
            return u"Complete"_s;
        setCurrentPass(0); // said once
        return u"Pass 1 Complete"_s;
    }
    if (durationInSeconds() == u"0"_s || durationInSeconds().isEmpty())
        findDurationInSeconds();
    const QString line = lastStatusInLog();
    takeProgress({steps::timeInStatusLine(line), false, steps::bytesInStatusLine(line)});
    return QString::asprintf("%i%%", percentDone());
}

void KXConverter::takeProgress(const steps::FfmpegReading &reading)
{
    if (reading.fps >= 0)
        m_runSpeed.fps = reading.fps;
    if (reading.speed >= 0)
        m_runSpeed.speed = reading.speed;
    if (!reading.time.isNull())
        setOldProgress(reading.time);
    if (reading.written >= 0)
        m_writtenBytes = reading.written;
}

int KXConverter::percentDone()
{
    return m_durationIsAssumed ? steps::percentOfBytes(m_writtenBytes, sourceBytes())
                               : steps::percentOfDuration(oldProgress(), durationInSeconds());
}

qint64 KXConverter::sourceBytes()
{
    if (!m_sourceBytes) {
        m_sourceBytes = 0;
        for (const QUrl &source : timedSources())
            *m_sourceBytes += QFileInfo(source.toLocalFile()).size();
    }
    return *m_sourceBytes;
}

steps::DurationLooks &KXConverter::durations()
{
    if (m_context.durations != nullptr)
        return *m_context.durations;
    if (!m_ownDurations)
        m_ownDurations = std::make_unique<steps::DurationLooks>(m_context.preferences);
    return *m_ownDurations;
}

bool KXConverter::holdsUntilDurationsAreKnown(const steps::ReadEvent &event)
{
    if (!durations().ask(timedSources()))
        return false;
    m_held.append(event);
    if (!m_answered)
        m_answered = connect(&durations(), &steps::DurationLooks::answered, this, &KXConverter::deliverHeld);
    return true;
}

/// What comes meanwhile is kept behind it.
void KXConverter::deliverHeld()
{
    disconnect(std::exchange(m_answered, {}));
    while (!m_held.isEmpty()) {
        const steps::ReadEvent event = m_held.constFirst();
        if (event.source == converterTask().get() || event.source == nullptr)
            deliver(event);
        m_held.removeFirst();
    }
}

void KXConverter::findDurationInSeconds()
{
    auto answer = durations().answerFor(inputFileURL());
    if (!answer) {
        answer = media::isRegularFile(inputFileURL())
                     ? doShellScriptForWithOptions(urlOfApp(u"ffprobe"_s), {u"-i", inputFileURL(), u"2>&1"})
                     : QString();
        durations().keep(inputFileURL(), *answer);
    }
    takeDuration(*answer);
}

void KXConverter::keepDurationAnswer(const QUrl &source, const QString &printed)
{
    durations().keep(source, printed);
}

void KXConverter::takeDurationOf(const QUrl &source)
{
    takeDuration(durations().answerFor(source).value_or(QString()));
}

void KXConverter::takeDuration(const QString &printed)
{
    QString time = u"0"_s;
    for (const QString &line : withoutNames(printed).split(u'\n')) {
        if (!line.trimmed().startsWith(u"Duration:"_s))
            continue; // a title may say "Duration:" too
        const QString value = line.section(u", "_s, 0, 0).section(u": "_s, 1, 1);
        if (!value.isEmpty() && value != u"N/A"_s) {
            time = value;
            break;
        }
    }
    // Three hours on purpose, so that percentages stay finite.
    const bool isUnknown = time == u"0"_s;
    if (isUnknown)
        time = u"03:00:00"_s;
    const qint64 seconds = convertToTimeInSecondsFrom(time);
    m_durationIsAssumed = isUnknown || seconds <= 0;
    setDurationInSeconds(seconds > 0 ? QString::number(seconds) : u"180"_s);
}

QString KXConverter::toldLog() const
{
    return m_context.guard.withFinalNames(logString());
}

QString KXConverter::withoutNames(QString log) const
{
    for (const QUrl &file : {inputFileURL(), outputFileURL()}) {
        const QString path = file.toLocalFile();
        if (path.contains(u'\n') || path.contains(u'\r'))
            log.remove(path);
    }
    return log;
}

QList<QUrl> KXConverter::temporaryFiles() const
{
    return isEmpty(tempFileToDeleteURL()) ? QList<QUrl>() : QList<QUrl>{tempFileToDeleteURL()};
}

steps::Outcome KXConverter::outcome() const
{
    return m_refusal.isNull() ? outcomeOfTool() : steps::Outcome::failed(m_refusal);
}

steps::Outcome KXConverter::outcomeOfTool() const
{
    const steps::FailureCause cause(withoutNames(toldLog()), m_toolFiles, outputFileURL());
    const steps::Outcome ended = steps::outcomeOfRun(lastTask().get(), m_tool, cause);
    if (ended.verdict == steps::Verdict::Failed)
        return ended;
    const auto lies = [this](const QUrl &name) { return fileOf(name); };
    const QString problem = steps::problemWithOutputs(m_tool, outputFiles(), outputFileURL(), lies);
    return problem.isNull() ? withNotes(ended) : steps::Outcome::failed(problem);
}

/// What a person should know about outputs that are there. A part of a film may well lack a track.
steps::Outcome KXConverter::withNotes(steps::Outcome ended) const
{
    const bool isSplit = converterSelection() && converterSelection()->jobType() == u"MKV Splitting"_s;
    if (m_tool.fileName().contains(u"mkvmerge"_s) && !isSplit) {
        for (const QString &kind : media::kindsCountedEmpty(fileOf(outputFileURL())))
            ended = ended.joinedWith(steps::Outcome::warnings(
                u"There is nothing in the %1 track of %2."_s.arg(kind, outputFileURL().fileName())));
    }
    if (m_cutsTitles)
        ended = ended.joinedWith(
            steps::Outcome::warnings(u"A title is too long for the tools and was cut in the output."_s));
    return ended;
}

bool KXConverter::lastRunFailed() const
{
    const auto task = lastTask();
    return task && task->end() != tools::ToolProcess::End::StillRunning && task->exitStatus() != 0;
}
