#pragma once

#include <QElapsedTimer>
#include <QJsonObject>
#include <QString>

namespace cli {

/// The three streams of the program: results go to standard output, progress and complaints to
/// standard error. Owned by the session.
class Console final
{
public:
    void setJson(bool on) { m_json = on; }
    void setQuiet(bool on) { m_quiet = on; }
    bool isJson() const { return m_json; }

    /// A text that was asked for, such as help.
    void print(const QString &text);
    /// A result line, with --json left out: there, standard output holds objects only.
    void result(const QString &line);
    void object(const QJsonObject &object);
    /// A sentence on standard error; a live progress line makes way for it.
    void say(const QString &sentence);
    /// How far a step is. On a terminal one line that changes, else a line now and then.
    void progress(const QString &text);
    /// Ends the live line, if one is shown, and says what was held back.
    void endProgress();

private:
    void showLive(const QString &text);

    bool m_json = false;
    bool m_quiet = false;
    bool m_liveLineShown = false;
    QString m_lastProgress;
    QString m_heldBack; ///< what was not due yet; the last of it is said at the end
    QElapsedTimer m_sinceLine;
};

/// Names and titles may hold anything, and a terminal must not obey them: control characters but line
/// feed and tab become "?".
QString printable(QString text);
/// The same in one line, so that no name passes for a line of the program's.
QString inOneLine(const QString &text);

} // namespace cli
