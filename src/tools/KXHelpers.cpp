#include "tools/KXHelpers.h"

#include "tools/Languages.h"
#include "tools/Numbers.h"

#include <QAssociativeIterable>
#include <QDir>
#include <QFileInfo>
#include <QSequentialIterable>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// "~" and "~/..." lead to the home folder; every other path stays as it is.
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

/// One piece of a time text; far below what could overflow in seconds.
qint64 timePiece(const QString &text)
{
    constexpr qint64 largest = 1'000'000'000'000;
    return std::clamp(tools::leadingInteger(text), -largest, largest);
}

} // namespace

KXHelpers::KXHelpers(const tools::ToolPlaces *places, platform::AlertPresenter *presenter)
    : m_places(places)
    , m_presenter(presenter)
{
}

const QStringList &KXHelpers::languageList() const
{
    return tools::languageMenu();
}

const QList<QStringList> &KXHelpers::languageArrayMatrix() const
{
    return tools::languageTable();
}

bool KXHelpers::fileExistsAtURL(const QUrl &location)
{
    return !location.path().isEmpty() && QFileInfo::exists(location.toLocalFile());
}

bool KXHelpers::directoryPathExistsFor(const QString &path)
{
    return !path.isEmpty() && QFileInfo(expandedPath(path)).isDir();
}

bool KXHelpers::directoryPathIsNotEmptyFor(const QString &path)
{
    if (!directoryPathExistsFor(path))
        return false;
    return !QDir(expandedPath(path))
                .isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
}

bool KXHelpers::isEmpty(const QVariant &value)
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

bool KXHelpers::theStringContainsString(const QVariant &text, const QVariant &part)
{
    if (text.typeId() != QMetaType::QString || part.typeId() != QMetaType::QString)
        return false;
    if (text.toString().isNull() || part.toString().isNull())
        return false;
    return text.toString().contains(part.toString(), Qt::CaseSensitive);
}

bool KXHelpers::isStringInteger(const QString &text)
{
    return tools::leadingInteger(text) != 0 || text == u"0"_s;
}

QString KXHelpers::language2CodeFor(const QString &nameOrCode)
{
    const QStringList *row = tools::languageRow(nameOrCode);
    return row != nullptr ? row->at(1) : u"un"_s;
}

QString KXHelpers::language3CodeFor(const QString &nameOrCode)
{
    const QStringList *row = tools::languageRow(nameOrCode);
    return row != nullptr ? row->at(2) : u"und"_s;
}

QString KXHelpers::languageForCode3(const QString &nameOrCode)
{
    const QStringList *row = tools::languageRow(nameOrCode);
    return row != nullptr ? row->at(0) : u"undetermined"_s;
}

QString KXHelpers::standardizedLanguage3CodeFor(const QString &code)
{
    if (tools::languageRow(code) != nullptr)
        return code;
    const QString terminologic = tools::terminologicCodeFor(code);
    return terminologic.isNull() ? u"und"_s : terminologic;
}

qint64 KXHelpers::convertToTimeInSecondsFrom(const QString &time)
{
    const QStringList pieces = time.split(u':');
    if (pieces.size() != 3)
        return 0;
    const QString wholeSeconds = pieces.at(2).section(u'.', 0, 0);
    return timePiece(pieces.at(0)) * 3600 + timePiece(pieces.at(1)) * 60 + timePiece(wholeSeconds);
}

void KXHelpers::openAlertSheet(const platform::AlertPointer &alert) const
{
    if (m_presenter != nullptr)
        m_presenter->show(alert, {});
}

void KXHelpers::alertTimedOut(const platform::AlertPointer &alert) const
{
    if (m_presenter != nullptr)
        m_presenter->close(alert);
}

void KXHelpers::logString(const QString &) const {}

void KXHelpers::logObjectWithString(const QVariant &, const QString &) const {}

void KXHelpers::logIntegerWithString(qint64, const QString &) const {}
