#pragma once

#include <QByteArray>
#include <QString>

namespace platform {

/// What a terminal obeys or could be fooled by: control characters (ESC, CR, DEL and the like), those that
/// turn the direction of writing, and the line and paragraph separators.
bool steersTerminals(QChar c);
bool steersTerminals(const QString &text);

/// The text in one line, with every such character spelled out: "\n", "\x1b", "\u202e". Names and titles may
/// hold anything, and none passes for a line of the program's. A backslash that could be taken for the start
/// of a spelling is doubled; every other one stays.
QString visible(const QString &text);
/// The same for a text of the program's own that has several lines.
QString visibleInLines(const QString &text);
/// The same JSON, with "\uXXXX" in its strings for what steers terminals.
QByteArray visibleJson(const QByteArray &json);

} // namespace platform
