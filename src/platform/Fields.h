#pragma once

#include <QObject>

/// Declares one field of a record: a property of that name, its getter and its setter. Records are
/// copied, dumped and printed by these names, so a field word stands exactly here.
/// Usage: KX_FIELD(QString, trackCodec, setTrackCodec, QStringLiteral("none"))
#define KX_FIELD(TYPE, NAME, SETTER, INITIAL)                                                                \
    Q_PROPERTY(TYPE NAME READ NAME WRITE SETTER)                                                             \
public:                                                                                                      \
    TYPE NAME() const { return m_##NAME; }                                                                   \
    void SETTER(const TYPE &value) { m_##NAME = value; }                                                     \
                                                                                                             \
private:                                                                                                     \
    TYPE m_##NAME = INITIAL;
