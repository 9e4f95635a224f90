#pragma once

#include "media/TrackFate.h"
#include "platform/Fields.h"
#include "platform/KXNotificationCenter.h"
#include "selection/KXSelection.h"
#include "steps/ConverterContext.h"
#include "steps/FfmpegProgress.h"
#include "steps/Outcome.h"
#include "steps/OutputGuard.h"
#include "steps/StepLauncher.h"
#include "tools/KXHelpers.h"
#include "tools/ToolProcess.h"

#include <QMutex>
#include <QStringDecoder>

#include <atomic>
#include <memory>
#include <optional>

class KXPreferences;

namespace steps {

/// One chunk of a tool's output, or the end of a stream when the data is empty.
struct ReadEvent
{
    tools::ToolProcess::Channel channel = tools::ToolProcess::Channel::Output;
    QByteArray data;
    const tools::ToolProcess *source = nullptr;
};

} // namespace steps

/// The base of every tool driver: one object runs one step of a job. It knows input, output and log,
/// starts the tool as a process object or in the shell's background, keeps its output in the log and
/// says how the step ended. Owned by its job. It never decides what comes after its step.
class KXConverter : public KXHelpers
{
    Q_OBJECT
    KX_FIELD(bool, isTemporaryOutput, setIsTemporaryOutput, false)
    KX_FIELD(bool, conversionError, setConversionError, false)
    KX_FIELD(int, currentPass, setCurrentPass, 0)
    /// 0: both streams open; 1: standard output has ended; 2: standard error has ended.
    KX_FIELD(int, backgroundReadStatus, setBackgroundReadStatus, 0)
    KX_FIELD(int, monitorCounter, setMonitorCounter, 0)
    KX_FIELD(QString, converterName, setConverterName, QString())
    KX_FIELD(QString, stepName, setStepName, QString())
    KX_FIELD(QUrl, subtitleFontURL, setSubtitleFontURL, QUrl())
    KX_FIELD(QUrl, saveDirectoryURL, setSaveDirectoryURL, QUrl())
    KX_FIELD(QString, doShell_ID, setDoShell_ID, QString())
    KX_FIELD(QUrl, logFileURL, setLogFileURL, QUrl())
    KX_FIELD(QUrl, inputFileURL, setInputFileURL, QUrl())
    KX_FIELD(QUrl, outputFileURL, setOutputFileURL, QUrl())
    KX_FIELD(SelectionPointer, converterSelection, setConverterSelection, nullptr)
    KX_FIELD(qint64, trackItemToProcess, setTrackItemToProcess, 0)
    KX_FIELD(QUrl, tempFileToDeleteURL, setTempFileToDeleteURL, QUrl())
    KX_FIELD(QString, oldProgress, setOldProgress, QString())
    KX_FIELD(QString, converterStatus, setConverterStatus, QString())
    KX_FIELD(QString, lg, setLg, QString())
    KX_FIELD(bool, converterIsDone, setConverterIsDone, false)
    /// Whole seconds as text; "0" means unknown.
    KX_FIELD(QString, durationInSeconds, setDurationInSeconds, QStringLiteral("0"))
    KX_FIELD(tools::ToolProcessPointer, converterTask, setConverterTask, nullptr)
    /// The latest chunk of output.
    KX_FIELD(QString, monitorOutputString, setMonitorOutputString, QString())
    /// All output of the current run.
    KX_FIELD(QString, logString, setLogString, QString())

public:
    enum class Keeping { Temporary, TheOutput };
    enum class ShouldWait { No, Yes };

    explicit KXConverter(const steps::ConverterContext &context);
    ~KXConverter() override;

    using KXHelpers::logString; // the hook beside the field of the same name

    KXPreferences &appPreferences() const { return m_context.preferences; }

    virtual void initializeFor(const SelectionPointer &selection);
    virtual void inititializeForTrackWithStepLabelKeepingTheOutput(qint64 track, const QString &label,
                                                                   Keeping keeping);
    /// Starts a background run and answers its process id. "Parent": nobody has taken this over.
    virtual QString startConversionFor(const SelectionPointer &selection);
    /// The starts of process objects answer null when nothing was started; refusal() then says why.
    virtual tools::ToolProcessPointer
    startConversionForSelectionWithSaveDirectoryURL(const SelectionPointer &selection, const QUrl &folder);
    virtual tools::ToolProcessPointer startConversionForSelection(const SelectionPointer &selection);
    /// Progress of a background run: a percentage, "Pass 1 Complete" once, then "Complete"; a null
    /// text when there is no such run. May be called from a job's monitor thread.
    virtual QString monitorConversion();
    // A step has its names first, by a prepare operation of its class, and is started then.
    /// What a step that has its names will run, in order. Nothing is started by asking.
    virtual QList<steps::Launch> launches() { return {}; }
    /// Starts it as a process object, or so that monitorConversion() is asked; the answers are those of the
    /// start operations above.
    virtual tools::ToolProcessPointer startPrepared() { return nullptr; }
    virtual QString startPreparedInBackground() { return {}; }
    tools::ToolProcessPointer runAndMonitorBinaryURLWithOptionsShouldWait(const QUrl &tool,
                                                                          const tools::OptionList &options,
                                                                          ShouldWait wait);
    virtual void readTaskOutput(const steps::ReadEvent &event);
    virtual void readTaskError(const steps::ReadEvent &event);
    virtual void handleNewTaskResult(const steps::ReadEvent &event);
    virtual void backgroundReadingCompleted();
    virtual void taskCompletion(const KXNotification &notification);
    /// True when the text occurs in the last 20 lines of the log.
    bool stringFoundInLog(const QString &text) const;
    void determineSaveDirectoryURL();
    /// Always an empty text, on purpose: the base finds no errors.
    QString checkForErrorsInOutputURLAndLogURL(const QUrl &output, const QUrl &log) const;
    /// Waits for ffprobe, or for the stop flag: never to be called on the main thread.
    void findDurationInSeconds();
    /// Whether what the tool prints waits until the length of its source is known.
    bool isHolding() const { return !m_held.isEmpty(); }
    /// The sources whose lengths the step goes by.
    virtual QList<QUrl> timedSources() const { return {inputFileURL()}; }

    /// Whether its background run goes on. From any thread.
    bool backgroundRuns() const;
    /// Whether the run that was started last has ended otherwise than with exit status 0.
    bool lastRunFailed() const;
    /// Waits until a background run that was killed has ended.
    void waitForBackgroundEnd(int milliseconds);

    /// Why the step was not started; a null text when it may be or was.
    QString refusal() const { return m_refusal; }
    /// How the step ended, once it has.
    virtual steps::Outcome outcome() const;
    /// What the step writes: its output, or the parts that are there of one that comes in parts.
    virtual QList<QUrl> outputFiles() const { return {outputFileURL()}; }
    /// What its tool printed, and, of ffmpeg, the figures at the end of a verbose copy of that. For the
    /// check.
    QString whatToolsTold() const;
    /// Every run of its tools so far, as it was started.
    const QList<steps::Launch> &runs() const { return m_runs; }
    bool hasRunningTool() const;
    /// What its outputs are meant to hold, by the names of outputFiles(), once it has its names; parts are
    /// known when they are there. None where there is nothing to hold them against.
    virtual QList<media::MeantOutput> meantOutputs() const { return {}; }
    /// How fast its tool says that it is; absent where the tool says nothing of the kind.
    steps::RunSpeed runSpeed() const { return m_runSpeed; }
    /// What the tool is going to write, by claimed names.
    virtual QList<QUrl> namesToWrite() const { return {outputFileURL()}; }
    /// What goes with the job, unless logs are kept: then it stays too.
    virtual QList<QUrl> temporaryFiles() const;
    /// Whether that goes in any case.
    virtual bool isNeverKept() const { return false; }

Q_SIGNALS:
    /// The tool has ended, and all that it printed was taken in.
    void toolEnded();

protected:
    const steps::ConverterContext &context() const { return m_context; }
    void post(const QString &name, const QString &text) const;
    void postConversionStarted() const;
    /// Names for output and log; false (with a refusal) when the output must not be written.
    bool claimOutput(const QUrl &wanted, steps::OutputForm form = steps::OutputForm::OneFile);
    void claimLog(const QUrl &wanted);
    void refuse(const QString &sentence) { m_refusal = sentence; }
    /// A run as a value: that of a list, or that of a line with "& echo $!" at its end.
    steps::Launch launchOf(const QUrl &tool, const tools::OptionList &meant);
    steps::Launch launchOfLine(const QUrl &tool, const tools::OptionList &meant);
    /// The launch form of a list: what has to differ for the installed tool to succeed.
    virtual tools::OptionList launchForm(const tools::OptionList &meant);
    /// The files of the job in a launched list lie in its work folder.
    virtual tools::OptionList workingAside(const tools::OptionList &list) const;
    /// Where a file of the job lies now; other locations are answered as they are.
    QUrl fileOf(const QUrl &name) const;
    /// A file that only the job's tools see, in its private folder. In a plan, whose lines are there to be
    /// pasted, it lies beside the output, with that behind its name.
    QUrl privateFile(const QString &name, const QString &behindOutput) const;
    /// What its tool has printed, by the final names of files.
    QString toldLog() const;
    /// Runs the words of a line with "& echo $!" at its end as a process object that the step is asked about
    /// by monitorConversion(); answers the process id, a null text for none.
    QString startInBackground(const QUrl &tool, const tools::OptionList &options);
    bool durationIsAssumed() const { return m_durationIsAssumed; }
    /// Takes what ffmpeg said of how far it is; percentDone() goes by the time, or where no length is known
    /// by the bytes that are written beside those of the sources.
    void takeProgress(const steps::FfmpegReading &reading);
    int percentDone();
    /// Bytes of all sources that the step goes by; asked for once.
    qint64 sourceBytes();
    /// False when the lengths are known. Else they are asked for, and the event, with all that follow it,
    /// comes again in its order once they are.
    bool holdsUntilDurationsAreKnown(const steps::ReadEvent &event);
    /// What ffprobe printed of a source where somebody has looked at it already.
    void keepDurationAnswer(const QUrl &source, const QString &printed);
    /// Takes the length of a source that is known.
    void takeDurationOf(const QUrl &source);
    /// The log's last line where it is one of ffmpeg's status lines; else null.
    QString lastStatusInLog() const;
    /// The log's last line, where a carriage return ends a line too.
    QString lastLogLine() const;
    /// The poll of a tool that prints "Progress: 45%": "45%", "error" where the last line holds no
    /// percentage, "Complete" when the background run has ended.
    QString pollPercentage() const;
    /// Shows an alert that closes itself.
    void warn(const platform::AlertPointer &alert);
    /// The outcome of a finished run by exit status, messages and output.
    steps::Outcome outcomeOfTool() const;

private:
    steps::Outcome withNotes(steps::Outcome ended) const;
    /// The run that was started last: a second pass of a background run has a process object of its own.
    tools::ToolProcessPointer lastTask() const { return converterTask() ? converterTask() : m_background; }
    /// A log without the names that would break it into lines of their own.
    QString withoutNames(QString log) const;
    tools::OptionList fittingLaunchForm(const tools::OptionList &meant);
    void watch(const tools::ToolProcessPointer &task);
    void watchBackground();
    void endOfStream(tools::ToolProcess::Channel channel);
    void appendToLog(const QByteArray &bytes);
    QString makeWay();
    QString toolFolder() const;
    void keepLogPlace();
    QUrl logPlace() const;
    void askForFigures(const QUrl &tool, QProcessEnvironment &environment) const;
    QUrl figures() const;
    QString makeLog();
    void takeDuration(const QString &answer);
    steps::DurationLooks &durations();
    void take(const steps::ReadEvent &event);
    void deliver(const steps::ReadEvent &event);
    void deliverHeld();

    steps::ConverterContext m_context;
    QString m_refusal;
    QUrl m_tool;
    QList<steps::Launch> m_runs;
    QList<QUrl> m_toolFiles; ///< that the run was given by name
    tools::ToolProcessPointer m_background;
    std::atomic_bool m_backgroundRuns = false; ///< read by a job's monitor thread
    mutable QMutex m_logPlaceMutex;
    QUrl m_logPlace; ///< of the run that was started last; empty before
    QStringDecoder m_outputDecoder{QStringDecoder::Utf8};
    QStringDecoder m_errorDecoder{QStringDecoder::Utf8};
    bool m_durationIsAssumed = false;
    qint64 m_writtenBytes = 0;
    steps::RunSpeed m_runSpeed;
    std::optional<qint64> m_sourceBytes;
    bool m_cutsTitles = false; ///< what is launched tells less than what is meant
    bool m_logIsBegun = false;
    QList<steps::ReadEvent> m_held;
    QMetaObject::Connection m_answered;
    std::unique_ptr<steps::DurationLooks> m_ownDurations;
};

using ConverterPointer = std::shared_ptr<KXConverter>;
