#include "engines/ffmpeg/KXMetadataPadder.h"

#include "engines/OutputBase.h"
#include "prefs/KXPreferences.h"
#include "steps/OutputGuard.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

KXMetadataPadder::KXMetadataPadder(const steps::ConverterContext &context)
    : KXConverter(context)
{
    setConverterName(u"metadataPadder"_s);
    setStepName(u"Adding Padding"_s);
    setIsTemporaryOutput(true); // the film that it becomes is another step's
}

bool KXMetadataPadder::isWantedFor(const QUrl &film, const KXPreferences &preferences)
{
    static const QStringList extensions{u"mp4"_s, u"m4v"_s};
    return preferences.panelFlag(u"metadataPaddingFlag"_s) &&
           extensions.contains(engines::extensionOf(film).toLower()) &&
           QFileInfo(preferences.urlOfApp(u"atomicparsley"_s).toLocalFile()).isExecutable();
}

/// The tool pads only when it changes a tag; the name of the program that wrote the film is a harmless one.
/// How much it pads stands in its environment.
tools::ToolProcessPointer KXMetadataPadder::startPadding(const QUrl &film)
{
    setInputFileURL(film);
    const QUrl folder = engines::folderOf(film);
    const QUrl neighbour = context().guard.claimFree(
        QUrl::fromLocalFile(engines::pathInFolder(folder, u"."_s + film.fileName() + u".padding.m4v"_s)));
    setOutputFileURL(neighbour);
    claimLog(QUrl::fromLocalFile(film.toLocalFile() + u".padding.log"_s));
    return runAndMonitorBinaryURLWithOptionsShouldWait(
        urlOfApp(u"atomicparsley"_s), {film, u"--encodingTool", u"Tessaray", u"--output", neighbour},
        ShouldWait::No);
}

void KXMetadataPadder::backgroundReadingCompleted()
{
    KXConverter::backgroundReadingCompleted();
    post(u"taskCompletion"_s, u"Complete"_s);
}

/// A padded film is larger than the film: anything else is no whole one.
bool KXMetadataPadder::replaceFilm()
{
    const QFileInfo padded(fileOf(outputFileURL()).toLocalFile());
    const QFileInfo film(fileOf(inputFileURL()).toLocalFile());
    return KXConverter::outcome().verdict != steps::Verdict::Failed && padded.size() >= film.size() &&
           context().guard.files().renameOver(outputFileURL(), inputFileURL());
}

void KXMetadataPadder::finishPadding()
{
    if (replaceFilm()) {
        m_outcome = steps::Outcome::ok();
        return;
    }
    context().guard.files().remove(outputFileURL());
    m_outcome = steps::Outcome::warnings(
        u"No padding could be added to %1; the film itself is good."_s.arg(inputFileURL().fileName()));
}
