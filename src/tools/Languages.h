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

// A language's code or name by any of its names and codes; "un", "und" and "undetermined" for what is in no
// row.

QString twoLetterCodeOf(const QString &nameOrCode);
QString threeLetterCodeOf(const QString &nameOrCode);
QString languageNameOf(const QString &nameOrCode);
/// What is in the table as it is, a bibliographic code as the terminologic one, "und" for anything else.
QString standardizedCodeOf(const QString &code);

} // namespace tools
