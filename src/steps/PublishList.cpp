#include "steps/PublishList.h"

#include "platform/OrdinaryFile.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace steps {

namespace {

// Numbers of 64 bits do not fit into those of JSON.
const QString fileKey = u"file"_s;
const QString nameKey = u"name"_s;
const QString deviceKey = u"replacedDevice"_s;
const QString inodeKey = u"replacedInode"_s;
const QString publicationsKey = u"publications"_s;

QString fileNameOf(const QUrl &location)
{
    return QFileInfo(location.toLocalFile()).fileName();
}

QJsonObject toJson(const Publication &publication)
{
    QJsonObject object{{fileKey, fileNameOf(publication.file)}, {nameKey, fileNameOf(publication.name)}};
    if (publication.replaced) {
        object.insert(deviceKey, QString::number(publication.replaced->device));
        object.insert(inodeKey, QString::number(publication.replaced->inode));
    }
    return object;
}

/// A record might be a stranger's: it names files of two folders and nothing else.
bool isPlainName(const QString &name)
{
    return !name.isEmpty() && !name.contains(u'/') && !name.contains(QChar(0)) && name != u"."_s &&
           name != u".."_s;
}

std::optional<Publication> fromJson(const QJsonObject &object, const QString &workFolder)
{
    const QString file = object.value(fileKey).toString();
    const QString name = object.value(nameKey).toString();
    if (!isPlainName(file) || !isPlainName(name))
        return std::nullopt;
    Publication publication;
    publication.file = QUrl::fromLocalFile(workFolder + u'/' + file);
    publication.name = QUrl::fromLocalFile(QFileInfo(workFolder).absolutePath() + u'/' + name);
    if (object.contains(inodeKey)) {
        platform::FileId replaced;
        replaced.device = object.value(deviceKey).toString().toULongLong();
        replaced.inode = object.value(inodeKey).toString().toULongLong();
        publication.replaced = replaced;
    }
    return publication;
}

} // namespace

QUrl recordIn(const QUrl &workFolder)
{
    return QUrl::fromLocalFile(workFolder.toLocalFile() + u"/publish.json"_s);
}

QByteArray toRecord(const QList<Publication> &publications)
{
    QJsonArray list;
    for (const Publication &publication : publications)
        list.append(toJson(publication));
    return QJsonDocument(QJsonObject{{publicationsKey, list}}).toJson(QJsonDocument::Compact);
}

std::optional<QList<Publication>> publicationsIn(const QUrl &workFolder)
{
    const auto document =
        QJsonDocument::fromJson(platform::readWhole(recordIn(workFolder).toLocalFile()).bytes);
    if (!document.object().value(publicationsKey).isArray())
        return std::nullopt;
    QList<Publication> publications;
    for (const QJsonValue &value : document.object().value(publicationsKey).toArray()) {
        const auto publication = fromJson(value.toObject(), workFolder.toLocalFile());
        if (!publication)
            return std::nullopt;
        publications.append(*publication);
    }
    return publications;
}

bool publishFile(const Publication &publication)
{
    const auto standing = platform::fileAt(publication.name);
    if (standing && publication.replaced && standing->isSameAs(*publication.replaced))
        return platform::renameOver(publication.file, publication.name);
    return platform::renameToFreeName(publication.file, publication.name);
}

} // namespace steps
