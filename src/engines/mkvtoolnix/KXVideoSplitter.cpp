#include "engines/mkvtoolnix/KXVideoSplitter.h"

#include "engines/OutputBase.h"
#include "engines/UpdateNames.h"
#include "engines/mkvtoolnix/MkvArguments.h"
#include "engines/mkvtoolnix/MkvFates.h"
#include "prefs/SaveFolder.h"
#include "selection/Refusals.h"

#include <QFileInfo>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace engines {

steps::OutputForm splitForm(const KXSelection &selection)
{
    return selection.splitType() == u"time"_s ? steps::OutputForm::OneFile : steps::OutputForm::NumberedParts;
}

QUrl splitOutput(const QString &base, const KXSelection &selection)
{
    static const QRegularExpression number(u"%[0-9]*d"_s);
    const QFileInfo info(base);
    QString name = info.fileName();
    if (splitForm(selection) == steps::OutputForm::NumberedParts)
        name.replace(number, u"_"_s);
    return QUrl::fromLocalFile(
        u"%1.split.%2"_s.arg(pathInFolder(QUrl::fromLocalFile(info.path()), name), info.suffix()));
}

} // namespace engines

KXVideoSplitter::KXVideoSplitter(const steps::ConverterContext &context)
    : KXConverter(context)
{
    setConverterName(u"videoSplitter"_s);
    setIsTemporaryOutput(false);
}

bool KXVideoSplitter::prepareForSelectionWithSaveDirectoryURL(const SelectionPointer &selection,
                                                              const QUrl &folder)
{
    setConverterSelection(selection);
    setInputFileURL(selection->videoTrackFileURL());
    setSaveDirectoryURL(prefs::SaveFolder(folder).forSource(inputFileURL()));
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

tools::OptionList KXVideoSplitter::arguments() const
{
    return engines::splitArguments(engines::splitWord(*converterSelection()), inputFileURL(),
                                   outputFileURL());
}

QList<steps::Launch> KXVideoSplitter::launches()
{
    return {launchOf(urlOfApp(u"mkvmerge"_s), arguments())};
}

tools::ToolProcessPointer
KXVideoSplitter::startConversionForSelectionWithSaveDirectoryURL(const SelectionPointer &selection,
                                                                 const QUrl &folder)
{
    return prepareForSelectionWithSaveDirectoryURL(selection, folder) ? startPrepared() : nullptr;
}

tools::ToolProcessPointer KXVideoSplitter::startPrepared()
{
    postConversionStarted();
    m_progress.clear();
    return runAndMonitorBinaryURLWithOptionsShouldWait(urlOfApp(u"mkvmerge"_s), arguments(), ShouldWait::No);
}

QList<QUrl> KXVideoSplitter::outputFiles() const
{
    const bool isOneFile =
        !converterSelection() || engines::splitForm(*converterSelection()) == steps::OutputForm::OneFile;
    return isOneFile ? QList<QUrl>{outputFileURL()} : context().guard.partsOf(outputFileURL());
}

QList<media::MeantOutput> KXVideoSplitter::meantOutputs() const
{
    if (!converterSelection() || !refusal().isNull())
        return {};
    return engines::splitOutputs(*converterSelection(), inputFileURL(), outputFiles());
}

void KXVideoSplitter::handleNewTaskResult(const steps::ReadEvent &event)
{
    KXConverter::handleNewTaskResult(event);
    const QString number = m_progress.feed(event.data);
    if (!number.isNull())
        post(engines::updates::splitting, number + u'%');
}

void KXVideoSplitter::backgroundReadingCompleted()
{
    KXConverter::backgroundReadingCompleted();
    post(u"taskCompletion"_s, u"Complete"_s);
}
