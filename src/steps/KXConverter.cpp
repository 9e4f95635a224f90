// What a step is told, what it is called, and how it ended; running the tool is in KXConverterRun.cpp.
#include "steps/KXConverter.h"

#include "media/KXVideoTrack.h"
#include "media/MatroskaPackets.h"
#include "prefs/KXPreferences.h"
#include "prefs/SaveFolder.h"
#include "steps/DurationLooks.h"
#include "steps/FfmpegProgress.h"
#include "steps/OutputGuard.h"
#include "steps/ToolLog.h"
#include "tools/Numbers.h"
#include "tools/ToolEnvironment.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

QUrl inFolder(const QUrl &folder, const QString &name)
{
    const QString path = folder.toLocalFile();
    return QUrl::fromLocalFile(path.endsWith(u'/') ? path + name : path + u'/' + name);
}

/// The reason as a sentence, followed by the tool's own words where there are some.
QString sentenceOf(const QString &reason, const QString &words = {})
{
    const QString sentence = words.isEmpty() ? reason : reason + u": "_s + words;
    return sentence.endsWith(u'.') ? sentence : sentence + u'.';
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
    setSaveDirectoryURL(prefs::SaveFolder(appPreferences()).forSource(selection->videoTrackFileURL()));
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
    const steps::Outcome ended = outcomeOfLastTask();
    if (ended.verdict == steps::Verdict::Failed)
        return ended;
    const QList<QUrl> outputs = outputFiles();
    const auto lacks = [&](const QString &sentence, const QUrl &file) {
        return steps::Outcome::failed(sentence.arg(m_tool.fileName(), file.fileName()));
    };
    if (outputs.isEmpty())
        return lacks(u"%1 ended without writing %2."_s, outputFileURL());
    for (const QUrl &file : outputs) {
        const QFileInfo output(file.toLocalFile());
        if (!output.exists())
            return lacks(u"%1 ended without writing %2."_s, file);
        if (output.size() == 0)
            return lacks(u"%1 wrote nothing into %2."_s, file);
        if (media::isMatroskaWithoutPackets(file))
            return lacks(u"%1 wrote only headers into %2, and nothing of any track."_s, file);
    }
    return withNotes(ended);
}

/// What a person should know about outputs that are there. A part of a film may well lack a track.
steps::Outcome KXConverter::withNotes(steps::Outcome ended) const
{
    const bool isSplit = converterSelection() && converterSelection()->jobType() == u"MKV Splitting"_s;
    if (m_tool.fileName().contains(u"mkvmerge"_s) && !isSplit) {
        for (const QString &kind : media::kindsCountedEmpty(outputFileURL()))
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

steps::Outcome KXConverter::outcomeOfLastTask() const
{
    using steps::Outcome;
    const auto task = lastTask();
    const QString name = m_tool.fileName();
    if (!task)
        return Outcome::failed(u"The tool of this step was not started."_s);
    const steps::ToolLog log(withoutNames(logString()));
    if (task->end() == tools::ToolProcess::End::NotStarted)
        return Outcome::failed(sentenceOf(u"%1 was not started"_s.arg(name), log.lastMessage()));
    if (!task->exitStatus())
        return Outcome::failed(u"%1 was ended from outside or crashed."_s.arg(name));
    const int status = *task->exitStatus();
    if (tools::toolFamily(m_tool) == tools::ToolFamily::Mkv && status == 1)
        return Outcome::warnings(
            sentenceOf(u"%1 warned"_s.arg(name), log.firstLineStartingWith(u"Warning:"_s)));
    if (status != 0) {
        return Outcome::failed(
            sentenceOf(u"%1 failed (exit status %2)"_s.arg(name).arg(status), log.lastMessage()));
    }
    return Outcome::ok();
}
