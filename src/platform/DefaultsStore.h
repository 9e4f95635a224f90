#pragma once

#include <QString>
#include <QVariantMap>

#include <memory>

namespace platform
{

/// A per-user store of values (texts, booleans, numbers, lists, dictionaries) by key. Owned by the
/// program. Registered defaults answer for keys that were never stored; they are never written.
class DefaultsStore
{
  public:
    virtual ~DefaultsStore() = default;

    void registerDefaults(const QVariantMap &defaults) { m_registered = defaults; }
    /// The stored value, else the registered default, else an invalid value.
    QVariant value(const QString &key) const;
    bool isStored(const QString &key) const { return stored().contains(key); }

    /// Stores these keys at once and leaves every other key as it is on disk, so that two programs
    /// never undo each other's values. Answers a null text, or on failure a sentence for the user.
    virtual QString store(const QVariantMap &changed) = 0;
    /// Reads the store again. Answers a null text, or a sentence that says what is wrong with it.
    virtual QString load() = 0;

  protected:
    virtual const QVariantMap &stored() const = 0;

  private:
    QVariantMap m_registered;
};

/// The store as one JSON file, written atomically under a lock beside it. A file that can't be read
/// as JSON is never overwritten: it is kept under another name before the first write.
class JsonDefaultsStore final : public DefaultsStore
{
  public:
    explicit JsonDefaultsStore(const QString &path);

    /// Where the defaults of this user live (respects the test mode of the standard paths).
    static QString standardPath();

    QString store(const QVariantMap &changed) override;
    QString load() override;
    QString path() const { return m_path; }

  protected:
    const QVariantMap &stored() const override { return m_values; }

  private:
    QString m_path;
    QVariantMap m_values;
    bool m_damaged = false;
};

} // namespace platform
