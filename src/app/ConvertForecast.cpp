#include "app/ConvertForecast.h"

#include "app/JobPlan.h"
#include "app/OpenQueue.h"
#include "app/Program.h"
#include "app/ResultName.h"
#include "prefs/SaveFolder.h"
#include "summary/Figures.h"

using namespace Qt::StringLiterals;

namespace app {

namespace {

const QString conversionType = u"MKV Conversion"_s;

/// The film with tracks of its own, as the chosen preset would tick them.
VideoFilePointer asPresetTicks(const KXVideoFile &film, const KXPresetSelections &preset)
{
    const VideoFilePointer copy = film.copy();
    TrackList tracks;
    for (const TrackPointer &track : film.trackList())
        tracks.append(track->copy());
    copy->setTrackList(tracks);
    preset.tick(tracks);
    return copy;
}

/// The current film as it is, another one as it would be when its turn comes.
QString reasonToStayAt(Program &program, const OpenQueue &openQueue, int row)
{
    if (row == openQueue.selectedRow())
        return summary::reasonToStay(*program.selectionController().currentVideoFile());
    const OpenedFile &entry = openQueue.entries().at(row);
    const KXPresetsController &presets = program.presets();
    const int index = presets.selectionMethodIndex();
    if (program.selectionController().openQueueMatrixIndex() != 0 || index <= 0)
        return summary::reasonToStay(*entry.videoFile);
    return summary::reasonToStay(*asPresetTicks(*entry.videoFile, *presets.presetSelectionsList().at(index)));
}

/// The other films: how many go along, and which stay with what reason.
struct Others
{
    struct Staying
    {
        QString fileName;
        QString reason;
        int row = 0;
    };

    int ready = 0;
    QList<Staying> staying;
};

Others othersOf(Program &program, const OpenQueue &openQueue)
{
    Others others;
    for (int row = 0; row < openQueue.openFileCount(); ++row) {
        if (row == openQueue.selectedRow())
            continue;
        const QString reason = reasonToStayAt(program, openQueue, row);
        if (reason.isEmpty())
            ++others.ready;
        else
            others.staying.append({openQueue.entries().at(row).fileName, reason, row});
    }
    return others;
}

QString othersText(const Others &others)
{
    QString text;
    if (others.ready > 0)
        text = others.ready == 1 ? u"and 1 more film"_s : u"and %1 more films"_s.arg(others.ready);
    if (others.staying.isEmpty())
        return text;
    const Others::Staying &first = others.staying.constFirst();
    const QString staying = others.staying.size() == 1
                                ? u"%1 stays open: %2."_s.arg(first.fileName, first.reason)
                                : u"%1 films stay open."_s.arg(others.staying.size());
    return text.isEmpty() ? staying : text + u". "_s + staying;
}

void tellExtraction(ConvertForecast &forecast, const KXSelectionController &controller)
{
    forecast.isReady = controller.canEditTracks();
    forecast.sentence = summary::extractionText(*controller.currentSelection());
    if (!forecast.isReady)
        forecast.problem = {u"The preset extracts tracks: open an MKV file and tick some."_s,
                            summary::Problem::Mend::None, true};
}

void tellConversion(ConvertForecast &forecast, const KXSelectionController &controller)
{
    const KXVideoFile &film = *controller.currentVideoFile();
    const KXSelection &selection = *controller.currentSelection();
    forecast.isReady = controller.canConvert();
    forecast.problem = summary::conversionProblem(film, selection);
    forecast.sentence = summary::conversionText(selection);
    forecast.size = summary::conversionSizeText(film, selection);
}

} // namespace

SelectionPointer jobSelection(Program &program)
{
    const SelectionPointer job = program.selectionController().currentSelection()->copy();
    job->setJobType(jobTypeFor(program.presets()));
    job->setOutputName(chosenResultName(*job));
    return job;
}

ConvertForecast convertForecast(Program &program, const OpenQueue &openQueue)
{
    const KXSelectionController &controller = program.selectionController();
    ConvertForecast forecast;
    forecast.isOpen = !controller.currentVideoFile()->trackList().isEmpty();
    if (!forecast.isOpen)
        return forecast;
    const bool converts = jobTypeFor(program.presets()) == conversionType;
    if (converts)
        tellConversion(forecast, controller);
    else
        tellExtraction(forecast, controller);
    if (forecast.isReady) {
        const QList<PlannedJob> planned = plannedJobs(program, jobSelection(program));
        forecast.name = planned.isEmpty() || !converts ? QString() : planned.constFirst().output.fileName();
    }
    const Others others = othersOf(program, openQueue);
    forecast.others = othersText(others);
    forecast.staying = static_cast<int>(others.staying.size());
    forecast.firstToStay = others.staying.isEmpty() ? -1 : others.staying.constFirst().row;
    forecast.isReady = forecast.isReady || others.ready > 0;
    return forecast;
}

QString reachOfPresets(Program &program, const OpenQueue &openQueue)
{
    if (openQueue.openFileCount() < 2)
        return {};
    if (program.selectionController().openQueueMatrixIndex() != 0)
        return u"What is chosen here counts for this film alone."_s;
    const QString reach = u"all %1 open films"_s.arg(openQueue.openFileCount());
    return program.presets().settingMethodIndex() == 0
               ? u"Target and picture count for %1."_s.arg(reach)
               : u"“%1” counts for %2."_s.arg(program.presets().currentPresetSettingName(), reach);
}

QString resultFolder(Program &program, const QUrl &source)
{
    return prefs::SaveFolder(program.preferences()).forSource(source).toLocalFile();
}

bool resultFolderIsChosen(Program &program)
{
    return !program.preferences().saveDirectoryPath().isEmpty();
}

FilmState filmState(Program &program, const OpenQueue &openQueue, int row)
{
    const QString reason = reasonToStayAt(program, openQueue, row);
    if (!reason.isEmpty())
        return {false, reason.left(1).toUpper() + reason.mid(1)};
    const QString length = summary::lengthText(openQueue.entries().at(row).videoFile->seconds().value_or(0));
    return {true, length.isEmpty() ? u"Ready"_s : u"Ready · "_s + length};
}

} // namespace app
