#include "engines/mkvtoolnix/KXMkvReMuxer.h"

#include "engines/OutputBase.h"
#include "engines/UpdateNames.h"
#include "engines/mkvtoolnix/MkvArguments.h"
#include "engines/mkvtoolnix/MkvFates.h"
#include "prefs/KXPreferences.h"
#include "prefs/SaveFolder.h"

using namespace Qt::StringLiterals;

KXMkvReMuxer::KXMkvReMuxer(const steps::ConverterContext &context)
    : KXConverter(context)
{
}

bool KXMkvReMuxer::prepareForSelectionWithSaveDirectoryURL(const SelectionPointer &selection,
                                                           const QUrl &folder)
{
    setConverterSelection(selection);
    setInputFileURL(selection->videoTrackFileURL());
    setSaveDirectoryURL(prefs::SaveFolder(folder).forSource(inputFileURL()));
    setTempFileToDeleteURL(QUrl());
    const QString base = engines::pathInFolder(saveDirectoryURL(), inputFileURL().fileName());
    if (!claimOutput(QUrl::fromLocalFile(base + u".remux.mkv"_s)))
        return false;
    claimLog(QUrl::fromLocalFile(base + u".remuxing.log"_s));
    return true;
}

tools::ToolProcessPointer
KXMkvReMuxer::startConversionForSelectionWithSaveDirectoryURL(const SelectionPointer &selection,
                                                              const QUrl &folder)
{
    return prepareForSelectionWithSaveDirectoryURL(selection, folder) ? startPrepared() : nullptr;
}

tools::ToolProcessPointer KXMkvReMuxer::startPrepared()
{
    postConversionStarted();
    m_progress.clear();
    return runAndMonitorBinaryURLWithOptionsShouldWait(
        urlOfApp(u"mkvmerge"_s), engines::remuxArguments(inputFileURL(), outputFileURL()), ShouldWait::No);
}

bool KXMkvReMuxer::prepareInBackground(const SelectionPointer &selection)
{
    m_isInBackground = true;
    setDoShell_ID({});
    return prepareForSelectionWithSaveDirectoryURL(selection, appPreferences().saveDirectoryURL());
}

QList<steps::Launch> KXMkvReMuxer::launches()
{
    const QUrl tool = urlOfApp(u"mkvmerge"_s);
    return {m_isInBackground
                ? launchOfLine(tool, engines::remuxShellItems(inputFileURL(), outputFileURL(), logFileURL()))
                : launchOf(tool, engines::remuxArguments(inputFileURL(), outputFileURL()))};
}

QString KXMkvReMuxer::startConversionFor(const SelectionPointer &selection)
{
    return prepareInBackground(selection) ? startPreparedInBackground() : QString();
}

QString KXMkvReMuxer::startPreparedInBackground()
{
    postConversionStarted();
    setDoShell_ID(startInBackground(urlOfApp(u"mkvmerge"_s),
                                    engines::remuxShellItems(inputFileURL(), outputFileURL(), logFileURL())));
    return doShell_ID();
}

QList<media::MeantOutput> KXMkvReMuxer::meantOutputs() const
{
    if (!converterSelection() || !refusal().isNull())
        return {};
    return {engines::remuxOutput(inputFileURL(), outputFileURL())};
}

/// Under the splitter's name, on purpose.
void KXMkvReMuxer::handleNewTaskResult(const steps::ReadEvent &event)
{
    KXConverter::handleNewTaskResult(event);
    const QString number = m_progress.feed(event.data);
    if (!number.isNull())
        post(engines::updates::splitting, number + u'%');
}

void KXMkvReMuxer::backgroundReadingCompleted()
{
    KXConverter::backgroundReadingCompleted();
    post(u"taskCompletion"_s, u"Complete"_s);
}
