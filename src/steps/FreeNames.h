#pragma once

#include <QList>
#include <QRegularExpression>
#include <QUrl>

namespace steps {

/// "a.m4v" with " (2)" gives "a (2).m4v". A stem that is too long for its folder then loses whole characters
/// at its end; so many bytes more are to have room.
QUrl withMark(const QUrl &location, const QString &mark, qsizetype reserved = 0);

/// Matches the names of an output's parts and captures their numbers.
QRegularExpression partPattern(const QUrl &output);
/// The parts of an output that are there, in the order of their numbers.
QList<QUrl> partsOf(const QUrl &output);

} // namespace steps
