#include "window/HandOverMessage.h"

#include <QDataStream>
#include <QIODevice>
#include <QtEndian>

namespace window {

namespace {

constexpr qsizetype numberBytes = sizeof(quint32);
constexpr quint32 letterBytes = sizeof(char16_t);
constexpr quint32 absent = 0xffffffff; // the length of no text at all

} // namespace

QByteArray handOverMessage(const QStringList &paths)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << paths;
    return bytes;
}

void HandOverMessage::take(QByteArrayView piece)
{
    m_total += piece.size();
    m_isRefused = m_isRefused || m_total > mostBytes;
    if (m_isRefused)
        return;
    m_received.append(piece);
    if (!m_hasCount && !takeCount())
        return;
    while (m_left > 0 && takePath())
        --m_left;
    m_received.remove(0, m_position); // at most one path stays
    m_position = 0;
}

/// False when it has not come yet.
bool HandOverMessage::takeNumber(quint32 &number)
{
    if (m_received.size() - m_position < numberBytes)
        return false;
    number = qFromBigEndian<quint32>(m_received.constData() + m_position);
    m_position += numberBytes;
    return true;
}

bool HandOverMessage::takeCount()
{
    m_hasCount = takeNumber(m_left);
    m_isRefused = m_hasCount && m_left > mostPaths;
    return m_hasCount && !m_isRefused;
}

/// False when it has not come as a whole, or is refused.
bool HandOverMessage::takePath()
{
    const qsizetype before = m_position;
    quint32 length = 0;
    if (!takeNumber(length))
        return false;
    if (length == absent)
        length = 0;
    if (length > longestPath * letterBytes || length % letterBytes != 0) {
        m_isRefused = true;
        return false;
    }
    if (m_received.size() - m_position < static_cast<qsizetype>(length)) {
        m_position = before;
        return false;
    }
    QString path(static_cast<qsizetype>(length / letterBytes), Qt::Uninitialized);
    qFromBigEndian<char16_t>(m_received.constData() + m_position, path.size(), path.data());
    m_paths.append(path);
    m_position += length;
    return true;
}

} // namespace window
