#pragma once

#include "tools/Literal.h"

#include <QList>
#include <QMetaType>
#include <QString>
#include <QUrl>

#include <functional>

namespace tools {

/// How a list shows a text that came from a file.
enum class Quoting {
    None,   ///< as it stands
    Double, ///< in its double-quoted form
    Single  ///< in its single-quoted form
};

/// One item of an options list: a file location, or a string. A string is raw text around one span of
/// data. What a shell may read as syntax is raw: literals of ours and numbers, by the types of what makes
/// it. Names, titles and whatever else came from a file are data, which the step that makes a shell line
/// turns into one word, without ever parsing quotes.
class OptionItem
{
public:
    OptionItem(const QUrl &file); // NOLINT(google-explicit-constructor)
    /// Raw text: a string literal, and nothing else.
    template <std::size_t N>
    OptionItem(const char16_t (&literal)[N]) // NOLINT(google-explicit-constructor)
        : m_before(QString::fromUtf16(literal, N - 1))
    {
    }
    template <std::size_t N>
    OptionItem(char16_t (&buffer)[N]) = delete;
    OptionItem(const QString &text) = delete; ///< say what it is: ofData() or a literal
    explicit OptionItem(Literal text)
        : m_before(text.text())
    {
    }

    /// A string that is nothing but data.
    static OptionItem ofData(const QString &data, Quoting quoting = Quoting::None);
    static OptionItem ofNumber(qint64 number);

    /// The same item with more raw text at its end.
    OptionItem with(Literal text) const { return withRaw(text.text()); }
    OptionItem with(qint64 number) const { return withRaw(QString::number(number)); }
    /// The same item with its one span of data behind the raw text.
    OptionItem withData(const QString &data, Quoting quoting = Quoting::None) const;
    /// The same with a title or another free text of a file as its data: it may be cut where it is too
    /// long for a command line, which a name never is.
    OptionItem withTitle(const QString &title, Quoting quoting = Quoting::None) const;
    /// The same item with a text of ours at the end of its data.
    OptionItem withMoreData(Literal text) const;
    /// The same item with a text of ours in place of another one, in its data too.
    OptionItem withReplaced(Literal from, Literal to) const;

    bool isFile() const { return m_isFile; }
    QUrl url() const { return m_file; }
    bool hasData() const { return m_hasData; }
    QString data() const { return m_data; }

    /// The item as the rules write it: a path, or the string with its data in the chosen quoting.
    QString text() const;
    /// The item as one argument of a process: a path, or the string with its data unquoted.
    QString argument() const;
    /// The item on the shell line that is shown: a double-quoted path, or text().
    QString shown() const;
    /// The item on the shell line that runs: the same, with data the shell can't read as syntax.
    QString safe() const;
    /// The same item for a file that lies elsewhere: a location, or data that is its path.
    OptionItem withFileAt(const std::function<QUrl(const QUrl &)> &placeOf) const;
    /// The same item with a path within its data replaced.
    OptionItem withPathReplaced(const QString &from, const QString &to) const;
    /// The same item with its title cut to so many bytes of UTF-8, at a whole character.
    OptionItem withTitleCutTo(qsizetype bytes) const;
    /// A string cut at the blanks of its raw text; its data never parts. A file location stays whole.
    QList<OptionItem> words() const;

    bool operator==(const OptionItem &other) const;

private:
    OptionItem() = default;
    OptionItem withRaw(const QString &text) const;

    QString m_before;
    QString m_data;
    QString m_after;
    QUrl m_file;
    Quoting m_quoting = Quoting::None;
    bool m_hasData = false;
    bool m_isTitle = false;
    bool m_isFile = false;
};

using OptionList = QList<OptionItem>;

/// Each item as one process argument.
QStringList argumentsOf(const OptionList &options);
/// Each item's text().
QStringList textsOf(const OptionList &options);

/// The list with its titles cut, where they would make it longer than a system lets a command line be.
OptionList withTitlesThatFit(const OptionList &options);

/// The text in double quotes, with each double quote and "$" escaped; backslashes and back-quotes are
/// left as they are. An absent text counts as the empty text.
QString doubleQuoted(const QString &text);
/// The text between apostrophes, each apostrophe with a backslash before it. No shell honours that
/// escape; the form is kept on purpose, and what runs is made by safelySingleQuoted().
QString singleQuoted(const QString &text);
/// One word for the shell: doubleQuoted(), or, where that could be read as syntax, with every
/// backslash, back-quote, double quote and "$" escaped.
QString safelyDoubleQuoted(const QString &text);
/// One word for the shell, between apostrophes.
QString safelySingleQuoted(const QString &text);
/// The word as a person can paste it into a shell: bare when it is harmless, else single-quoted.
QString pastable(const QString &word);

} // namespace tools
