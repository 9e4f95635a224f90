#include "cli/ConversionRequests.h"

#include "cli/PresetChoice.h"
#include "cli/Session.h"
#include "selection/Refusals.h"

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

} // namespace

ConversionRequests::ConversionRequests(Session &session)
    : m_session(session)
    , m_choices(session.line())
    , m_tracks(trackChoiceOf(session.line(), m_choices))
{
}

QStringList ConversionRequests::options()
{
    return {u"device"_s, u"kind"_s,  u"video"_s,        u"video-bitrate"_s,
            u"width"_s,  u"audio"_s, u"auto"_s,         u"subtitles"_s,
            u"tracks"_s, u"add"_s,   u"track-preset"_s, u"settings-preset"_s};
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

std::nullopt_t ConversionRequests::fail(ExitStatus &status, ExitStatus how, const QString &sentence)
{
    m_problem = sentence;
    status = how;
    return std::nullopt;
}

std::optional<ConversionRequest> ConversionRequests::requestFor(const QString &path, ExitStatus &status)
{
    m_problem = QString();
    const FileSelection file = selectFile(m_session, path, m_tracks);
    m_wayOut = file.wayOut;
    if (!file.selection)
        return fail(status, ExitStatus::Failed, file.refusal);
    const QStringList missing = missingTracks(*file.selection, m_tracks);
    const QString error = missing.isEmpty() ? m_choices.errorFor(*file.selection)
                                            : u"%1 has no track %2."_s.arg(path, missing.join(u", "_s));
    if (!error.isNull()) {
        m_session.wrongUsage(error);
        return fail(status, ExitStatus::WrongUsage, error);
    }
    const QString refusal =
        extracts() ? selection::refusalToExtract(*file.selection) : apply(*file.selection);
    if (!refusal.isNull())
        return fail(status, ExitStatus::Failed, refusal);
    const auto kind = extracts() ? JobKind::TrackExtraction : JobKind::Conversion;
    return ConversionRequest{jobs::requestFor(kind, file.selection),
                             app::PlannedFilm::of(*m_session.program().currentFile().file())};
}

} // namespace cli
