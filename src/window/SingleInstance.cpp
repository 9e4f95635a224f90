#include "window/SingleInstance.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QLocalSocket>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int patience = 2000; // milliseconds

} // namespace

SingleInstance::SingleInstance(const QString &key)
{
    const QByteArray hash =
        QCryptographicHash::hash(key.toUtf8(), QCryptographicHash::Sha256).toHex().left(16);
    m_name = u"tessaray-%1-%2"_s.arg(::getuid()).arg(QString::fromLatin1(hash));
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::take);
}

bool SingleInstance::handOver(const QStringList &paths) const
{
    QLocalSocket socket;
    socket.connectToServer(m_name);
    if (!socket.waitForConnected(patience))
        return false;
    QDataStream stream(&socket);
    stream << paths;
    const bool sent = socket.waitForBytesWritten(patience);
    // The other one answers with a byte when it has read them.
    return sent && (socket.bytesAvailable() > 0 || socket.waitForReadyRead(patience));
}

void SingleInstance::listen()
{
    if (m_server.listen(m_name))
        return;
    QLocalServer::removeServer(m_name); // left by one that crashed: nobody answered there
    m_server.listen(m_name);
}

void SingleInstance::take()
{
    while (QLocalSocket *socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        const auto read = [this, socket] {
            QDataStream stream(socket);
            stream.startTransaction();
            QStringList paths;
            stream >> paths;
            if (!stream.commitTransaction())
                return;
            socket->write("1");
            Q_EMIT filesHandedOver(paths);
        };
        connect(socket, &QLocalSocket::readyRead, this, read);
        if (socket->bytesAvailable() > 0)
            read();
    }
}

} // namespace window
