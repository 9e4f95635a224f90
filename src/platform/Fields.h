#pragma once

#include <QObject>
#include <QVariant>

namespace platform {

/// A field's value in the text form of a record: flags as 1 and 0.
inline QString printedField(const QVariant &value)
{
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    return value.toString();
}

} // namespace platform

/// Declares one field of a record: a property of that name, its getter and its setter. Records are
/// copied, dumped and printed by these names, so a field word stands exactly here.
/// Usage: KX_FIELD(QString, trackCodec, setTrackCodec, QStringLiteral("none"))
#define KX_FIELD(TYPE, NAME, SETTER, INITIAL)                                                                \
    Q_PROPERTY(TYPE NAME READ NAME WRITE SETTER)                                                             \
public:                                                                                                      \
    TYPE NAME() const                                                                                        \
    {                                                                                                        \
        return m_##NAME;                                                                                     \
    }                                                                                                        \
    void SETTER(const TYPE &value)                                                                           \
    {                                                                                                        \
        m_##NAME = value;                                                                                    \
    }                                                                                                        \
                                                                                                             \
private:                                                                                                     \
    TYPE m_##NAME = INITIAL;

/// A field whose setter does more and is written out by the class.
#define KX_RULED_FIELD(TYPE, NAME, SETTER, INITIAL)                                                          \
    Q_PROPERTY(TYPE NAME READ NAME WRITE SETTER)                                                             \
public:                                                                                                      \
    TYPE NAME() const                                                                                        \
    {                                                                                                        \
        return m_##NAME;                                                                                     \
    }                                                                                                        \
    void SETTER(const TYPE &value);                                                                          \
                                                                                                             \
private:                                                                                                     \
    TYPE m_##NAME = INITIAL;

/// A field that a window shows: the setter announces a change by the class's signal stateChanged().
#define KX_STATE(TYPE, NAME, SETTER, INITIAL)                                                                \
    Q_PROPERTY(TYPE NAME READ NAME WRITE SETTER NOTIFY stateChanged)                                         \
public:                                                                                                      \
    TYPE NAME() const                                                                                        \
    {                                                                                                        \
        return m_##NAME;                                                                                     \
    }                                                                                                        \
    void SETTER(const TYPE &value)                                                                           \
    {                                                                                                        \
        if (m_##NAME == value)                                                                               \
            return;                                                                                          \
        m_##NAME = value;                                                                                    \
        Q_EMIT stateChanged();                                                                               \
    }                                                                                                        \
                                                                                                             \
private:                                                                                                     \
    TYPE m_##NAME = INITIAL;

/// Both: the class writes out the setter and announces the change there.
#define KX_RULED_STATE(TYPE, NAME, SETTER, INITIAL)                                                          \
    Q_PROPERTY(TYPE NAME READ NAME WRITE SETTER NOTIFY stateChanged)                                         \
public:                                                                                                      \
    TYPE NAME() const                                                                                        \
    {                                                                                                        \
        return m_##NAME;                                                                                     \
    }                                                                                                        \
    void SETTER(const TYPE &value);                                                                          \
                                                                                                             \
private:                                                                                                     \
    TYPE m_##NAME = INITIAL;
