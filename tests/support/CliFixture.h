#pragma once

#include "support/Scratch.h"

#include <QJsonObject>
#include <QProcess>
#include <QStringList>

#include <memory>

namespace support {

/// The finished command-line program, run as a user runs it: in a home, with settings, a folder for
/// temporary files and a working folder ("media") of its own, all gone with it.
class CliFixture final
{
public:
    /// How a run ended. A run that a signal ended has the shell's status: 128 and the signal.
    struct Run
    {
        int status = -1;
        QByteArray output;
        QByteArray error;

        QString said() const { return QString::fromUtf8(error); }
        /// Nothing but one line that ends with a full stop.
        bool saidOneSentence() const { return error.count('\n') == 1 && error.endsWith(".\n"); }
        QStringList lines() const;
        /// One object a line; a line that is no object fails the test at once.
        QList<QJsonObject> objects() const;
    };

    CliFixture();
    ~CliFixture();

    /// Puts a copy of the program beside resources of its own, in which every tool is a recorder in
    /// front of the installed one, or whatever setTool() makes of it.
    void useOwnTools();
    /// Makes a tool of the own resources ("ffmpeg/ffmpeg") a shell script; null removes it.
    void setTool(const QString &tool, const QString &script);
    /// Lets every program that is found through PATH be recorded too.
    void recordEverything();
    /// Runs the program as a user whom permissions keep out, where we are root. Needs tools of its own
    /// that are no recorders.
    void runUnprivileged();
    /// The programs that were started so far through recorders, each with its arguments.
    QList<QByteArrayList> recorded() const;
    void forgetRecorded() const;

    Run run(const QStringList &words, int timeoutMs = 240000) const;
    /// Started and left to the caller; outcomeOf() waits for its end.
    std::unique_ptr<QProcess> start(const QStringList &words) const;
    static Run outcomeOf(QProcess &process, int timeoutMs = 240000);

    const Scratch &scratch() const { return m_scratch; }
    /// A path in the working folder.
    QString media(const QString &name = {}) const;
    /// A copy of a clip in the working folder.
    QString clip(const QString &clip, const QString &name) const;
    QStringList mediaNames() const;
    /// What lies in the folder for temporary files.
    QStringList temporaryNames() const;
    QString program() const { return m_program; }
    QString resources() const;
    void setEnvironment(const QString &name, const QString &value) { m_environment.insert(name, value); }
    const QProcessEnvironment &environment() const { return m_environment; }
    /// Every process that came from this program and runs, the program itself included.
    QList<qint64> processes() const;
    /// The command lines of those processes, words joined by blanks.
    QStringList commandLines() const;
    /// After the program's end: no tool runs now, and its keeper, who sees that end a moment later, goes too.
    bool nothingRuns() const;

private:
    QByteArray mark() const;

    Scratch m_scratch;
    QString m_program;
    QProcessEnvironment m_environment;
    bool m_unprivileged = false;
};

/// The streams of a file as ffprobe has them, every value as ffprobe prints it.
QList<QJsonObject> streamsOf(const QString &path);
/// "h264 aac mov_text": the codecs of a file in stream order.
QString codecsOf(const QString &path);
/// "h264 320", "aac 2 eng", "mov_text deu": codec, width or channels, language of each stream. A language
/// that was not written is "und".
QStringList shownStreams(const QString &path);
/// Seconds of a file by its container; negative when it can't be told.
double secondsOf(const QString &path);

} // namespace support
