#include "platform/DefaultsStore.h"

#include "platform/OrdinaryFile.h"
#include "platform/PlainFiles.h"
#include "platform/SafeReplace.h"
#include "platform/StoreLock.h"

#include <QDate>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

QString cannotBeRead(const QString &path, const QString &why)
{
    return u"The settings in %1 can't be read: %2."_s.arg(path, why);
}

QString cannotBeSaved(const QString &path, const QString &why)
{
    return u"The settings can't be saved to %1: %2."_s.arg(path, why);
}

/// A name beside the damaged file that is still free.
QString nameForDamaged(const QString &path)
{
    const QString plain = path + u" damaged "_s + QDate::currentDate().toString(Qt::ISODate);
    for (int number = 1;; ++number) {
        const QString candidate = number == 1 ? plain : plain + u" (%1)"_s.arg(number);
        if (!fileAt(QUrl::fromLocalFile(candidate)))
            return candidate;
    }
}

/// What a crash leaves of an object: less than all of it, nothing, or a file whose bytes were never written.
bool isCutObject(const QByteArray &bytes)
{
    const QByteArray text = bytes.trimmed();
    return text.isEmpty() || text.startsWith('{') || bytes.count('\0') == bytes.size();
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

JsonDefaultsStore::JsonDefaultsStore(const QString &path, int patienceMs)
    : m_path(path)
    , m_patienceMs(patienceMs)
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
    const Found found = find();
    keep(found.state == Found::State::Fine ? found.bytes : QByteArray(), found.values);
    return found.problem;
}

void JsonDefaultsStore::keep(const QByteArray &bytes, const QVariantMap &values)
{
    m_bytes = bytes;
    m_values = values;
}

JsonDefaultsStore::Found JsonDefaultsStore::find() const
{
    if (!QFileInfo::exists(m_path))
        return {Found::State::Missing, {}, {}, {}};
    const WholeFile file = readWhole(m_path);
    if (!file.problem.isNull())
        return {Found::State::NotOurs, cannotBeRead(m_path, file.problem), {}, {}};
    if (!m_bytes.isEmpty() && file.bytes == m_bytes)
        return {Found::State::Fine, {}, m_bytes, m_values};
    return judged(file.bytes);
}

JsonDefaultsStore::Found JsonDefaultsStore::judged(const QByteArray &bytes) const
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (document.isObject()) {
        const QVariantMap values = document.object().toVariantMap();
        if (isOurs(values))
            return {Found::State::Fine, {}, bytes, values};
    } else if (isCutObject(bytes)) {
        return {Found::State::Damaged,
                u"The settings in %1 are damaged (%2); the defaults are used and the file is kept."_s.arg(
                    m_path, error.errorString()),
                {},
                {}};
    }
    return {Found::State::NotOurs,
            u"%1 holds something else than settings; it is neither used nor written to."_s.arg(m_path),
            {},
            {}};
}

/// Whether it holds any of our keys, each with a value of its kind. What is there beside them may be a newer
/// version's.
bool JsonDefaultsStore::isOurs(const QVariantMap &values) const
{
    if (values.isEmpty() || registered().isEmpty())
        return true;
    bool hasOne = false;
    for (auto own = registered().cbegin(); own != registered().cend(); ++own) {
        const auto found = values.constFind(own.key());
        if (found == values.cend())
            continue;
        if (found->typeId() != own->typeId())
            return false;
        hasOne = true;
    }
    return hasOne;
}

QString JsonDefaultsStore::update(const Change &change)
{
    const QString refusal = problemWith(m_path);
    if (!refusal.isNull())
        return refusal; // no lock is made beside a device
    if (!QDir().mkpath(QFileInfo(m_path).absolutePath()))
        return u"The folder for %1 can't be made."_s.arg(m_path);
    StoreLock lock(m_path);
    const QString problem = lock.take(m_patienceMs);
    if (!problem.isNull())
        return cannotBeSaved(m_path, problem);
    const Found found = find(); // what another program stored since we read stays
    if (found.state == Found::State::NotOurs)
        return found.problem;
    QVariantMap values = found.values;
    for (auto known = m_values.cbegin(); known != m_values.cend(); ++known) {
        if (!values.contains(known.key())) // nobody takes keys away: the file has lost it
            values.insert(known.key(), known.value());
    }
    const bool hasLost = values.size() > found.values.size();
    const QVariantMap changed = change(values);
    values.insert(changed);
    return changed.isEmpty() && !hasLost ? QString() : save(found, values, lock);
}

QString JsonDefaultsStore::save(const Found &found, const QVariantMap &values, const StoreLock &lock)
{
    const QByteArray bytes = m_form.bytesOf(values);
    if (bytes.size() > mostBytesReadWhole) // they could not be read again
        return cannotBeSaved(m_path, u"they would be too large"_s);
    const bool isDamaged = found.state == Found::State::Damaged;
    QString problem = isDamaged ? setAside() : QString();
    if (problem.isNull() && !lock.isHeld())
        problem = u"another program took them over meanwhile"_s;
    if (problem.isNull())
        problem = replaceSafely(m_path, bytes);
    if (!problem.isNull())
        return cannotBeSaved(m_path, problem);
    if (found.state == Found::State::Missing && !m_bytes.isEmpty())
        m_notice = u"The settings in %1 were gone; what was known of them was saved again."_s.arg(m_path);
    keep(bytes, values);
    return {};
}

/// By a copy, so that a file is there all the time.
QString JsonDefaultsStore::setAside()
{
    const QUrl kept = QUrl::fromLocalFile(nameForDamaged(m_path));
    if (!copyPlainFile(QUrl::fromLocalFile(m_path), kept) || !flushToDisk(kept)) {
        removeName(kept);
        return u"the damaged file can't be set aside"_s;
    }
    m_notice = u"The settings in %1 were damaged; that file is kept as %2."_s.arg(m_path, kept.toLocalFile());
    return {};
}

} // namespace platform
