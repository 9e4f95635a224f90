#include "app/WatchLog.h"

using namespace Qt::StringLiterals;

namespace app {

QString WatchLog::wordOf(Kind kind)
{
    switch (kind) {
    case Kind::Note:
        return u"note"_s;
    case Kind::Waiting:
        return u"waiting"_s;
    case Kind::Started:
        return u"started"_s;
    case Kind::Done:
        return u"done"_s;
    case Kind::Failed:
        return u"failed"_s;
    }
    return {};
}

void WatchLog::add(Kind kind, const QString &text)
{
    const Line line{QDateTime::currentDateTime(), kind, text};
    if (m_keepsLines)
        m_lines.append(line);
    if (m_lines.size() > mostLines) {
        const int surplus = mostLines / 10;
        m_lines.remove(0, surplus);
        Q_EMIT shortened(surplus);
    }
    Q_EMIT added(line);
}

QString WatchLog::formatted(const Line &line)
{
    constexpr int widest = 8;
    return u"%1  %2 %3"_s.arg(line.time.toString(u"yyyy-MM-dd HH:mm:ss"_s),
                              wordOf(line.kind).leftJustified(widest), line.text);
}

} // namespace app
