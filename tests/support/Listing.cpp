#include "support/Listing.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace support {

namespace {

QString tellingOf(const QFileInfo &entry)
{
    if (entry.isSymLink())
        return u"link to "_s + entry.symLinkTarget();
    if (entry.isDir())
        return u"folder"_s;
    QFile file(entry.filePath());
    if (!entry.isFile() || !file.open(QIODevice::ReadOnly))
        return u"no file"_s;
    QCryptographicHash sum(QCryptographicHash::Md5);
    sum.addData(&file);
    return QString::number(entry.size()) + u' ' + QString::fromLatin1(sum.result().toHex());
}

} // namespace

Listing::Listing(const QString &folder, const QStringList &without)
{
    const auto everything = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System;
    for (const QFileInfo &top : QDir(folder).entryInfoList(everything)) {
        if (without.contains(top.fileName()))
            continue;
        m_entries.insert(top.fileName(), tellingOf(top));
        if (top.isSymLink() || !top.isDir())
            continue;
        QDirIterator all(top.filePath(), everything, QDirIterator::Subdirectories);
        while (all.hasNext()) {
            all.next();
            m_entries.insert(all.filePath().mid(folder.size() + 1), tellingOf(all.fileInfo()));
        }
    }
}

QStringList Listing::changesTo(const Listing &later) const
{
    QStringList changes;
    for (auto entry = later.m_entries.begin(); entry != later.m_entries.end(); ++entry) {
        if (!m_entries.contains(entry.key()))
            changes.append(u"new "_s + entry.key());
        else if (m_entries.value(entry.key()) != entry.value())
            changes.append(u"changed "_s + entry.key());
    }
    for (auto entry = m_entries.begin(); entry != m_entries.end(); ++entry) {
        if (!later.m_entries.contains(entry.key()))
            changes.append(u"gone "_s + entry.key());
    }
    changes.sort();
    return changes;
}

} // namespace support
