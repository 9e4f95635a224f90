#pragma once

#include <QString>
#include <QVariant>

namespace tools {

/// True for what is absent or empty: no value, an empty text, list or dictionary, and a file location without
/// a path. A number is never empty.
bool isEmptyValue(const QVariant &value);
/// True when both are texts, neither is absent and the second stands in the first. Case counts.
bool isTextWith(const QVariant &text, const QVariant &part);

// Of folders "~" and what is below it is the home folder; every other path stays as it is.

bool isFolder(const QString &path);
/// Hidden entries count too.
bool isFolderWithEntries(const QString &path);

} // namespace tools
