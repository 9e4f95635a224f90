#pragma once

#include <QStringList>
#include <QVariant>

namespace presets {

/// What one field of a preset may hold, and how it is written by hand: as the sheets show it, or as it is
/// stored. A value; the tables of PresetFields own one for each field.
class ValueRule final
{
public:
    /// A position in a list that the sheets offer. Further positions up to the limit are stored but not
    /// offered.
    static ValueRule indexIn(const QStringList &shown, qsizetype limit = 0);
    /// One of these texts, which are stored as they are shown.
    static ValueRule oneOf(const QStringList &shown);
    /// One of these texts, each shown otherwise than it is stored. Both lists have the same length.
    static ValueRule oneOf(const QStringList &shown, const QStringList &stored);
    static ValueRule flag();
    /// A whole number as a text; empty is allowed.
    static ValueRule wholeNumber();
    /// A number with or without decimals as a text; empty is allowed.
    static ValueRule decimal();
    /// One of these, or any other single word.
    static ValueRule anyWordLike(const QStringList &shown);
    /// Any text of a length that a person types.
    static ValueRule anyText();
    /// The same rule where these texts may be stored as well, though nobody should choose them.
    ValueRule alsoStored(const QStringList &texts) const;

    /// The value as it is stored; an invalid one when the text is none.
    QVariant read(const QString &text) const;
    /// Whether a preset can hold that, of exactly the kind in which it is stored.
    bool holds(const QVariant &stored) const;
    /// A stored value as the sheets show it; what they don't show as it is.
    QString shown(const QVariant &stored) const;
    /// The right values for a sentence: "a", "b" or "c".
    QString rightValues() const;
    /// The same as they are stored.
    QString storedValues() const;
    /// The right values one by one, where they can be counted.
    const QStringList &choices() const { return m_shown; }

private:
    enum class Kind { Index, Choice, Flag, WholeNumber, Decimal, Word, Text };

    explicit ValueRule(Kind kind)
        : m_kind(kind)
    {
    }
    QVariant readIndex(const QString &text) const;
    QVariant readFlag(const QString &text) const;
    bool holdsText(const QString &text) const;

    Kind m_kind;
    QStringList m_shown;
    QStringList m_stored;
    QStringList m_alsoStored;
    qsizetype m_limit = 0;
};

} // namespace presets
