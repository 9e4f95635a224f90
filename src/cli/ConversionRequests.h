#pragma once

#include "app/ConversionPlan.h"
#include "cli/Choices.h"
#include "cli/FileSelection.h"
#include "jobs/JobRequest.h"

namespace cli {

/// A conversion that the command line asks for, and what is known of its film.
struct ConversionRequest
{
    jobs::JobRequest job;
    app::PlannedFilm film;
};

/// Makes the requests of "convert", and of what shows what it would do. Lives for one run.
class ConversionRequests final
{
public:
    explicit ConversionRequests(Session &session);

    /// The options that choose what becomes of a film.
    static QStringList options();
    /// Whether the command line as a whole is right, said if it is not, and what of it changes nothing.
    ExitStatus begin();
    /// The request for a file, with the choices in its selection. None when the file fails; the status says
    /// whether the command line was wrong for it, and the reason is said, or left in problem().
    std::optional<ConversionRequest> requestFor(const QString &path, ExitStatus &status);
    /// Why the last file got no request; a null text when it got one.
    QString problem() const { return m_problem; }
    /// What helps against it; a null text where nothing is known to.
    QString wayOut() const { return m_wayOut; }

private:
    using Settings = selection::ConversionSettings;

    bool extracts() const;
    QString problemWithLine() const;
    std::optional<selection::Aim> aim() const;
    QString targetOfGuess() const;
    Settings heldByPreset() const;
    std::optional<Settings> settledFor(KXSelection &selection) const;
    QString apply(KXSelection &selection) const;
    std::nullopt_t fail(ExitStatus &status, ExitStatus how, const QString &sentence);

    Session &m_session;
    Choices m_choices;
    TrackChoice m_tracks;
    QString m_problem;
    QString m_wayOut;
};

} // namespace cli
