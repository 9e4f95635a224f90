#pragma once

#include "tools/Literal.h"

#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

namespace tools {
class ToolPlaces;
}

namespace prefs {

/// What is known of one tool after it was looked at and run once.
struct ToolReport
{
    enum class State {
        Works,         ///< it is there and answered as it should
        Missing,       ///< no file where it should be
        NotExecutable, ///< a file without run bits
        Hollow,        ///< a launcher whose program is gone
        Silent         ///< it can be started but does not answer as it should
    };

    QString name;
    QUrl location;
    QString program; ///< what a launcher runs, else the tool itself; null when missing
    State state = State::Missing;
    QString version;     ///< null unless it works, and where the tool was built without one
    QString switchesOff; ///< a sentence: what does not work without it

    bool works() const { return state == State::Works; }
};

/// The state in a few words for the user ("works", "is missing", ...).
QString describe(ToolReport::State state);

/// Looks at the tools that the program calls. It runs each one once, for at most a few seconds, and
/// changes nothing.
class ToolCheck final
{
public:
    /// The places must outlive it.
    explicit ToolCheck(const tools::ToolPlaces &places);

    /// Every tool, in a fixed order.
    QList<ToolReport> checkAll() const;
    /// One tool by its name; a name we don't call is missing and switches off nothing.
    ToolReport check(const QString &name) const;
    /// Those that something needs and that can't be started, by a look at their files alone: nothing is run.
    QList<ToolReport> absent() const;
    static QStringList toolNames();

private:
    ToolReport looked(const QString &name) const;
    std::optional<QString> askedVersion(const QUrl &location, tools::Literal flag,
                                        const QString &pattern) const;

    const tools::ToolPlaces &m_places;
};

/// The program that one of our launchers runs; null for any other file.
QString launchedProgram(const QString &launcherPath);

} // namespace prefs
