#pragma once

#include <QString>
#include <QStringList>

namespace tools {

/// A command of these words, in one line that can be pasted into any Bourne shell: each word arrives to the
/// byte, and a terminal that shows the line obeys nothing in it. Words of the form NAME=VALUE in front are
/// given by their names and values.
QString pastableCommand(const QList<std::pair<QString, QString>> &environment, const QStringList &words);
/// A shell line as one that does the same and holds nothing that a terminal obeys.
QString pastableLine(const QString &line);

} // namespace tools
