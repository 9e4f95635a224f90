#pragma once

#include <QList>

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

/// Others at each line, and each time there.
Chances chancesAt(int line);

/// Of the rows of a matrix all in the long form, else so many, drawn by the seed, in their order. The line is
/// the caller's, so that a function draws the same alone as among the others of its test.
template <typename Row>
QList<Row> drawn(const QList<Row> &rows, qsizetype count, int line = __builtin_LINE())
{
    if (isSoak() || rows.size() <= count)
        return rows;
    Chances chances = chancesAt(line);
    QList<Row> taken;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        if (chances.below(rows.size() - i) < count - taken.size())
            taken.append(rows.at(i));
    }
    return taken;
}

/// Which part of a long form is wanted: TESSARAY_PART=3/10 is the third of ten. Without it there is one, the whole.
struct Part
{
    qsizetype number = 0; ///< from 0
    qsizetype count = 1;
};
Part part();

/// The rows of the part that is wanted, so that a walk of hours can be made over several nights.
template <typename Row>
QList<Row> partOf(const QList<Row> &rows)
{
    QList<Row> taken;
    for (qsizetype i = part().number; i < rows.size(); i += part().count)
        taken.append(rows.at(i));
    return taken;
}

/// Whether a row of a matrix is run: in the long form, else for one in so many, drawn by the seed.
inline bool isDrawn(int oneIn, int line = __builtin_LINE())
{
    return isSoak() || chancesAt(line).below(oneIn) == 0;
}

/// How often something is done in the form that is run.
inline int times(int longForm, int shortForm)
{
    return isSoak() ? longForm : shortForm;
}

} // namespace support
