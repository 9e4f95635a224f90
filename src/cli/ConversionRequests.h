#pragma once

#include "app/ConversionPlan.h"
#include "cli/Choices.h"
#include "cli/FileSelection.h"
#include "cli/InputFiles.h"
#include "jobs/JobRequest.h"

namespace cli {

/// A conversion that the command line asks for, and what is known of its film.
struct ConversionRequest
{
    jobs::JobRequest job;
    app::PlannedFilm film;
};

/// A film of the command line with its request, or why there is none.
struct RequestedFilm
{
    QString path;
    std::optional<ConversionRequest> request;
    QString refusal; ///< null where there is a request
    QString wayOut;  ///< of the refusal
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
    /// The films that the command line names, each with the choices in the selection of its request. With
    /// --recursive what is the result of another one is none, with --skip-existing what has its result
    /// already is left out, and said. The status says whether the command line was wrong for one of them.
    QList<RequestedFilm> films(ExitStatus &worst);

private:
    using Settings = selection::ConversionSettings;

    bool extracts() const;
    QString problemWithLine() const;
    std::optional<selection::Aim> aim() const;
    QString targetOfGuess() const;
    Settings heldByPreset() const;
    std::optional<Settings> settledFor(KXSelection &selection) const;
    QString apply(KXSelection &selection) const;
    RequestedFilm requested(const InputFile &file, ExitStatus &worst);
    QString place(const InputFile &file, KXSelection &selection) const;
    QList<QUrl> outputsOf(const RequestedFilm &film) const;
    QList<RequestedFilm> withoutResults(const QList<RequestedFilm> &films,
                                        const QList<InputFile> &files) const;
    bool hasItsResult(const RequestedFilm &film) const;

    Session &m_session;
    Choices m_choices;
    TrackChoice m_tracks;
};

} // namespace cli
