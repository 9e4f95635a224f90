#include "engines/KXMetadataPadder.h"

#include "engines/OutputBase.h"
#include "prefs/KXPreferences.h"
#include "tools/step/OutputGuard.h"

#include <QFile>
#include <QFileInfo>

#include <cstdio>

using namespace Qt::StringLiterals;

KXMetadataPadder::KXMetadataPadder(const step::ConverterContext &context)
    : KXConverter(context)
{
    setConverterName(u"metadataPadder"_s);
    setStepName(u"Adding Padding"_s);
}

bool KXMetadataPadder::isWantedFor(const QUrl &film, const KXPreferences &preferences)
{
    static const QStringList extensions{u"mp4"_s, u"m4v"_s};
    return preferences.panelFlag(u"metadataPaddingFlag"_s) &&
           extensions.contains(engines::extensionOf(film).toLower()) &&
           QFileInfo(preferences.urlOfApp(u"atomicparsley"_s).toLocalFile()).isExecutable();
}

/// The tool pads whenever it writes tags; taking out a tag that films don't have changes nothing else. How
/// much it pads stands in its environment.
tools::ToolProcessPointer KXMetadataPadder::startPadding(const QUrl &film)
{
    setInputFileURL(film);
    const QUrl folder = engines::folderOf(film);
    m_neighbour = context().guard.claimFree(
        QUrl::fromLocalFile(engines::pathInFolder(folder, u"."_s + film.fileName() + u".padding.m4v"_s)));
    setOutputFileURL(m_neighbour);
    claimLog(QUrl::fromLocalFile(film.toLocalFile() + u".padding.log"_s));
    return runAndMonitorBinaryURLWithOptionsShouldWait(
        urlOfApp(u"atomicparsley"_s), {film, u"--podcastGUID"_s, u""_s, u"--output"_s, m_neighbour},
        ShouldWait::No);
}

QList<QUrl> KXMetadataPadder::temporaryFiles() const
{
    return isEmpty(m_neighbour) ? QList<QUrl>() : QList<QUrl>{m_neighbour};
}

void KXMetadataPadder::backgroundReadingCompleted()
{
    KXConverter::backgroundReadingCompleted();
    post(u"taskCompletion"_s, u"Complete"_s);
}

/// A padded film is larger than the film: anything else is no whole one.
bool KXMetadataPadder::replaceFilm() const
{
    const QFileInfo padded(m_neighbour.toLocalFile());
    const QFileInfo film(inputFileURL().toLocalFile());
    return KXConverter::outcome().verdict != step::Verdict::Failed && padded.size() >= film.size() &&
           std::rename(QFile::encodeName(padded.filePath()).constData(),
                       QFile::encodeName(film.filePath()).constData()) == 0;
}

void KXMetadataPadder::finishPadding()
{
    if (replaceFilm()) {
        m_outcome = step::Outcome::ok();
        return;
    }
    QFile::remove(m_neighbour.toLocalFile());
    m_outcome = step::Outcome::warnings(
        u"No padding could be added to %1; the film itself is good."_s.arg(inputFileURL().fileName()));
}
