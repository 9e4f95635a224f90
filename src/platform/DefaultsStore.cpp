#include "platform/DefaultsStore.h"

#include "platform/FileLock.h"
#include "platform/OrdinaryFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

constexpr int lockPatienceMs = 5000;

QString cannotBeRead(const QString &path, const QString &why)
{
    return u"The settings in %1 can't be read: %2."_s.arg(path, why);
}

/// A name beside the damaged file that is still free.
QString nameForDamaged(const QString &path)
{
    for (int number = 1;; ++number) {
        const QString candidate = path + (number == 1 ? u".damaged"_s : u".damaged-%1"_s.arg(number));
        if (!QFileInfo::exists(candidate))
            return candidate;
    }
}

} // namespace

QVariant DefaultsStore::value(const QString &key) const
{
    return stored().contains(key) ? stored().value(key) : m_registered.value(key);
}

QString DefaultsStore::store(const QVariantMap &changed)
{
    return update([&](const QVariantMap &) { return changed; });
}

JsonDefaultsStore::JsonDefaultsStore(const QString &path)
    : m_path(path)
{
}

QString JsonDefaultsStore::standardPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) + u"/defaults.json"_s;
}

QString JsonDefaultsStore::problemWith(const QString &path)
{
    const QString why = problemOfWholeFile(path);
    return why.isNull() ? QString() : cannotBeRead(path, why);
}

QString JsonDefaultsStore::load()
{
    m_values.clear();
    m_damaged = false;
    if (!QFileInfo::exists(m_path))
        return {};
    const WholeFile file = readWhole(m_path);
    if (!file.problem.isNull())
        return cannotBeRead(m_path, file.problem);
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.bytes, &error);
    if (!document.isObject()) {
        m_damaged = true;
        return u"The settings in %1 are damaged (%2); the defaults are used and the file is kept."_s.arg(
            m_path, error.errorString());
    }
    m_values = document.object().toVariantMap();
    return {};
}

QString JsonDefaultsStore::update(const Change &change)
{
    const QString refusal = problemWith(m_path);
    if (!refusal.isNull())
        return refusal; // no lock is made beside a device
    if (!QDir().mkpath(QFileInfo(m_path).absolutePath()))
        return u"The folder for %1 can't be made."_s.arg(m_path);
    FileLock lock(m_path + u".lock"_s);
    if (!lock.tryLock(lockPatienceMs))
        return u"The settings in %1 are locked by another program."_s.arg(m_path);
    const QString problem = readForWriting(); // what another program stored since we read stays
    if (!problem.isNull())
        return problem;
    const QVariantMap changed = change(m_values);
    if (changed.isEmpty())
        return {};
    QVariantMap values = m_values;
    values.insert(changed);
    return write(values);
}

/// Nothing may be written while this answers a sentence: what is there would be lost.
QString JsonDefaultsStore::readForWriting()
{
    const QString problem = load();
    return m_damaged ? QString() : problem;
}

QString JsonDefaultsStore::write(const QVariantMap &values)
{
    const QByteArray bytes = QJsonDocument(QJsonObject::fromVariantMap(values)).toJson();
    if (bytes.size() > mostBytesReadWhole) // they could not be read again
        return u"The settings can't be saved to %1: they would be too large."_s.arg(m_path);
    if (m_damaged && !QFile::copy(m_path, nameForDamaged(m_path)))
        return u"The damaged settings in %1 can't be set aside, so nothing was saved."_s.arg(m_path);
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) < 0 || !file.commit())
        return u"The settings can't be saved to %1: %2."_s.arg(m_path, file.errorString());
    m_values = values;
    m_damaged = false;
    return {};
}

} // namespace platform
