#include "platform/VisibleText.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

bool isBetween(QChar c, char16_t first, char16_t last)
{
    return c.unicode() >= first && c.unicode() <= last;
}

QString hex(QChar c, int digits)
{
    return QString::number(c.unicode(), 16).rightJustified(digits, u'0');
}

QString spelled(QChar c)
{
    switch (c.unicode()) {
    case u'\n':
        return u"\\n"_s;
    case u'\t':
        return u"\\t"_s;
    case u'\r':
        return u"\\r"_s;
    default:
        return c.unicode() < 0x100 ? u"\\x"_s + hex(c, 2) : u"\\u"_s + hex(c, 4);
    }
}

/// Whether a backslash in front of it would look like the start of a spelling.
bool couldFollowBackslash(QChar c)
{
    return u"\\ntrxu"_s.contains(c) || steersTerminals(c);
}

} // namespace

bool steersTerminals(QChar c)
{
    return isBetween(c, 0x00, 0x1f) || isBetween(c, 0x7f, 0x9f) || c == QChar(0x061c) ||
           isBetween(c, 0x200e, 0x200f) || isBetween(c, 0x2028, 0x202e) || isBetween(c, 0x2066, 0x2069);
}

bool steersTerminals(const QString &text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return steersTerminals(c); });
}

QString visible(const QString &text)
{
    QString shown;
    shown.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (steersTerminals(c))
            shown += spelled(c);
        else if (c == u'\\' && i + 1 < text.size() && couldFollowBackslash(text.at(i + 1)))
            shown += u"\\\\"_s;
        else
            shown += c;
    }
    return shown;
}

QString visibleInLines(const QString &text)
{
    QStringList lines = text.split(u'\n');
    for (QString &line : lines)
        line = visible(line);
    return lines.join(u'\n');
}

QByteArray visibleJson(const QByteArray &json)
{
    QString shown;
    shown.reserve(json.size());
    for (const QChar c : QString::fromUtf8(json)) {
        if (c != u'\n' && steersTerminals(c)) // a line feed stands between values only
            shown += u"\\u"_s + hex(c, 4);
        else
            shown += c;
    }
    return shown.toUtf8();
}

} // namespace platform
