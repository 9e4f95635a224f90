#include "support/TestPlaces.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QSaveFile>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace support {

namespace {

QString toolsFolder()
{
    return QStringLiteral(TESSARAY_BUILD_DIR) + u"/test-tools"_s;
}

void writeLauncher(const QString &path)
{
    if (QFileInfo(path).isExecutable())
        return;
    const QString program = QStandardPaths::findExecutable(QFileInfo(path).fileName());
    if (program.isEmpty())
        qFatal("%s is not installed", qPrintable(QFileInfo(path).fileName()));
    QDir().mkpath(QFileInfo(path).path());
    QSaveFile launcher(path);
    launcher.open(QIODevice::WriteOnly);
    launcher.write(u"#!/bin/sh\nexec \"%1\" \"$@\"\n"_s.arg(program).toUtf8());
    launcher.setPermissions(QFile::Permissions(0x7755)); // as others read and run it
    if (!launcher.commit())
        qFatal("can't write %s: %s", qPrintable(path), qPrintable(launcher.errorString()));
}

void linkFonts()
{
    const QString shipped = QStringLiteral(TESSARAY_SOURCE_DIR) + u"/packaging/fonts"_s;
    const QString here = toolsFolder() + u"/fonts"_s;
    if (QFileInfo(shipped).isDir() && !QFileInfo::exists(here))
        QFile::link(shipped, here);
}

} // namespace

TestPlaces::TestPlaces()
{
    QDir().mkpath(toolsFolder());
    QLockFile lock(toolsFolder() + u"/.lock"_s);
    lock.setStaleLockTime(0);
    if (!lock.lock())
        qFatal("can't lock %s", qPrintable(toolsFolder()));
    for (const auto &name : {u"ffmpeg/ffmpeg"_s, u"ffmpeg/ffprobe"_s, u"mkvtoolnix/mkvmerge"_s,
                             u"mkvtoolnix/mkvextract"_s, u"mkvtoolnix/mkvinfo"_s})
        writeLauncher(toolsFolder() + u'/' + name);
    linkFonts();
}

QUrl TestPlaces::toolsLocation() const
{
    return QUrl::fromLocalFile(toolsFolder());
}

QString TestPlaces::workingFolder() const
{
    return QDir::rootPath();
}

} // namespace support
