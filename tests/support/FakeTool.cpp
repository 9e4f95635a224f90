#include "support/FakeTool.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

/// By a rename: a run of the same tool that was started a moment ago may still read what stood there.
void putInPlace(const QString &path, const std::function<bool(const QString &aside)> &make)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    const QString aside = path + u".new"_s;
    if (!make(aside) ||
        std::rename(QFile::encodeName(aside).constData(), QFile::encodeName(path).constData()) != 0)
        qFatal("can't put a tool at %s", qPrintable(path));
}

} // namespace

namespace support {

QString FakeTool::program()
{
    return QStringLiteral(TESSARAY_FAKETOOL);
}

QString FakeTool::install(const QString &path, const QStringList &script)
{
    putInPlace(path + u".script"_s, [&](const QString &aside) {
        QFile file(aside);
        return file.open(QIODevice::WriteOnly) && file.write(script.join(u'\n').toUtf8()) >= 0;
    });
    putInPlace(path, [](const QString &aside) { return QFile::link(program(), aside); });
    return path;
}

QList<FakeTool::Run> FakeTool::recordedRuns(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArrayList words = file.readAll().split('\0'); // the last one is behind the last NUL
    QList<Run> runs;
    for (qsizetype i = 0; i + 1 < words.size();) {
        const qsizetype count = words.at(i).toInt();
        if (count < 1 || i + 1 + count >= words.size())
            qFatal("%s is no record", qPrintable(path));
        runs.append(Run{words.at(i + 1), words.mid(i + 2, count - 1)});
        i += 1 + count;
    }
    return runs;
}

QString installScript(const QString &path, const QString &lines)
{
    putInPlace(path, [&](const QString &aside) {
        QFile file(aside);
        return file.open(QIODevice::WriteOnly) && file.write("#!/bin/sh\n" + lines.toUtf8() + '\n') > 0 &&
               file.setPermissions(QFile::Permissions(0x7755)); // as others read and run it
    });
    return path;
}

} // namespace support
