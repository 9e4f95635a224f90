#include "tools/LineCutter.h"

namespace tools
{

namespace
{
constexpr qsizetype longestRest = 64 * 1024;
}

QStringList LineCutter::feed(const QByteArray &chunk)
{
    const QString text = m_decoder.decode(chunk);
    QStringList lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i) != u'\r' && text.at(i) != u'\n')
            continue;
        m_rest += QStringView(text).mid(start, i - start);
        if (!m_rest.isEmpty())
            lines.append(m_rest);
        m_rest.clear();
        start = i + 1;
    }
    m_rest += QStringView(text).mid(start);
    if (m_rest.size() > longestRest)
        m_rest = m_rest.right(longestRest);
    return lines;
}

void LineCutter::clear()
{
    m_decoder.resetState();
    m_rest.clear();
}

} // namespace tools
