#pragma once

#include "prefs/WatchListing.h"

#include <QHash>
#include <QSet>
#include <QUrl>
#include <QVariantList>

namespace prefs {

/// What is known of the files of a watched folder: which are never to be processed, which are still
/// growing, and which outputs are our own. Pure bookkeeping: it never looks at a file itself.
class WatchedFiles final
{
public:
    // Present at the start, handed over, or written by ourselves.
    const QStringList &base() const { return m_base; }
    void setBase(const QStringList &paths);
    void appendToBase(const QString &path);
    bool isInBase(const QString &path) const { return m_base.contains(path); }

    /// An output that was announced, at any time: never a new movie.
    void announce(const QString &path);
    bool isAnnounced(const QString &path) const;

    /// Files that are watched for growth, with the size of the last look as text, in their order.
    struct Growing
    {
        QString path;
        QString oldSize;
        qint64 oldTime = 0;   ///< of its last change, at that look
        qint64 changedAt = 0; ///< when the size was seen to change the last time, by the clock of the looks
        bool isTold = false;  ///< that it stopped and is not whole
    };
    QList<Growing> &growing() { return m_growing; }
    const QList<Growing> &growing() const { return m_growing; }
    QSet<QString> growingPaths() const;

    /// A file that was handed over and could not be opened. Answers how often that has happened to this very
    /// file: another one of its name begins anew.
    int refused(const QString &path, const WatchListing::State &state);
    bool wasRefused(const QString &path) const { return m_refusals.contains(path); }
    /// Whether it was refused so often that no change of it counts any more.
    bool isGivenUp(const QString &path, const WatchListing::State &state) const;

    static constexpr int mostAttempts = 5;

private:
    struct Refusal
    {
        int count = 0;
        quint64 inode = 0;
    };

    QStringList m_base;
    QSet<QString> m_announced;
    QList<Growing> m_growing;
    QHash<QString, Refusal> m_refusals;
};

} // namespace prefs
