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
    bool isInBase(const QString &path) const { return m_baseSet.contains(path); }

    /// An output that was announced, at any time: never a new movie.
    void announce(const QString &path);
    bool isAnnounced(const QString &path) const;

    /// Files that are watched for growth, with the size of the last look as text, in their order.
    struct Growing
    {
        QString path;
        QString oldSize;
    };
    QList<Growing> &growing() { return m_growing; }
    const QList<Growing> &growing() const { return m_growing; }
    QSet<QString> growingPaths() const;

    /// A file that was handed over and could not be opened. Answers how often that has happened.
    int refused(const QString &path, const WatchListing::State &state);
    /// The refused files that changed since, by a fresh look; they may be watched again.
    QStringList changedSinceRefused(const WatchListing &listing) const;
    void watchAgain(const QString &path);

    static constexpr int mostAttempts = 5;

private:
    struct Refusal
    {
        int count = 0;
        WatchListing::State state;
        bool waits = false;
    };

    QStringList m_base;
    QSet<QString> m_baseSet;
    QSet<QString> m_announced;
    QList<Growing> m_growing;
    QHash<QString, Refusal> m_refusals;
};

} // namespace prefs
