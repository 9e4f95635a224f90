#include "tools/Values.h"

#include <QAssociativeIterable>
#include <QDir>
#include <QFileInfo>
#include <QSequentialIterable>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace tools {

namespace {

QString expandedPath(const QString &path)
{
    if (path == u"~"_s || path.startsWith(u"~/"_s))
        return QDir::homePath() + path.mid(1);
    return path;
}

bool isEmptyCollection(const QVariant &value)
{
    if (value.canView<QAssociativeIterable>())
        return value.value<QAssociativeIterable>().size() == 0;
    return value.canView<QSequentialIterable>() && value.value<QSequentialIterable>().size() == 0;
}

bool isNullPointer(const QVariant &value)
{
    return value.metaType().flags().testFlag(QMetaType::IsPointer) && value.isNull();
}

} // namespace

bool isEmptyValue(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        return true;
    case QMetaType::QString:
        return value.toString().isEmpty();
    case QMetaType::QByteArray:
        return value.toByteArray().isEmpty();
    case QMetaType::QStringList:
    case QMetaType::QVariantList:
        return value.toList().isEmpty();
    case QMetaType::QVariantMap:
    case QMetaType::QVariantHash:
        return value.toMap().isEmpty();
    case QMetaType::QUrl:
        return value.toUrl().path().isEmpty();
    default:
        return isEmptyCollection(value) || isNullPointer(value);
    }
}

bool isTextWith(const QVariant &text, const QVariant &part)
{
    if (text.typeId() != QMetaType::QString || part.typeId() != QMetaType::QString)
        return false;
    if (text.toString().isNull() || part.toString().isNull())
        return false;
    return text.toString().contains(part.toString(), Qt::CaseSensitive);
}

bool isFolder(const QString &path)
{
    return !path.isEmpty() && QFileInfo(expandedPath(path)).isDir();
}

bool isFolderWithEntries(const QString &path)
{
    return isFolder(path) &&
           !QDir(expandedPath(path))
                .isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
}

} // namespace tools
