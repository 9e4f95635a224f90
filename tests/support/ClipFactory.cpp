#include "support/ClipFactory.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QProcess>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace support {

namespace {

QString clipFolder()
{
    return QStringLiteral(TESSARAY_BUILD_DIR) + u"/test-media"_s;
}

void makeClip(const QString &target, const ClipMaker &make)
{
    const QTemporaryDir factory(clipFolder() + u"/making-XXXXXX"_s);
    const QString made = factory.filePath(QFileInfo(target).fileName());
    make(made);
    if (!QFile::rename(made, target))
        qFatal("%s was not made", qPrintable(target));
}

QByteArray number(quint64 value, int bytes)
{
    QByteArray text;
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        text.append(static_cast<char>((value >> shift) & 0xff));
    return text;
}

enum SegmentType { Palette = 0x14, Object = 0x15, Composition = 0x16, Window = 0x17, End = 0x80 };

QByteArray segment(int second, SegmentType type, const QByteArray &payload)
{
    return "PG" + number(90000u * static_cast<unsigned>(second), 4) + number(0, 4) + number(type, 1) +
           number(static_cast<quint64>(payload.size()), 2) + payload;
}

constexpr int boxX = 80;
constexpr int boxY = 180;
constexpr int boxWidth = 160;
constexpr int boxHeight = 40;

QByteArray boxArea()
{
    return number(boxX, 2) + number(boxY, 2) + number(boxWidth, 2) + number(boxHeight, 2);
}

/// Each line: one long run of colour 1, then the end of the line.
QByteArray boxPixels()
{
    const QByteArray line = number(0, 1) + number(0xc000 | boxWidth, 2) + number(1, 1) + number(0, 2);
    return line.repeated(boxHeight);
}

QByteArray composition(int index, int state, int objects)
{
    QByteArray payload = number(320, 2) + number(240, 2) + number(0x10, 1) +
                         number(static_cast<quint64>(index), 2) + number(static_cast<quint64>(state), 1) +
                         number(0, 2) + number(static_cast<quint64>(objects), 1);
    if (objects > 0)
        payload += number(0, 4) + number(boxX, 2) + number(boxY, 2);
    return payload;
}

} // namespace

QString clip(const QString &name, const ClipMaker &make)
{
    QDir().mkpath(clipFolder());
    const QString target = clipFolder() + u'/' + name;
    if (QFileInfo::exists(target))
        return target;
    QLockFile lock(clipFolder() + u"/."_s + name + u".lock"_s);
    lock.setStaleLockTime(0); // a live maker's lock never goes stale
    if (!lock.lock())
        qFatal("can't lock %s", qPrintable(target));
    if (!QFileInfo::exists(target))
        makeClip(target, make);
    return target;
}

void runProgram(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setStandardInputFile(QProcess::nullDevice());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    const bool ended = process.waitForFinished(300000) && process.exitStatus() == QProcess::NormalExit;
    const int highest = program.startsWith(u"mkv"_s) ? 1 : 0;
    if (!ended || process.exitCode() > highest)
        qFatal("%s %s\n%s", qPrintable(program), qPrintable(arguments.join(u' ')),
               process.readAll().constData());
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("can't read %s", qPrintable(path));
    return file.readAll();
}

void writeContent(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("can't write %s", qPrintable(path));
}

QByteArray pictureSubtitle()
{
    const QByteArray window = number(1, 1) + number(0, 1) + boxArea();
    const QByteArray white =
        number(0, 2) + number(1, 1) + number(235, 1) + number(128, 1) + number(128, 1) + number(255, 1);
    const QByteArray picture = number(boxWidth, 2) + number(boxHeight, 2) + boxPixels();
    const QByteArray object =
        number(0, 3) + number(0xc0, 1) + number(static_cast<quint64>(picture.size()), 3) + picture;
    return segment(1, Composition, composition(0, 0x80, 1)) + segment(1, Window, window) +
           segment(1, Palette, white) + segment(1, Object, object) + segment(1, End, {}) +
           segment(6, Composition, composition(1, 0, 0)) + segment(6, Window, window) + segment(6, End, {});
}

} // namespace support
