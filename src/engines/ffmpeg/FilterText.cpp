#include "engines/ffmpeg/FilterText.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace engines {

namespace {

QString escaped(const QString &text, const QString &special)
{
    QString result;
    for (const QChar c : text) {
        if (special.contains(c))
            result += u'\\';
        result += c;
    }
    return result;
}

} // namespace

FilterText &FilterText::operator<<(tools::Literal text)
{
    m_text += text.text();
    return *this;
}

FilterText &FilterText::operator<<(qint64 number)
{
    m_text += QString::number(number);
    return *this;
}

FilterText &FilterText::operator<<(const FilterText &other)
{
    m_text += other.m_text;
    return *this;
}

/// A filter's options are read first, then the graph around them, each with its own special characters.
FilterText &FilterText::addPath(const QString &path)
{
    m_text += filterCanTake(path) ? path : escaped(escaped(path, u"\\':"_s), u"\\'[],;"_s);
    return *this;
}

tools::OptionItem FilterText::item(tools::Quoting quoting) const
{
    return tools::OptionItem::ofData(m_text, quoting);
}

bool filterCanTake(const QString &path)
{
    return std::none_of(path.begin(), path.end(), [](QChar c) { return u"':,;\\=[]"_s.contains(c); });
}

} // namespace engines
