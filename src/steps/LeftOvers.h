#pragma once

#include <QUrl>

namespace steps {

/// Clears what programs that are gone left in a folder for results: work folders and claims. Where all of a
/// job's files were checked and only their renames were cut short, those are finished. What a program that
/// runs holds stays; what another machine left goes once nothing in it has changed for a week.
void clearLeftOvers(const QUrl &folder);

} // namespace steps
