#pragma once

#include <QMetaClassInfo>
#include <QMetaProperty>
#include <QObject>
#include <QStringList>
#include <QVariant>

namespace platform {

/// A field's value in the text form of a record: flags as 1 and 0.
inline QString printedField(const QVariant &value)
{
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    return value.toString();
}

/// The fields of a class that are of that use, in the order in which they are declared. See KX_FIELD_FOR.
inline QStringList fieldsFor(const QMetaObject &meta, const QString &use)
{
    QStringList names;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const char *name = meta.property(i).name();
        const int info = meta.indexOfClassInfo(name);
        const QString uses = info < 0 ? QString() : QString::fromLatin1(meta.classInfo(info).value());
        if (uses.split(QLatin1Char(' ')).contains(use))
            names.append(QString::fromLatin1(name));
    }
    return names;
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

/// A field that says what it is used for, in words with blanks between them: "copied" into a copy of the
/// record, "printed" in its text form, "stored" in a stored record. platform::fieldsFor() finds them.
/// Usage: KX_FIELD_FOR("copied printed", QString, jobType, setJobType, {})
#define KX_FIELD_FOR(USES, TYPE, NAME, SETTER, INITIAL)                                                      \
    Q_CLASSINFO(#NAME, USES)                                                                                 \
    KX_FIELD(TYPE, NAME, SETTER, INITIAL)

/// The same for a field that has a default, which is not what it begins with: the property can be reset.
#define KX_RESET_FIELD_FOR(USES, TYPE, NAME, SETTER, DEFAULT)                                                \
    Q_CLASSINFO(#NAME, USES)                                                                                 \
    Q_PROPERTY(TYPE NAME READ NAME WRITE SETTER RESET NAME##ToDefault)                                       \
public:                                                                                                      \
    TYPE NAME() const                                                                                        \
    {                                                                                                        \
        return m_##NAME;                                                                                     \
    }                                                                                                        \
    void SETTER(const TYPE &value)                                                                           \
    {                                                                                                        \
        m_##NAME = value;                                                                                    \
    }                                                                                                        \
    void NAME##ToDefault()                                                                                   \
    {                                                                                                        \
        m_##NAME = DEFAULT;                                                                                  \
    }                                                                                                        \
                                                                                                             \
private:                                                                                                     \
    TYPE m_##NAME = {};

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

/// Both of these.
#define KX_RULED_FIELD_FOR(USES, TYPE, NAME, SETTER, INITIAL)                                                \
    Q_CLASSINFO(#NAME, USES)                                                                                 \
    KX_RULED_FIELD(TYPE, NAME, SETTER, INITIAL)

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
