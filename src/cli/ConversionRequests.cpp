#include "cli/ConversionRequests.h"

#include "cli/DryRunPrinter.h"
#include "cli/PresetChoice.h"
#include "cli/Session.h"
#include "platform/FileIdentity.h"
#include "selection/Refusals.h"

#include <QFileInfo>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;
using jobs::JobKind;
using selection::ConversionSettings;

namespace cli {

namespace {

TrackChoice trackChoiceOf(const CommandLine &line, const Choices &choices)
{
    TrackChoice choice{TrackChoice::Way::Preset, {}, {}};
    if (choices.tracks())
        choice = {TrackChoice::Way::ByHand, *choices.tracks(), {}};
    for (const QString &path : line.values(u"add"_s))
        choice.addedPaths.append(absolutePath(path));
    return choice;
}

/// What a result of a kind may be called.
QStringList extensionsOf(selection::OutputKind kind)
{
    switch (kind) {
    case selection::OutputKind::Mkv:
        return {u"mkv"_s};
    case selection::OutputKind::Avi:
        return {u"avi"_s};
    default:
        return {u"m4v"_s, u"mp4"_s};
    }
}

} // namespace

ConversionRequests::ConversionRequests(Session &session)
    : m_session(session)
    , m_choices(session.line())
    , m_tracks(trackChoiceOf(session.line(), m_choices))
{
}

QStringList ConversionRequests::options()
{
    return {u"device"_s,       u"kind"_s,         u"video"_s,           u"video-bitrate"_s, u"width"_s,
            u"audio"_s,        u"auto"_s,         u"subtitles"_s,       u"tracks"_s,        u"add"_s,
            u"track-preset"_s, u"output"_s,       u"settings-preset"_s, u"force"_s,         u"recursive"_s,
            u"verify"_s,       u"skip-existing"_s};
}

bool ConversionRequests::extracts() const
{
    return app::jobTypeFor(m_session.program().presets()) == u"MKV Track Extraction"_s;
}

ExitStatus ConversionRequests::begin()
{
    if (!m_choices.error().isNull())
        return m_session.wrongUsage(m_choices.error());
    QString problem = choosePresets(m_session);
    if (problem.isNull())
        problem = problemWithLine();
    if (!problem.isNull())
        return m_session.wrongUsage(problem);
    const CommandLine &line = m_session.line();
    if (line.has(u"skip-existing"_s) && line.has(u"force"_s))
        return m_session.wrongUsage(u"--skip-existing and --force exclude each other."_s);
    if (line.has(u"output"_s) && line.has(u"save-dir"_s))
        return m_session.wrongUsage(
            u"--output says where the result goes, so --save-dir has no place beside it."_s);
    if (!m_choices.note().isNull())
        m_session.console().say(m_choices.note());
    return ExitStatus::AllWell;
}

QString ConversionRequests::problemWithLine() const
{
    if (extracts() && !m_choices.given().isEmpty())
        return u"The preset \"Extract Tracks\" converts nothing, so %1 has no place beside it."_s.arg(
            m_choices.given().join(u", "_s));
    return aim() ? selection::refusalToGuess(targetOfGuess()) : QString();
}

std::optional<selection::Aim> ConversionRequests::aim() const
{
    const PresetSettingsPointer preset = m_session.program().presets().currentPresetSettings();
    return m_choices.aim() || !preset ? m_choices.aim() : preset->aim();
}

/// The target that the command line names, or that of its preset.
QString ConversionRequests::targetOfGuess() const
{
    const CommandLine &line = m_session.line();
    const QString kind = line.value(u"kind"_s);
    if (line.has(u"kind"_s) && kind != u"mp4"_s)
        return kind.toUpper();
    const PresetSettingsPointer preset = m_session.program().presets().currentPresetSettings();
    return line.has(u"device"_s) || !preset ? line.value(u"device"_s) : preset->pDevice();
}

/// What the preset that was named leaves to the choices of a guess; none without one.
ConversionSettings ConversionRequests::heldByPreset() const
{
    const PresetSettingsPointer preset = m_session.program().presets().currentPresetSettings();
    const bool isNamed = m_session.line().has(u"settings-preset"_s);
    return isNamed && preset ? preset->heldByGuess() : ConversionSettings();
}

/// The choices, and the guess where one is asked for. No value where there is nothing to guess for.
std::optional<ConversionSettings> ConversionRequests::settledFor(KXSelection &selection) const
{
    const ConversionSettings byHand = m_choices.settingsFor(selection);
    if (!aim())
        return byHand;
    const auto guess =
        selection::bestGuess(selection, targetOfGuess(), *aim(), heldByPreset().overlaidBy(byHand));
    if (!guess)
        return std::nullopt;
    selection::writeGuess(*guess, selection);
    return guess->settings;
}

/// What the choices make of the selection; a null text, or why that can't be converted.
QString ConversionRequests::apply(KXSelection &selection) const
{
    const auto settings = settledFor(selection);
    if (!settings)
        return selection::refusalToGuess(targetOfGuess());
    settings->writeTo(selection);
    if (m_tracks.way != TrackChoice::Way::ByHand && leavesOutSubtitles(selection))
        leaveOutSubtitles(selection); // an AVI carries none, and none was asked for by name
    return selection::refusalToConvert(selection, *settings);
}

/// Where the result of a file goes; a null text, or why it can't go there.
QString ConversionRequests::place(const InputFile &file, KXSelection &selection) const
{
    selection.setOutputFolder(file.outputFolder);
    if (!m_session.line().has(u"output"_s))
        return {};
    if (selection.videoTrackFileExtension() == u"h264"_s)
        return u"A raw H.264 stream is muxed into an MKV file, whose name --output can't choose."_s;
    const QFileInfo output(absolutePath(m_session.line().value(u"output"_s)));
    const QStringList extensions = extensionsOf(selection::outputKindFor(selection.theDevice()));
    if (!extensions.contains(output.suffix().toLower()))
        return u"--output %1 would hold something else: the name has to end in .%2."_s.arg(
            output.fileName(), extensions.join(u" or ."_s));
    selection.setOutputFolder(QUrl::fromLocalFile(output.absolutePath()));
    selection.setOutputName(output.fileName());
    return {};
}

RequestedFilm ConversionRequests::requested(const InputFile &file, ExitStatus &worst)
{
    const FileSelection chosen = selectFile(m_session, file.path, m_tracks);
    if (!chosen.selection) {
        worst = worse(worst, ExitStatus::Failed);
        return {file.path, {}, chosen.refusal, chosen.wayOut};
    }
    const QStringList missing = missingTracks(*chosen.selection, m_tracks);
    QString wrong = missing.isEmpty() ? m_choices.errorFor(*chosen.selection)
                                      : u"%1 has no track %2."_s.arg(file.path, missing.join(u", "_s));
    const QString refusal = !wrong.isNull() ? QString()
                            : extracts()    ? selection::refusalToExtract(*chosen.selection)
                                            : apply(*chosen.selection);
    if (wrong.isNull() && refusal.isNull())
        wrong = place(file, *chosen.selection);
    if (!wrong.isNull()) {
        worst = m_session.wrongUsage(wrong);
        return {file.path, {}, wrong, {}};
    }
    if (!refusal.isNull()) {
        worst = worse(worst, ExitStatus::Failed);
        return {file.path, {}, refusal, {}};
    }
    const auto kind = extracts() ? JobKind::TrackExtraction : JobKind::Conversion;
    const ConversionRequest request{jobs::requestFor(kind, chosen.selection),
                                    app::PlannedFilm::of(*m_session.program().currentFile().file())};
    return {file.path, request, {}, {}};
}

QList<QUrl> ConversionRequests::outputsOf(const RequestedFilm &film) const
{
    steps::OutputRegistry registry;
    QList<QUrl> outputs;
    for (const JobPointer &job :
         film.request ? plannedJobs(m_session, registry, {film.request->job}) : QList<JobPointer>()) {
        job->plan();
        for (const ConverterPointer &converter : job->stepConverterList()) {
            if (converter && !converter->isTemporaryOutput())
                outputs.append(converter->outputFileURL());
        }
    }
    return outputs;
}

/// Films that were found, and that are what another film becomes, are no films of their own.
QList<RequestedFilm> ConversionRequests::withoutResults(const QList<RequestedFilm> &films,
                                                        const QList<InputFile> &files) const
{
    QSet<QString> results;
    for (const RequestedFilm &film : films) {
        for (const QUrl &output : outputsOf(film))
            results.insert(platform::canonicalKey(output));
    }
    QList<RequestedFilm> kept;
    for (qsizetype i = 0; i < films.size(); ++i) {
        const bool isResult = results.contains(platform::canonicalKey(QUrl::fromLocalFile(films.at(i).path)));
        if (!files.at(i).isFound || !isResult)
            kept.append(films.at(i));
    }
    return kept;
}

bool ConversionRequests::hasItsResult(const RequestedFilm &film) const
{
    const QList<QUrl> outputs = outputsOf(film);
    const bool isThere =
        !outputs.isEmpty() && std::all_of(outputs.begin(), outputs.end(), [](const QUrl &output) {
            return QFileInfo::exists(output.toLocalFile());
        });
    if (isThere)
        m_session.console().say(
            u"%1: %2 is there, so it is passed over."_s.arg(film.path, outputs.constFirst().toLocalFile()));
    return isThere;
}

QList<RequestedFilm> ConversionRequests::films(ExitStatus &worst)
{
    QString problem;
    const QList<InputFile> files = inputFiles(m_session, problem);
    if (!problem.isNull()) {
        worst = m_session.wrongUsage(problem);
        return {};
    }
    QList<RequestedFilm> films;
    for (const InputFile &file : files) {
        films.append(requested(file, worst));
        if (m_session.isInterrupted())
            return {};
    }
    if (m_session.line().has(u"recursive"_s))
        films = withoutResults(films, files);
    if (m_session.line().has(u"skip-existing"_s))
        films.removeIf([this](const RequestedFilm &film) { return hasItsResult(film); });
    return films;
}

} // namespace cli
