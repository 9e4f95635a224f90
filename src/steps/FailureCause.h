#pragma once

#include <QList>
#include <QString>
#include <QUrl>

namespace steps {

/// Why a tool failed, told from its own lines: a known line's sentence, else the first line that speaks of an
/// error, cleaned. Names of files and texts out of them never decide.
class FailureCause final
{
public:
    /// The files are those that the tool was given; the output's folder is named where it is full.
    FailureCause(const QString &log, const QList<QUrl> &files, const QUrl &output);

    /// Null when the lines tell nothing.
    QString sentence() const;
    /// The sentence of the first line that is known; null when none is.
    QString known() const;

    /// What mkvmerge warned of.
    QString warning() const;

    /// A line without colours, without the part of a tool that wrote it and its address.
    static QString cleaned(QString line);
    /// Whether what is said of a failure lies in the machine, so that the same may go well later: there is no
    /// room, a folder can't be written, a tool can't be started.
    static bool mayPass(const QString &sentence);
    /// That the folder of an output is full.
    static QString noRoomFor(const QUrl &output);

private:
    QString shown(const QString &line) const;
    QString sentenceOfKnown(const QString &line) const;

    QString m_text; ///< with a mark in the place of each file
    QList<QUrl> m_files;
    QUrl m_output;
};

/// "FLAC can't be in MP4: re-encode it or choose MKV."
QString notInContainer(const QString &codec, const QString &container);

} // namespace steps
