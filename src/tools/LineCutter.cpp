#include "tools/LineCutter.h"

#include <QStringDecoder>

namespace tools {

namespace {
constexpr qsizetype longestRest = 64 * 1024;
}

QStringList LineCutter::feed(const QByteArray &chunk)
{
    QStringList lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i < chunk.size(); ++i) {
        if (chunk.at(i) != '\r' && chunk.at(i) != '\n')
            continue;
        m_rest.append(chunk.constData() + start, i - start);
        const QString line = QString::fromUtf8(m_rest);
        if (!line.isEmpty())
            lines.append(line);
        m_rest.clear();
        start = i + 1;
    }
    m_rest.append(chunk.constData() + start, chunk.size() - start);
    if (m_rest.size() > longestRest)
        m_rest = m_rest.right(longestRest);
    return lines;
}

QString LineCutter::rest() const
{
    QStringDecoder decoder(QStringDecoder::Utf8); // keeps an incomplete letter to itself
    return decoder.decode(m_rest);
}

} // namespace tools
