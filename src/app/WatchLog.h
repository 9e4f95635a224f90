#pragma once

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>

namespace app {

/// What watch mode found, waited for, did and could not do, with times. Owned by the watch session; the
/// oldest lines go when it has grown long.
class WatchLog final : public QObject
{
    Q_OBJECT

public:
    enum class Kind { Note, Waiting, Started, Done, Failed };

    struct Line
    {
        QDateTime time;
        Kind kind = Kind::Note;
        QString text;
    };

    const QList<Line> &lines() const { return m_lines; }
    void add(Kind kind, const QString &text);
    /// Lines are only announced from now on.
    void keepNoLines() { m_keepsLines = false; }
    /// "2026-11-21 13:05:09  done     film.mkv". Names in it are as they are: the code that shows a line
    /// makes them visible.
    static QString formatted(const Line &line);
    /// "note", "waiting", "started", "done" or "failed".
    static QString wordOf(Kind kind);

    static constexpr int mostLines = 10000;

Q_SIGNALS:
    void added(const app::WatchLog::Line &line);
    /// So many of the first lines are gone.
    void shortened(int count);

private:
    QList<Line> m_lines;
    bool m_keepsLines = true;
};

} // namespace app
