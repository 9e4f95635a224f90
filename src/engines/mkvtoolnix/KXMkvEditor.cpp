#include "engines/mkvtoolnix/KXMkvEditor.h"

#include "engines/OutputBase.h"
#include "engines/UpdateNames.h"
#include "engines/join/JoinCheck.h"
#include "engines/join/JoinFit.h"
#include "engines/mkvtoolnix/KXVideoSplitter.h"
#include "engines/mkvtoolnix/MkvArguments.h"
#include "engines/mkvtoolnix/MkvFates.h"
#include "prefs/KXPreferences.h"
#include "selection/Refusals.h"

using namespace Qt::StringLiterals;

namespace {

const QString joining = u"MKV Joining"_s;
const QString splitting = u"MKV Splitting"_s;
const QString error = u"error"_s;

} // namespace

KXMkvEditor::KXMkvEditor(const steps::ConverterContext &context)
    : KXConverter(context)
{
    setConverterName(u"mkvEditor"_s);
}

QStringList KXMkvEditor::findMismatchedProperetiesFor(const QList<QUrl> &files)
{
    return engines::mismatchedProperties(
        engines::filmsIn(engines::lookedAt(files, appPreferences(), context().toolsAtOnce)));
}

bool KXMkvEditor::prepareJoin(const SelectionPointer &selection)
{
    initializeFor(selection);
    const QList<QUrl> files = selection->editFilesURLsList();
    if (files.isEmpty()) {
        refuse(selection::refusalToJoin(0));
        return false;
    }
    setInputFileURL(files.constFirst());
    determineSaveDirectoryURL();
    setTempFileToDeleteURL(QUrl());
    const QString base = engines::pathInFolder(saveDirectoryURL(), inputFileURL().fileName());
    if (!claimOutput(QUrl::fromLocalFile(u"%1.joined.%2"_s.arg(base, engines::extensionOf(inputFileURL())))))
        return false;
    claimLog(QUrl::fromLocalFile(base + u".joined.log"_s));
    return true;
}

void KXMkvEditor::takeLook(const QList<engines::JoinFile> &files)
{
    const QStringList mismatched = engines::mismatchedProperties(engines::filmsIn(files));
    if (!mismatched.isEmpty())
        warn(engines::mismatchAlert(mismatched));
    refuse(engines::joinFitOf(files, u"mkvmerge"_s).refusal);
}

/// False when the files don't fit together.
bool KXMkvEditor::lookAndTake()
{
    takeLook(engines::lookedAt(converterSelection()->editFilesURLsList(), appPreferences(),
                               context().toolsAtOnce));
    return refusal().isNull();
}

QList<steps::Launch> KXMkvEditor::launches()
{
    const QUrl tool = urlOfApp(u"mkvmerge"_s);
    if (converterSelection()->jobType() == splitting)
        return {launchOfLine(tool, splitItems())};
    return {
        launchOf(tool, engines::joinArguments(converterSelection()->editFilesURLsList(), outputFileURL()))};
}

tools::ToolProcessPointer KXMkvEditor::startConversionForSelection(const SelectionPointer &selection)
{
    if (selection->jobType() != joining)
        return converterTask();
    return prepareJoin(selection) && lookAndTake() ? startPrepared() : nullptr;
}

tools::ToolProcessPointer KXMkvEditor::startPrepared()
{
    postConversionStarted();
    return runAndMonitorBinaryURLWithOptionsShouldWait(
        urlOfApp(u"mkvmerge"_s),
        engines::joinArguments(converterSelection()->editFilesURLsList(), outputFileURL()), ShouldWait::No);
}

QString KXMkvEditor::startConversionFor(const SelectionPointer &selection)
{
    setDoShell_ID({});
    if (selection->jobType() == joining)
        return prepareJoin(selection) && lookAndTake() ? startPreparedInBackground() : QString();
    if (selection->jobType() == splitting)
        return startSplit(selection);
    refuse(u"This is neither a join nor a split, so nothing was started."_s);
    return error;
}

QString KXMkvEditor::startPreparedInBackground()
{
    const QUrl tool = urlOfApp(u"mkvmerge"_s);
    postConversionStarted();
    const bool splits = converterSelection()->jobType() == splitting;
    setDoShell_ID(
        startInBackground(tool, splits ? splitItems()
                                       : engines::joinShellItems(converterSelection()->editFilesURLsList(),
                                                                 outputFileURL(), logFileURL())));
    return doShell_ID();
}

bool KXMkvEditor::prepareSplit(const SelectionPointer &selection)
{
    initializeFor(selection);
    setInputFileURL(selection->videoTrackFileURL());
    determineSaveDirectoryURL();
    setTempFileToDeleteURL(QUrl());
    if (engines::splitWord(*selection).isNull()) {
        refuse(selection::refusalToSplit(*selection));
        return false;
    }
    const QString base = engines::pathInFolder(saveDirectoryURL(), inputFileURL().fileName());
    if (!claimOutput(engines::splitOutput(base, *selection), engines::splitForm(*selection)))
        return false;
    claimLog(QUrl::fromLocalFile(base + u".split.log"_s));
    return true;
}

tools::OptionList KXMkvEditor::splitItems() const
{
    return engines::splitShellItems(*converterSelection(), inputFileURL(), outputFileURL(), logFileURL());
}

QString KXMkvEditor::startSplit(const SelectionPointer &selection)
{
    if (prepareSplit(selection))
        return startPreparedInBackground();
    return engines::splitWord(*selection).isNull() ? error : QString();
}

QList<QUrl> KXMkvEditor::outputFiles() const
{
    const SelectionPointer selection = converterSelection();
    const bool isInParts = selection && selection->jobType() == splitting &&
                           engines::splitForm(*selection) == steps::OutputForm::NumberedParts;
    return isInParts ? context().guard.partsOf(outputFileURL()) : QList<QUrl>{outputFileURL()};
}

QList<media::MeantOutput> KXMkvEditor::meantOutputs() const
{
    const SelectionPointer selection = converterSelection();
    if (!selection || !refusal().isNull())
        return {};
    if (selection->jobType() == splitting)
        return engines::splitOutputs(*selection, inputFileURL(), outputFiles());
    return {engines::mkvJoinOutput(selection->editFilesURLsList(), outputFileURL())};
}

/// mkvmerge says how far it is on standard output, and only the error stream is read, on purpose: a join
/// that runs so shows no number.
void KXMkvEditor::handleNewTaskResult(const steps::ReadEvent &event)
{
    KXConverter::handleNewTaskResult(event);
    if (event.channel != tools::ToolProcess::Channel::Error)
        return;
    QStringList lines = m_errorLines.feed(event.data);
    lines.append(m_errorLines.rest());
    QString last;
    for (const QString &line : std::as_const(lines)) {
        const QString piece = line.section(u": "_s, -1).trimmed();
        if (piece.contains(u'%'))
            last = piece;
    }
    if (!last.isNull())
        post(engines::updates::joining, last);
}

/// The mark follows ffmpeg's rule, on purpose, although mkvmerge never says "frame=": how the step ended is
/// the outcome's to say.
void KXMkvEditor::backgroundReadingCompleted()
{
    KXConverter::backgroundReadingCompleted();
    setConversionError(!logString().contains(u"frame="_s) ||
                       logString().contains(u"av_interleaved_write_frame(): Invalid argument"_s));
    post(u"taskCompletion"_s, u"Complete"_s);
}
