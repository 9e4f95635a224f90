#pragma once

#include "window/HandOverMessage.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QSocketNotifier>
#include <QStringList>
#include <QTimer>

#include <memory>

namespace window {

/// Lets a second start hand its files to the program that runs already. Owned by the window program. A plain
/// socket in the user's own run-time folder: a network library for it would cost every start memory and time.
class SingleInstance final : public QObject
{
    Q_OBJECT

public:
    /// Programs with the same key, of the same user, are one.
    explicit SingleInstance(const QString &key);
    ~SingleInstance() override;

    /// True when another one runs and has taken the files. Waits for it two seconds at each step: it
    /// may hang.
    bool handOver(const QStringList &paths) const;
    /// From now on this is the one that takes files; false when it can't be.
    bool listen();

Q_SIGNALS:
    void filesHandedOver(const QStringList &paths);

private:
    /// A start that is handing its files over.
    struct Caller
    {
        std::unique_ptr<QSocketNotifier> notifier;
        HandOverMessage message;
        QElapsedTimer sinceWord; ///< since it said something
        QTimer timeLeft;
    };

    void take();
    void read(int caller);
    int quietest() const;
    void dismiss(int caller);

    QByteArray m_path;
    int m_socket = -1;
    quint64 m_inode = 0; ///< of the path: another one may have taken it over since
    std::unique_ptr<QSocketNotifier> m_notifier;
    QHash<int, std::shared_ptr<Caller>> m_callers;
};

} // namespace window
