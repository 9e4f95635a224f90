#pragma once

#include <QList>
#include <QMetaType>
#include <QString>
#include <QUrl>

namespace tools {

/// How a list shows a text that came from a file.
enum class Quoting {
    None,   ///< as it stands
    Double, ///< in its double-quoted form
    Single  ///< in its single-quoted form
};

/// One item of an options list: a file location, or a string. A string remembers which span of it is
/// data (a name, a title), so that the step that makes a shell line never has to parse quotes.
class OptionItem
{
public:
    OptionItem(const QUrl &file); // NOLINT(google-explicit-constructor)
    OptionItem(const QString &text)
        : m_before(text)
    {
    } // NOLINT(google-explicit-constructor)

    /// A string made of raw shell text around one span of data, shown with the given quoting.
    static OptionItem withData(const QString &before, const QString &data, Quoting quoting,
                               const QString &after = {});

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
    /// The same item with another text before its data (or as its whole text).
    OptionItem withBefore(const QString &before) const;
    QString before() const { return m_before; }

    bool operator==(const OptionItem &other) const;

private:
    QString m_before;
    QString m_data;
    QString m_after;
    QUrl m_file;
    Quoting m_quoting = Quoting::None;
    bool m_hasData = false;
    bool m_isFile = false;
};

using OptionList = QList<OptionItem>;

/// Each item as one process argument.
QStringList argumentsOf(const OptionList &options);
/// Each item's text().
QStringList textsOf(const OptionList &options);

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
