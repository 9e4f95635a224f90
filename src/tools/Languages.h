#pragma once

#include <QList>
#include <QStringList>

namespace tools {

/// The language table, in order; each row is English name, two-letter code, three-letter code. Built
/// once per program. Names are the first word of the standard's name, as the user sees them.
const QList<QStringList> &languageTable();
/// The names offered in menus: "undetermined", the common languages, then all others, each once.
const QStringList &languageMenu();
/// The first row that holds the text (case-sensitive) in any column; nullptr when there is none.
const QStringList *languageRow(const QString &nameOrCode);
/// The terminologic code of one of fifteen bibliographic ones; a null text for any other code.
QString terminologicCodeFor(const QString &bibliographicCode);

} // namespace tools
