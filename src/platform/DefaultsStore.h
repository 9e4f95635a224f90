#pragma once

#include "platform/StoredForm.h"

#include <QString>
#include <QVariantMap>

#include <functional>
#include <utility>

namespace platform {

class StoreLock;

/// A per-user store of values (texts, booleans, numbers, lists, dictionaries) by key. Owned by the
/// program. Registered defaults answer for keys that were never stored; they are never written.
class DefaultsStore
{
public:
    virtual ~DefaultsStore() = default;

    void registerDefaults(const QVariantMap &defaults) { m_registered = defaults; }
    /// The stored value, else the registered default, else an invalid value.
    QVariant value(const QString &key) const;

    /// Stores these keys at once and leaves every other key as it is on disk, so that two programs
    /// never undo each other's values. Answers a null text, or on failure a sentence for the user.
    QString store(const QVariantMap &changed);
    /// What to store, given what is stored at that moment.
    using Change = std::function<QVariantMap(const QVariantMap &stored)>;
    /// Like store(), for values that depend on what is stored: reads again and asks while no other
    /// program can write. Nothing is written when there is nothing to change.
    virtual QString update(const Change &change) = 0;
    /// Reads the store again. Answers a null text, or a sentence that says what is wrong with it.
    virtual QString load() = 0;
    /// What the last update() met and made good again, as a sentence for the user, once; else a null text.
    virtual QString takeNotice() { return {}; }

protected:
    const QVariantMap &registered() const { return m_registered; }
    virtual const QVariantMap &stored() const = 0;

private:
    QVariantMap m_registered;
};

/// The store as one JSON file, replaced whole under a lock beside it, never through a link. What was read or
/// saved last is kept in memory: where the file is gone, damaged or has lost keys when something is saved,
/// that stands in for it. A damaged file is kept under another name first, and told. What is no ordinary
/// file, far too large, or holds something else than settings is never written.
class JsonDefaultsStore final : public DefaultsStore
{
public:
    /// Who writes at the same time is waited for so long, in milliseconds.
    explicit JsonDefaultsStore(const QString &path, int patienceMs = 5000);

    /// Where the defaults of this user live (respects the test mode of the standard paths).
    static QString standardPath();
    /// Why what stands at that path can be no settings file (a device, a pipe, far too large); a null text
    /// when it can, or nothing is there.
    static QString problemWith(const QString &path);

    QString update(const Change &change) override;
    QString load() override;
    QString takeNotice() override { return std::exchange(m_notice, QString()); }
    QString path() const { return m_path; }

protected:
    const QVariantMap &stored() const override { return m_values; }

private:
    struct Found
    {
        enum class State { Fine, Missing, Damaged, NotOurs };
        State state = State::Fine;
        QString problem; ///< a sentence; null when it is fine, or nothing is there
        QByteArray bytes;
        QVariantMap values;
    };
    Found find() const;
    Found judged(const QByteArray &bytes) const;
    bool isOurs(const QVariantMap &values) const;
    QString save(const Found &found, const QVariantMap &values, const StoreLock &lock);
    QString setAside();
    void keep(const QByteArray &bytes, const QVariantMap &values);

    QString m_path;
    int m_patienceMs;
    QVariantMap m_values; ///< as they were last read or saved
    QByteArray m_bytes;   ///< the same as the file holds them
    StoredForm m_form;
    QString m_notice;
};

} // namespace platform
