#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace support {

/// Writes one clip to the path it is handed, which ends in the clip's name.
using ClipMaker = std::function<void(const QString &path)>;

/// The path of the clip of that name; made under another name and then moved into place, under a lock
/// that all tests of the build tree share.
QString clip(const QString &name, const ClipMaker &make);

/// Runs an installed program to its end; anything but success (mkvmerge's warnings count as such) fails
/// the test with what the program said.
void runProgram(const QString &program, const QStringList &arguments);

QByteArray contentOf(const QString &path);
void writeContent(const QString &path, const QByteArray &content);

/// A picture subtitle stream for a 320x240 film: a white box from second 1 to second 6.
QByteArray pictureSubtitle();

} // namespace support
