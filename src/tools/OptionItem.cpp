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

QString cutTo(qsizetype bytes, const QString &text)
{
    const QByteArray whole = text.toUtf8();
    if (whole.size() <= bytes)
        return text;
    qsizetype end = bytes;
    while (end > 0 && (static_cast<unsigned char>(whole.at(end)) & 0xC0) == 0x80) // within a character
        --end;
    return QString::fromUtf8(whole.first(end));
}

qsizetype bytesOf(const OptionList &options)
{
    qsizetype bytes = 0;
    for (const OptionItem &item : options)
        bytes += item.safe().toUtf8().size() + 1;
    return bytes;
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

OptionItem OptionItem::ofData(const QString &data, Quoting quoting)
{
    return OptionItem().withData(data, quoting);
}

OptionItem OptionItem::ofNumber(qint64 number)
{
    return OptionItem().with(number);
}

OptionItem OptionItem::withRaw(const QString &text) const
{
    OptionItem item(*this);
    (m_hasData ? item.m_after : item.m_before) += text;
    return item;
}

OptionItem OptionItem::withData(const QString &data, Quoting quoting) const
{
    OptionItem item(*this);
    item.m_data = data;
    item.m_quoting = quoting;
    item.m_hasData = true;
    return item;
}

OptionItem OptionItem::withTitle(const QString &title, Quoting quoting) const
{
    OptionItem item = withData(title, quoting);
    item.m_isTitle = true;
    return item;
}

OptionItem OptionItem::withTitleCutTo(qsizetype bytes) const
{
    OptionItem item(*this);
    if (m_isTitle)
        item.m_data = cutTo(bytes, m_data);
    return item;
}

OptionItem OptionItem::withMoreData(Literal text) const
{
    OptionItem item(*this);
    item.m_data += text.text();
    item.m_hasData = true;
    return item;
}

OptionItem OptionItem::withReplaced(Literal from, Literal to) const
{
    OptionItem item(*this);
    for (QString *part : {&item.m_before, &item.m_data, &item.m_after})
        part->replace(from.text(), to.text());
    return item;
}

OptionItem OptionItem::withFileAt(const std::function<QUrl(const QUrl &)> &placeOf) const
{
    OptionItem item(*this);
    if (m_isFile)
        item.m_file = placeOf(m_file);
    else if (m_hasData && !m_isTitle && m_data.startsWith(u'/'))
        item.m_data = placeOf(QUrl::fromLocalFile(m_data)).toLocalFile();
    return item;
}

OptionItem OptionItem::withPathReplaced(const QString &from, const QString &to) const
{
    OptionItem item(*this);
    item.m_data.replace(from, to);
    return item;
}

/// The word at the data's place holds it, and what stands in front of and behind it without a blank.
QList<OptionItem> OptionItem::words() const
{
    if (m_isFile)
        return {*this};
    QList<OptionItem> words;
    QStringList before = m_before.split(u' ');
    QStringList after = m_after.split(u' ');
    const auto addRaw = [&words](const QStringList &texts) {
        for (const QString &text : texts) {
            if (!text.isEmpty())
                words.append(OptionItem().withRaw(text));
        }
    };
    if (!m_hasData) {
        addRaw(before);
        return words;
    }
    OptionItem middle(*this);
    middle.m_before = before.takeLast();
    middle.m_after = after.takeFirst();
    addRaw(before);
    if (!middle.text().isEmpty())
        words.append(middle);
    addRaw(after);
    return words;
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

OptionList withTitlesThatFit(const OptionList &options)
{
    // A shell line is one argument, and Linux lets one be 128 KiB long. The rest is for what stands in front.
    constexpr qsizetype mostOfAll = 100'000;
    OptionList fitting = options;
    for (const qsizetype most : {4096, 1024, 256, 64}) {
        for (OptionItem &item : fitting)
            item = item.withTitleCutTo(most);
        if (bytesOf(fitting) <= mostOfAll)
            break;
    }
    return fitting;
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
