#include "engines/mkvtoolnix/KXMkvReMuxer.h"

#include "engines/OutputBase.h"
#include "engines/UpdateNames.h"
#include "engines/mkvtoolnix/MkvArguments.h"

using namespace Qt::StringLiterals;

KXMkvReMuxer::KXMkvReMuxer(const steps::ConverterContext &context)
    : KXConverter(context)
{
}

/// Names for output and log; the source's folder when none is given.
bool KXMkvReMuxer::prepare(const SelectionPointer &selection, const QUrl &folder)
{
    setConverterSelection(selection);
    setInputFileURL(selection->videoTrackFileURL());
    setSaveDirectoryURL(isEmpty(folder) ? engines::folderOf(inputFileURL()) : folder);
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
    if (!prepare(selection, folder))
        return nullptr;
    postConversionStarted();
    m_progress.clear();
    return runAndMonitorBinaryURLWithOptionsShouldWait(
        urlOfApp(u"mkvmerge"_s), engines::remuxArguments(inputFileURL(), outputFileURL()), ShouldWait::No);
}

QString KXMkvReMuxer::startConversionFor(const SelectionPointer &selection)
{
    setDoShell_ID({});
    if (!prepare(selection, saveFolderOr({})))
        return {};
    postConversionStarted();
    setDoShell_ID(startInBackground(urlOfApp(u"mkvmerge"_s),
                                    engines::remuxShellItems(inputFileURL(), outputFileURL(), logFileURL())));
    return doShell_ID();
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
