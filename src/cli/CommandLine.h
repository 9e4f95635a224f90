#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

namespace cli {

/// One option as every command that takes it knows it.
struct OptionSpec
{
    QString name;
    QString valueName; ///< empty: a flag
    QString help;
    bool isGlobal = false;
};

const QList<OptionSpec> &allOptions();

/// The words of a command line, sorted: options may stand anywhere, "--" ends them.
class CommandLine final
{
public:
    /// Words without the program's name. What is wrong with them is in error().
    explicit CommandLine(const QStringList &words);

    QString error() const { return m_error; }
    QString command() const { return m_command; }
    QStringList arguments() const { return m_arguments; }
    bool has(const QString &option) const { return m_values.contains(option); }
    /// The last value given; a null text when there is none.
    QString value(const QString &option) const;
    QStringList values(const QString &option) const { return m_values.value(option); }
    /// Behind those that are there.
    void addArguments(const QStringList &arguments) { m_arguments.append(arguments); }
    QStringList optionNames() const { return m_values.keys(); }

private:
    void takeOption(const QString &word, const QStringList &words, qsizetype &position);

    QHash<QString, QStringList> m_values;
    QStringList m_arguments;
    QString m_command;
    QString m_error;
};

} // namespace cli
