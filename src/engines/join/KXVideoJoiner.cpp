#include "engines/join/KXVideoJoiner.h"

#include "engines/OutputBase.h"
#include "engines/UpdateNames.h"
#include "engines/ffmpeg/FfmpegOutcome.h"
#include "engines/join/JoinArguments.h"
#include "engines/join/JoinCheck.h"
#include "engines/join/JoinFates.h"
#include "engines/mkvtoolnix/MkvArguments.h"
#include "prefs/KXPreferences.h"
#include "prefs/SaveFolder.h"
#include "selection/Refusals.h"
#include "steps/OutputGuard.h"
#include "steps/ToolLog.h"
#include "tools/Numbers.h"

#include <QRegularExpression>
#include <QThread>

using namespace Qt::StringLiterals;

KXVideoJoiner::KXVideoJoiner(const steps::ConverterContext &context)
    : KXConverter(context)
{
    setConverterName(u"videoJoiner"_s);
    setIsTemporaryOutput(false);
    setMonitorCounter(0);
}

KXVideoJoiner::~KXVideoJoiner()
{
    if (m_look)
        m_look->wait(); // short: a stop ends its tools
}

QStringList KXVideoJoiner::findMismatchedProperetiesFor(const QList<QUrl> &files)
{
    const int besideTheTool = context().toolsAtOnce - 1;
    return engines::mismatchedProperties(
        engines::probedForJoining(files, appPreferences(), stopFlag(), besideTheTool));
}

bool KXVideoJoiner::prepareForSelectionWithSaveDirectoryURL(const SelectionPointer &selection,
                                                            const QUrl &folder)
{
    setConverterSelection(selection);
    const QList<QUrl> files = selection->editFilesURLsList();
    if (files.isEmpty()) {
        refuse(selection::refusalToJoin(0));
        return false;
    }
    setInputFileURL(files.constFirst());
    setSaveDirectoryURL(prefs::SaveFolder(folder).forSource(inputFileURL()));
    setTempFileToDeleteURL(QUrl());
    const QString base = engines::pathInFolder(saveDirectoryURL(), inputFileURL().fileName());
    if (!claimOutput(QUrl::fromLocalFile(u"%1.joined.%2"_s.arg(base, engines::extensionOf(inputFileURL())))))
        return false;
    claimLog(QUrl::fromLocalFile(base + u".joined.log"_s));
    return true;
}

tools::ToolProcessPointer
KXVideoJoiner::startConversionForSelectionWithSaveDirectoryURL(const SelectionPointer &selection,
                                                               const QUrl &folder)
{
    return prepareForSelectionWithSaveDirectoryURL(selection, folder) ? startPrepared() : nullptr;
}

tools::ToolProcessPointer KXVideoJoiner::startPrepared()
{
    const QList<QUrl> files = converterSelection()->editFilesURLsList();
    auto task = start(files);
    m_mustLook = task != nullptr;
    if (m_mustLook && context().toolsAtOnce > 1)
        lookAt(files);
    return task;
}

/// Beside the tool, where there is more than one core: a warning holds no join up, and probing several files
/// takes about as long as joining them.
void KXVideoJoiner::lookAt(const QList<QUrl> &files)
{
    m_mustLook = false;
    m_look.reset(QThread::create([this, files] { m_mismatched = findMismatchedProperetiesFor(files); }));
    connect(m_look.get(), &QThread::finished, this, &KXVideoJoiner::looked);
    m_look->start();
}

void KXVideoJoiner::looked()
{
    m_look->wait();
    m_look.reset();
    if (isStopped())
        return;
    if (!m_mismatched.isEmpty())
        warn(engines::mismatchAlert(m_mismatched));
    completeWhenAllIsDone();
}

void KXVideoJoiner::completeWhenAllIsDone()
{
    if (m_toolIsDone && !m_look)
        post(u"taskCompletion"_s, u"Complete"_s);
}

tools::OptionList KXVideoJoiner::arguments(const QList<QUrl> &files) const
{
    if (joinerName() == u"ffmpeg"_s)
        return engines::concatArguments(concatList(), outputFileURL());
    if (joinerName() == u"mkvmerge"_s)
        return engines::joinArguments(files, outputFileURL());
    if (joinerName() == u"mp4box"_s)
        return engines::mp4boxJoinArguments(files, saveDirectoryURL(), outputFileURL());
    return {};
}

QList<steps::Launch> KXVideoJoiner::launches()
{
    return {launchOf(urlOfApp(joinerName()), arguments(converterSelection()->editFilesURLsList()))};
}

tools::ToolProcessPointer KXVideoJoiner::start(const QList<QUrl> &files)
{
    m_mkvProgress.clear();
    m_ffmpegProgress.clear();
    const tools::OptionList list = arguments(files);
    if (list.isEmpty()) {
        refuse(u"There is no tool \"%1\" to join with, so nothing was started."_s.arg(joinerName()));
        return nullptr;
    }
    if (joinerName() == u"ffmpeg"_s && !writeConcatList(files)) {
        refuse(u"The list of files to join can't be written to %1."_s.arg(concatList().toLocalFile()));
        return nullptr;
    }
    postConversionStarted();
    return runAndMonitorBinaryURLWithOptionsShouldWait(urlOfApp(joinerName()), list, ShouldWait::No);
}

QUrl KXVideoJoiner::concatList() const
{
    return QUrl::fromLocalFile(context().temporaryFolder + u"mylist.txt"_s);
}

/// The concat reader takes its list line by line, whatever is quoted, so a path with a line break in it is
/// given through a plain link.
QList<QUrl> KXVideoJoiner::listable(const QList<QUrl> &files) const
{
    QList<QUrl> names;
    for (const QUrl &file : files) {
        const QString path = file.toLocalFile();
        if (!path.contains(u'\n') && !path.contains(u'\r')) {
            names.append(file);
            continue;
        }
        names.append(QUrl::fromLocalFile(context().temporaryFolder + u"part%1"_s.arg(names.size())));
        context().guard.files().link(file, names.constLast());
    }
    return names;
}

bool KXVideoJoiner::writeConcatList(const QList<QUrl> &files) const
{
    return context().guard.files().write(concatList(), engines::concatListLaunched(listable(files)).toUtf8());
}

tools::OptionList KXVideoJoiner::launchForm(const tools::OptionList &meant)
{
    return joinerName() == u"ffmpeg"_s ? engines::concatLaunchForm(meant) : meant;
}

/// Seconds of all files together: ffmpeg tells none for its list.
QString KXVideoJoiner::ffmpegPercentage(const QByteArray &bytes)
{
    const steps::FfmpegReading reading = m_ffmpegProgress.feed(bytes);
    if (reading.time.isNull())
        return {};
    setOldProgress(reading.time);
    return QString::number(steps::percentOfDuration(reading.time, QString::number(m_wholeSeconds)));
}

/// "Appending: |==  | (10/100)"
QString KXVideoJoiner::mp4boxPercentage() const
{
    static const QRegularExpression share(u"\\(([0-9]+)/([0-9]+)\\)"_s);
    QString last;
    for (auto matches = share.globalMatch(monitorOutputString()); matches.hasNext();) {
        const auto match = matches.next();
        last =
            QString::number(tools::percentOf(match.captured(1).toLongLong(), match.captured(2).toLongLong()));
    }
    return last;
}

QString KXVideoJoiner::percentageIn(const steps::ReadEvent &event)
{
    if (joinerName() == u"mkvmerge"_s)
        return m_mkvProgress.feed(event.data);
    const bool isError = event.channel == tools::ToolProcess::Channel::Error;
    if (joinerName() == u"ffmpeg"_s)
        return isError ? ffmpegPercentage(event.data) : QString();
    return mp4boxPercentage();
}

QList<media::MeantOutput> KXVideoJoiner::meantOutputs() const
{
    if (!converterSelection() || !refusal().isNull())
        return {};
    return {engines::joinOutput(joinerName(), converterSelection()->editFilesURLsList(), outputFileURL())};
}

QList<QUrl> KXVideoJoiner::timedSources() const
{
    return converterSelection()->editFilesURLsList();
}

void KXVideoJoiner::addDurations()
{
    const QUrl first = inputFileURL();
    for (const QUrl &file : timedSources()) {
        setInputFileURL(file);
        takeDurationOf(file);
        m_wholeSeconds += tools::leadingInteger(durationInSeconds());
    }
    setInputFileURL(first);
}

void KXVideoJoiner::handleNewTaskResult(const steps::ReadEvent &event)
{
    const bool goesByDuration =
        joinerName() == u"ffmpeg"_s && event.channel == tools::ToolProcess::Channel::Error;
    if (goesByDuration && !event.data.isEmpty() && m_wholeSeconds == 0) {
        if (holdsUntilDurationsAreKnown(event))
            return;
        addDurations();
    }
    KXConverter::handleNewTaskResult(event);
    const QString number = percentageIn(event);
    if (!number.isNull())
        post(engines::updates::joining, number + u'%');
}

void KXVideoJoiner::backgroundReadingCompleted()
{
    KXConverter::backgroundReadingCompleted();
    m_toolIsDone = true;
    if (m_mustLook && !isStopped())
        lookAt(converterSelection()->editFilesURLsList());
    completeWhenAllIsDone();
}

/// The concat reader leaves out a file that it can't open, and ends well all the same.
steps::Outcome KXVideoJoiner::outcomeOfConcat(const steps::Outcome &ended) const
{
    const QString missing = steps::ToolLog(logString()).firstLineContaining({u"Impossible to open"_s});
    if (!missing.isNull())
        return steps::Outcome::failed(
            u"A file could not be opened, so it is not in the output: %1."_s.arg(missing));
    engines::FfmpegRun run;
    run.log = logString();
    for (const QUrl &file : converterSelection()->editFilesURLsList())
        run.files.append(file.toLocalFile());
    run.files.append(outputFileURL().toLocalFile());
    run.lastTime = oldProgress();
    run.durationInSeconds = m_wholeSeconds > 0 ? QString::number(m_wholeSeconds) : QString();
    run.hasVideo = true;
    steps::Outcome said = engines::outcomeOfMessages(run);
    if (said.verdict == steps::Verdict::Failed)
        return said; // tells why, whatever the exit status is
    return ended.verdict == steps::Verdict::Failed ? ended : ended.joinedWith(said);
}

steps::Outcome KXVideoJoiner::outcome() const
{
    const steps::Outcome ended = KXConverter::outcome();
    return joinerName() == u"ffmpeg"_s && refusal().isNull() ? outcomeOfConcat(ended) : ended;
}
