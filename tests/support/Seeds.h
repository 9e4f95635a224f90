#pragma once

#include <QtGlobal>

#include <random>

namespace support {

/// Whether the long form of a test is wanted: TESSARAY_SOAK=1.
bool isSoak();
/// What a test with chances draws from: TESSARAY_SEED where it is given, else always the same number, and
/// another one each time in the long form. It is printed, so that a finding can be had again.
quint32 seed();

/// Numbers that are the same everywhere for the same seed.
class Chances final
{
public:
    explicit Chances(quint32 seed)
        : m_engine(seed)
    {
    }
    /// From 0 to one less than the limit, which is positive.
    qsizetype below(qsizetype limit)
    {
        return static_cast<qsizetype>(m_engine() % static_cast<quint64>(limit));
    }

private:
    std::mt19937 m_engine;
};

} // namespace support
