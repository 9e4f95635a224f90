#include "support/FakePlaces.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace support {

FakePlaces::FakePlaces(const QString &folder)
    : m_folder(folder)
{
    QDir().mkpath(m_folder + u"/tools"_s);
    QDir().mkpath(m_folder + u"/Resources"_s);
}

QUrl FakePlaces::toolsLocation() const
{
    return QUrl::fromLocalFile(m_folder + u"/tools"_s);
}

QUrl FakePlaces::resourcesLocation() const
{
    return QUrl::fromLocalFile(m_folder + u"/Resources"_s);
}

} // namespace support
