#pragma once

#include <QElapsedTimer>
#include <QJsonObject>
#include <QString>

namespace cli {

/// The streams of the program: results go to standard output, progress and complaints to standard error. It
/// prints nothing that a terminal would obey: names and titles are made visible here, and nowhere else. Owned
/// by the session.
class Console final
{
public:
    void setJson(bool on) { m_json = on; }
    void setQuiet(bool on) { m_quiet = on; }
    bool isJson() const { return m_json; }

    /// A text of our own that was asked for, such as help. It may have several lines.
    void print(const QString &text);
    /// A result in one line, with --json left out: there, standard output holds objects only.
    void result(const QString &line);
    /// A result line that is a command for a shell, which stays one.
    void command(const QString &line);
    /// A result that is one JSON object over many lines.
    void document(const QJsonObject &object);
    /// One object in one line, with --json only.
    void object(const QJsonObject &object);
    /// A sentence on standard error; a live progress line makes way for it.
    void say(const QString &sentence);
    /// A text of our own with several lines, on standard error.
    void explain(const QString &text);
    /// How far a step is. On a terminal one line that changes, else a line now and then.
    void progress(const QString &text);
    /// Ends the live line, if one is shown, and says what was held back.
    void endProgress();
    /// Whether results were lost because standard output took no more. A reader that went away lost nothing
    /// that it wanted.
    bool lostOutput() const { return m_lostOutput; }

private:
    void write(const QByteArray &results);
    void showLive(const QString &text);

    bool m_json = false;
    bool m_quiet = false;
    bool m_liveLineShown = false;
    bool m_lostOutput = false;
    QString m_lastProgress;
    QString m_heldBack; ///< what was not due yet; the last of it is said at the end
    QElapsedTimer m_sinceLine;
};

} // namespace cli
