// What a step is told, what it is called, and how it ended; running the tool is in KXConverterRun.cpp.
#include "tools/step/KXConverter.h"

#include "media/KXVideoTrack.h"
#include "prefs/KXPreferences.h"
#include "tools/Numbers.h"
#include "tools/ToolEnvironment.h"
#include "tools/step/FfmpegProgress.h"
#include "tools/step/OutputGuard.h"
#include "tools/step/ToolLog.h"

#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

QUrl folderOf(const QUrl &file)
{
    return QUrl::fromLocalFile(QFileInfo(file.toLocalFile()).absolutePath());
}

QUrl inFolder(const QUrl &folder, const QString &name)
{
    const QString path = folder.toLocalFile();
    return QUrl::fromLocalFile(path.endsWith(u'/') ? path + name : path + u'/' + name);
}

QString fileText(const QUrl &location)
{
    QFile file(location.toLocalFile());
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

KXConverter::KXConverter(const step::ConverterContext &context)
    : KXHelpers(&context.preferences)
    , m_context(context)
{
    // Reading must stay in order, so nothing in here may let further chunks arrive while it waits.
    setWaiting(tools::Waiting::Blocking);
}

QUrl KXConverter::saveFolderOr(const QUrl &folder) const
{
    const QUrl saveFolder = appPreferences().saveDirectoryURL();
    return isEmpty(saveFolder) ? folder : saveFolder;
}

void KXConverter::initializeFor(const SelectionPointer &selection)
{
    setConverterSelection(selection);
    const TrackList tracks = selection->trackList();
    if (trackItemToProcess() >= 0 && trackItemToProcess() < tracks.size())
        setInputFileURL(tracks.at(trackItemToProcess())->trackFileURL());
    setSaveDirectoryURL(saveFolderOr(folderOf(selection->videoTrackFileURL())));
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
    setSaveDirectoryURL(saveFolderOr(folderOf(inputFileURL())));
}

QString KXConverter::checkForErrorsInOutputURLAndLogURL(const QUrl &, const QUrl &) const
{
    return u""_s;
}

bool KXConverter::claimOutput(const QUrl &wanted)
{
    const auto claim = m_context.guard.claimOutput(wanted);
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

step::Outcome KXConverter::failedBecause(const QString &reason) const
{
    return step::Outcome::failed(reason.endsWith(u'.') ? reason : reason + u'.');
}

step::Outcome KXConverter::outcome() const
{
    return m_refusal.isNull() ? outcomeOfTool() : step::Outcome::failed(m_refusal);
}

step::Outcome KXConverter::outcomeOfTool() const
{
    const step::Outcome ended = doShell_ID().isEmpty() ? outcomeOfProcess() : outcomeOfBackground();
    if (ended.verdict == step::Verdict::Failed)
        return ended;
    const QFileInfo output(outputFileURL().toLocalFile());
    if (!output.exists())
        return failedBecause(u"%1 ended without writing %2"_s.arg(m_tool.fileName(), output.fileName()));
    if (output.size() == 0)
        return failedBecause(u"%1 wrote nothing into %2"_s.arg(m_tool.fileName(), output.fileName()));
    return ended;
}

step::Outcome KXConverter::outcomeOfProcess() const
{
    const auto task = converterTask();
    if (!task)
        return failedBecause(u"The tool of this step was not started"_s);
    const step::ToolLog log(logString());
    if (task->end() == tools::ToolProcess::End::NotStarted)
        return failedBecause(log.lastMessage());
    const QString name = m_tool.fileName();
    if (!task->exitStatus())
        return failedBecause(u"%1 was ended from outside or crashed"_s.arg(name));
    const bool isMkv = tools::toolFamily(m_tool) == tools::ToolFamily::Mkv;
    if (isMkv && *task->exitStatus() == 1)
        return step::Outcome::warnings(u"%1: %2"_s.arg(name, log.firstLineContaining({u"Warning:"_s})));
    if (*task->exitStatus() != 0) {
        return failedBecause(
            u"%1 failed (exit status %2): %3"_s.arg(name).arg(*task->exitStatus()).arg(log.lastMessage()));
    }
    return step::Outcome::ok();
}

/// Nobody tells us the exit status of a background line, so its log has to.
step::Outcome KXConverter::outcomeOfBackground() const
{
    const step::ToolLog log(fileText(logFileURL()));
    const QString name = m_tool.fileName();
    if (tools::toolFamily(m_tool) != tools::ToolFamily::Mkv) {
        return log.hasLineContaining(u"Lsize="_s)
                   ? step::Outcome::ok()
                   : failedBecause(u"%1 did not finish: %2"_s.arg(name, log.lastMessage()));
    }
    if (log.hasLineStartingWith(u"Error:"_s))
        return failedBecause(u"%1: %2"_s.arg(name, log.firstLineContaining({u"Error:"_s})));
    if (log.hasLineStartingWith(u"Warning:"_s))
        return step::Outcome::warnings(u"%1: %2"_s.arg(name, log.firstLineContaining({u"Warning:"_s})));
    return step::Outcome::ok();
}
