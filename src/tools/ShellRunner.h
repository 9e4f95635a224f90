#pragma once

#include "tools/ShellLine.h"

#include <QByteArray>
#include <QProcessEnvironment>

#include <atomic>
#include <memory>

namespace tools {

/// How the caller waits for a shell line. The event loop keeps a window painting and timers ticking;
/// it is used on the main thread only, elsewhere the runner always blocks.
enum class Waiting { Blocking, WithEventLoop };

/// Ends every wait that looks at it once it is set. Shared between who waits and who stops.
using StopFlag = std::shared_ptr<std::atomic_bool>;

struct ShellRequest
{
    QString line;
    QString workingFolder; ///< empty: ours
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    Waiting waiting = Waiting::Blocking;
    int timeoutMs = -1; ///< -1: no limit. After it, or on stop, the whole group is killed.
    StopFlag stop;
};

struct ShellReply
{
    QByteArray output;
    QByteArray error;
    int status = -1; ///< exit status of the shell; -1 when it was killed or never started

    /// Standard output after success, else standard error.
    const QByteArray &selected() const { return status == 0 ? output : error; }
    /// The same as a text, without one line feed at its end; a null text when it is not UTF-8.
    QString text() const;
};

/// The one place that starts shell lines: "/bin/sh" "-c" LINE in a process group of its own, with
/// standard input closed and both streams drained at the same time. Returns when the shell and both
/// streams have ended: what it leaves in the background must send its output elsewhere.
ShellReply runShell(const ShellRequest &request);

/// For the line of a tool: in the folder of the application, with what its family needs.
ShellRequest toolRequest(const QString &line, const QUrl &tool, const ToolPlaces &places);
/// For the line of a system command, which says everything in English.
ShellRequest commandRequest(const QString &line);

/// Whether /bin/sh knows "&>"; asked once per run.
ShellKind shellKind();

} // namespace tools
