#pragma once

#include <QByteArrayList>
#include <QStringList>

namespace support {

/// A program that plays what it is told instead of a real tool. Its commands come from its arguments
/// behind "--do", else from the script that FAKETOOL_SCRIPT names, else from the script beside the
/// path it was started by (PATH.script), one command a line:
///
///   out TEXT, err TEXT        prints a line; "\n", "\r", "\t", "\\" and "\xHH" in TEXT as in C
///   part out|err TEXT         prints TEXT without a line feed: half a line, or one that ends in "\r"
///   play out|err FILE         prints a recorded output
///   flood out|err BYTES       prints so many bytes, in lines of 80
///   cat                       copies standard input until it ends
///   await FILE                waits until the file is there
///   sleep MILLISECONDS, hang, exit STATUS, die SIGNAL, ignore SIGNAL (TERM, INT, HUP, KILL, SEGV, XFSZ)
///   child FILE                starts a child that hangs and appends its process id to FILE
///   record FILE, pid FILE     appends the arguments (see recordedRuns()), the process id
///   environment NAME FILE     appends "NAME=value", or "NAME unset"
///   write BYTES TARGET        writes an output file; TARGET is "last" (the last argument),
///                             "after:OPTION" (the argument behind OPTION) or a path
///   when TEXT ... end         the commands up to "end" count only if an argument holds TEXT
///
/// It ends with 0 unless told otherwise, and with 99 at a script that it doesn't understand. Where
/// FAKETOOL_RECORD names a file, every run is recorded there first.
class FakeTool final
{
public:
    struct Run
    {
        QByteArray program; ///< the path it was started by
        QByteArrayList arguments;
    };

    /// The program itself.
    static QString program();
    /// Puts it at that path (folders are made) with a script of its own: what stood there is replaced.
    static QString install(const QString &path, const QStringList &script = {});
    /// What "record" and FAKETOOL_RECORD left in that file, in order; empty when it isn't there.
    static QList<Run> recordedRuns(const QString &path);
};

/// Puts a script for a shell at that path, in the place of what stood there, and answers the path; the line
/// that names the shell is written too.
QString installScript(const QString &path, const QString &lines);

} // namespace support
