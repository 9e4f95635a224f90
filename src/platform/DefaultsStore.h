#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>

namespace platform {

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

protected:
    virtual const QVariantMap &stored() const = 0;

private:
    QVariantMap m_registered;
};

/// The store as one JSON file, written atomically under a lock beside it. A file that can't be read
/// as JSON is never overwritten: it is kept under another name before the first write. What is no ordinary
/// file, or far too large, is neither read nor written.
class JsonDefaultsStore final : public DefaultsStore
{
public:
    explicit JsonDefaultsStore(const QString &path);

    /// Where the defaults of this user live (respects the test mode of the standard paths).
    static QString standardPath();
    /// Why what stands at that path can be no settings file (a device, a pipe, far too large); a null text
    /// when it can, or nothing is there.
    static QString problemWith(const QString &path);

    QString update(const Change &change) override;
    QString load() override;
    QString path() const { return m_path; }

protected:
    const QVariantMap &stored() const override { return m_values; }

private:
    QString readForWriting();
    QString write(const QVariantMap &values);

    QString m_path;
    QVariantMap m_values;
    bool m_damaged = false;
};

} // namespace platform
