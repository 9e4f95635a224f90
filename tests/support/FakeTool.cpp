#include "support/FakeTool.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace support {

QString FakeTool::program()
{
    return QStringLiteral(TESSARAY_FAKETOOL);
}

QString FakeTool::install(const QString &path, const QStringList &script)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile::remove(path);
    if (!QFile::link(program(), path))
        qFatal("can't put the fake tool at %s", qPrintable(path));
    QFile file(path + u".script"_s);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        qFatal("can't write the script of %s", qPrintable(path));
    file.write(script.join(u'\n').toUtf8());
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

} // namespace support
