#pragma once

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QUrl>

#include <optional>

namespace prefs {

/// What is known of the films of a watched folder, in a file on disk, so that it outlives the program: a
/// film is known by its path in the folder, size and time, or by its inode, size and time. Never by a device
/// number, which changes with every start and mount. Lines are appended, by whoever publishes into the
/// folder too, also from another machine; those that can't be read are passed over. Owned by the watch-mode
/// controller; main thread only, except noteOutputs().
class WatchJournal final
{
public:
    enum class Why {
        Known,   ///< was there before, or was done with
        Output,  ///< our own work
        Waiting, ///< is still to be converted
        Refused, ///< could not be opened as it is
    };

    struct Film
    {
        QString path;       ///< absolute
        qint64 size = -1;   ///< bytes
        qint64 changed = 0; ///< milliseconds since 1970
        quint64 inode = 0;  ///< 0 where there is none to go by

        bool isSameContent(const Film &other) const { return size == other.size && changed == other.changed; }
    };

    /// Reads what is there. For a path without links. Where the folder can't be written the journal lies in
    /// the other one; an empty path there keeps it in memory alone.
    void open(const QString &folder, const QString &otherFolder);
    /// Reads what is there, in the folder or else in the other one, and never writes.
    void read(const QString &folder, const QString &otherFolder);
    QList<Film> films(Why why) const;
    /// The file; a null text where it is in memory alone.
    QString place() const { return m_place; }
    bool isInFolder() const;

    /// What the journal says of it; nothing where it does not know it.
    std::optional<Why> find(const Film &film) const;
    /// Whether a film of that path or inode was still to be converted, or could not be opened, whatever its
    /// size: it may have grown since.
    bool waits(const Film &film) const;
    void note(Why why, const QList<Film> &films);
    /// Takes in what others have added, and writes what could not be written before.
    void refresh();
    /// Writes the file anew: films that are not there any more go 30 days after they were seen the last
    /// time. Nothing changes where somebody else writes just now.
    void tidy(const QSet<QString> &present);

    /// Files that are about to get these names are outputs of ours: written into the journal of the folder
    /// around each that has one. From any thread.
    struct Output
    {
        QUrl file; ///< where it lies now
        QUrl name;
    };
    static void noteOutputs(const QList<Output> &outputs);

    /// Once a film is done with outside of any watch: where the journal around it says that it waits, it is
    /// known from now on.
    static void noteDone(const QUrl &film);

    static QString fileName() { return QStringLiteral(".tessaray-watch"); }
    static constexpr int daysKept = 30;

private:
    struct Line
    {
        Why why = Why::Known;
        Film film;
        qint64 day = 0; ///< days since 1970 when it was seen the last time
    };
    void openElsewhere(const QString &inside, const QString &otherFolder);
    void take(const Line &line);
    void takeLines(const QByteArray &bytes);
    QByteArray written(const Line &line) const;
    std::optional<Line> lineIn(const QByteArray &text) const;

    QString m_folder;
    QString m_place;
    qint64 m_bytesRead = 0;
    quint64 m_inodeRead = 0;
    QByteArray m_unwritten;
    QHash<QString, Line> m_byPath;
    QHash<quint64, Line> m_byInode;
};

} // namespace prefs
