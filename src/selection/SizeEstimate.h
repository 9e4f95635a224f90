#pragma once

#include "selection/KXSelection.h"

#include <optional>

namespace selection {

/// What a conversion is likely to give, known from bit rates and length before anything runs. A plain value.
struct SizeEstimate
{
    qint64 bytes = 0;
    qint64 sourceBytes = 0; ///< of the film and what is added to it; 0: not known

    /// Whether the result is larger than its source by more than an estimate errs.
    bool isLarger() const;
    /// "About 52 MB, more than the 20 MB of the source."; a null text where it is not larger.
    QString wordOfGrowth() const;
};

/// Of a selection whose choices are made, as it is before a job takes it. No value where the length or a
/// bit rate that counts is not known.
std::optional<SizeEstimate> estimateOf(const KXSelection &selection, std::optional<double> seconds);

/// "52 MB", "1.4 GB", in powers of ten.
QString sizeText(qint64 bytes);

} // namespace selection
