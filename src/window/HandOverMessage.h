#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QStringList>

namespace window {

/// What a start that hands its files over says: their number, then each with its length in front.
QByteArray handOverMessage(const QStringList &paths);

/// Reads such a message from the pieces in which it comes, each byte once, and trusts none of it: one that is
/// longer than a real one can be is refused before it takes up room.
class HandOverMessage final
{
public:
    /// More than a command line holds; a longer path leads nowhere.
    static constexpr quint32 mostPaths = 100000;
    static constexpr quint32 longestPath = 4096;
    static constexpr qsizetype mostBytes = 16 * 1024 * 1024;

    void take(QByteArrayView piece);
    bool isRefused() const { return m_isRefused; }
    bool isComplete() const { return m_hasCount && !m_isRefused && m_left == 0; }
    QStringList paths() const { return m_paths; }

private:
    bool takeNumber(quint32 &number);
    bool takeCount();
    bool takePath();

    QByteArray m_received; ///< what has come and was not read yet
    qsizetype m_position = 0;
    qsizetype m_total = 0;
    quint32 m_left = 0; ///< paths that are still to come
    bool m_hasCount = false;
    bool m_isRefused = false;
    QStringList m_paths;
};

} // namespace window
