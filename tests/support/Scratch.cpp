#include "support/Scratch.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace support {

Scratch::Scratch()
{
    if (!m_folder.isValid())
        qFatal("no scratch folder: %s", qPrintable(m_folder.errorString()));
}

QString Scratch::path(const QString &name) const
{
    return name.isEmpty() ? m_folder.path() : m_folder.path() + u'/' + name;
}

QString Scratch::write(const QString &name, const QByteArray &content) const
{
    const QString target = path(name);
    QDir().mkpath(QFileInfo(target).absolutePath());
    QFile file(target);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("can't write %s", qPrintable(target));
    return target;
}

QByteArray Scratch::read(const QString &name) const
{
    QFile file(path(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList Scratch::names() const
{
    return QDir(path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
                                  QDir::Name);
}

QStringList Scratch::shownNames() const
{
    QStringList shown = names();
    shown.removeIf([](const QString &name) { return name.startsWith(u".tessaray-"_s); });
    return shown;
}

QStringList filesAtWork(const QString &folder, const QString &pattern)
{
    QStringList files;
    for (const QString &work : QDir(folder).entryList({u".tessaray-??????"_s}, QDir::Dirs | QDir::Hidden)) {
        const QDir inside(folder + u'/' + work);
        for (const QString &name : inside.entryList({pattern}, QDir::Files))
            files.append(inside.filePath(name));
    }
    return files;
}

} // namespace support
