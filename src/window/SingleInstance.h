#pragma once

#include <QLocalServer>
#include <QStringList>

namespace window {

/// Lets a second start hand its files to the program that runs already. Owned by the window program.
class SingleInstance final : public QObject
{
    Q_OBJECT

public:
    /// Programs with the same key, of the same user, are one.
    explicit SingleInstance(const QString &key);

    /// True when another one runs and has taken the files.
    bool handOver(const QStringList &paths) const;
    /// From now on this is the one that takes files.
    void listen();

Q_SIGNALS:
    void filesHandedOver(const QStringList &paths);

private:
    void take();

    QString m_name;
    QLocalServer m_server;
};

} // namespace window
