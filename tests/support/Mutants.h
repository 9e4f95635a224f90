#pragma once

#include "support/Seeds.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace support {

/// Ten films and subtitles as small as they can be, each of another kind: name and path.
struct SmallMedium
{
    QString extension;
    QString path;
};
const QList<SmallMedium> &smallMedia();

/// The content with one to four faults in it: flipped bytes, zeros, an end too soon, a block twice, two
/// blocks in each other's place, text that a tool could read as its own, a number that is far too big.
QByteArray mutated(const QByteArray &content, Chances &chances);

} // namespace support
