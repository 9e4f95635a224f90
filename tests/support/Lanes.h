#pragma once

#include <QList>
#include <QString>
#include <QtGlobal>

#include <memory>
#include <optional>
#include <vector>

namespace support {

/// Places in which runs that wait more than they work go on at the same time. Each lane has surroundings of
/// its own in which one case after the other is run: begin(case) starts one, isFree() says that none is going
/// on, and look() answers what was wrong with it once it is over (null: nothing), no value before.
template <typename Lane>
class Lanes final
{
public:
    explicit Lanes(size_t count)
    {
        for (size_t i = 0; i < count; ++i)
            m_lanes.push_back(std::make_unique<Lane>());
    }

    /// Runs all cases. What is wrong is told when it is found; answers in how many cases something was.
    template <typename Case>
    qsizetype offencesIn(QList<Case> cases)
    {
        qsizetype offences = 0;
        while (fill(cases)) {
            for (const auto &lane : m_lanes)
                offences += !lane->isFree() && isOffence(lane->look());
        }
        return offences;
    }

private:
    /// Gives every free lane a case; false when nothing is left and none is going on.
    template <typename Case>
    bool fill(QList<Case> &cases)
    {
        bool isBusy = false;
        for (const auto &lane : m_lanes) {
            if (lane->isFree() && !cases.isEmpty())
                lane->begin(cases.takeFirst());
            isBusy = isBusy || !lane->isFree();
        }
        return isBusy;
    }

    static bool isOffence(const std::optional<QString> &offence)
    {
        if (!offence || offence->isNull())
            return false;
        qWarning("%s", qPrintable(*offence));
        return true;
    }

    std::vector<std::unique_ptr<Lane>> m_lanes;
};

} // namespace support
