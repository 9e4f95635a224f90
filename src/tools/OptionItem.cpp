#include "tools/OptionItem.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace tools {

namespace {

/// True where "..." with only double quotes and "$" escaped would not give the text back.
bool needsFullEscape(const QString &text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text.at(i) == u'`')
            return true;
        if (text.at(i) != u'\\')
            continue;
        if (i + 1 == text.size() || u"\\\"$`\n"_s.contains(text.at(i + 1)))
            return true;
    }
    return false;
}

bool isHarmless(QChar c)
{
    return (c.unicode() < 128 && c.isLetterOrNumber()) || u"-_./:,+@%"_s.contains(c);
}

} // namespace

OptionItem::OptionItem(const QUrl &file)
    : m_file(file)
    , m_isFile(true)
{
}

OptionItem OptionItem::withData(const QString &before, const QString &data, Quoting quoting,
                                const QString &after)
{
    OptionItem item(before);
    item.m_data = data;
    item.m_after = after;
    item.m_quoting = quoting;
    item.m_hasData = true;
    return item;
}

OptionItem OptionItem::withBefore(const QString &before) const
{
    OptionItem item(*this);
    item.m_before = before;
    return item;
}

QString OptionItem::text() const
{
    if (m_isFile)
        return m_file.toLocalFile();
    switch (m_quoting) {
    case Quoting::Double:
        return m_before + doubleQuoted(m_data) + m_after;
    case Quoting::Single:
        return m_before + singleQuoted(m_data) + m_after;
    case Quoting::None:
        break;
    }
    return m_before + m_data + m_after;
}

QString OptionItem::argument() const
{
    return m_isFile ? m_file.toLocalFile() : m_before + m_data + m_after;
}

QString OptionItem::shown() const
{
    return m_isFile ? doubleQuoted(m_file.toLocalFile()) : text();
}

QString OptionItem::safe() const
{
    if (m_isFile)
        return safelyDoubleQuoted(m_file.toLocalFile());
    if (!m_hasData)
        return m_before;
    const QString word =
        m_quoting == Quoting::Double ? safelyDoubleQuoted(m_data) : safelySingleQuoted(m_data);
    return m_before + word + m_after;
}

bool OptionItem::operator==(const OptionItem &other) const
{
    return m_isFile == other.m_isFile && text() == other.text();
}

QStringList argumentsOf(const OptionList &options)
{
    QStringList arguments;
    for (const OptionItem &item : options)
        arguments.append(item.argument());
    return arguments;
}

QStringList textsOf(const OptionList &options)
{
    QStringList texts;
    for (const OptionItem &item : options)
        texts.append(item.text());
    return texts;
}

QString doubleQuoted(const QString &text)
{
    QString escaped = text;
    escaped.replace(u"\""_s, u"\\\""_s).replace(u"$"_s, u"\\$"_s);
    return u'"' + escaped + u'"';
}

QString singleQuoted(const QString &text)
{
    QString escaped = text;
    escaped.replace(u"'"_s, u"\\'"_s);
    return u'\'' + escaped + u'\'';
}

QString safelyDoubleQuoted(const QString &text)
{
    if (!needsFullEscape(text))
        return doubleQuoted(text);
    QString escaped;
    for (const QChar c : text) {
        if (u"\\`\"$"_s.contains(c))
            escaped += u'\\';
        escaped += c;
    }
    return u'"' + escaped + u'"';
}

QString safelySingleQuoted(const QString &text)
{
    QString escaped = text;
    escaped.replace(u"'"_s, u"'\\''"_s);
    return u'\'' + escaped + u'\'';
}

QString pastable(const QString &word)
{
    const bool bare = !word.isEmpty() && std::all_of(word.begin(), word.end(), isHarmless);
    return bare ? word : safelySingleQuoted(word);
}

} // namespace tools
