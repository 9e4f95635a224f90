#pragma once

#include "cli/PendingOutput.h"

#include <QElapsedTimer>
#include <QJsonObject>
#include <QString>

namespace cli {

/// The streams of the program: results go to standard output, progress and complaints to standard error. It
/// prints nothing that a terminal would obey: names and titles are made visible here, and nowhere else. It
/// never waits for a reader before flush(). Owned by the session.
class Console final
{
public:
    Console();

    /// What to do when the reader of the results has gone away.
    void setWhenUnread(const std::function<void()> &action) { m_whenUnread = action; }
    void setJson(bool on) { m_json = on; }
    void setQuiet(bool on) { m_quiet = on; }
    /// "outputs" or "outputs0": results are nothing but file()s. Null: everything is.
    void setPrint(const QString &what);
    bool printsFilesOnly() const { return m_filesOnly; }
    bool isJson() const { return m_json; }

    /// A text of our own that was asked for, such as help. It may have several lines.
    void print(const QString &text);
    /// A result in one line, with --json left out: there, standard output holds objects only.
    void result(const QString &line);
    /// A result line that is a command for a shell, which stays one.
    void command(const QString &line);
    /// A result that is one JSON object over many lines.
    void document(const QJsonObject &object);
    /// The path of a finished file, where nothing else is asked for. To the byte, unless a terminal would see
    /// it.
    void file(const QString &path);
    /// What another program printed, to the letter. Its results don't get among objects and files.
    void pass(const QByteArray &bytes, bool areResults);
    /// One object in one line, with --json only. One that may get lost is left out while the reader is
    /// behind.
    void object(const QJsonObject &object,
                PendingOutput::WhenBehind whenBehind = PendingOutput::WhenBehind::Keep);
    /// A sentence on standard error; a live progress line makes way for it.
    void say(const QString &sentence);
    /// A text of our own with several lines, on standard error.
    void explain(const QString &text);
    /// How far a step is, in a line that begins with the subject. On a terminal one line that changes, in
    /// which a long subject makes room for the rest; else a line now and then.
    void progress(const QString &text, const QString &subject);
    /// Ends the live line, if one is shown, and says what was held back.
    void endProgress();
    /// Waits until the readers have taken everything, as long as the condition holds.
    void flush(const std::function<bool()> &goesOn);
    /// Whether results were lost because standard output took no more. A reader that went away lost nothing
    /// that it wanted.
    bool lostOutput() const { return m_lostOutput; }

private:
    void lost(int error);
    void showLive(const QString &text, const QString &subject);

    PendingOutput m_results;
    PendingOutput m_complaints;
    std::function<void()> m_whenUnread;
    bool m_json = false;
    bool m_quiet = false;
    bool m_filesOnly = false;
    char m_fileEnd = '\n';
    bool m_liveLineShown = false;
    bool m_lostOutput = false;
    QString m_lastProgress;
    QString m_heldBack; ///< what was not due yet; the last of it is said at the end
    QElapsedTimer m_sinceLine;
};

} // namespace cli
