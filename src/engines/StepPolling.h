#pragma once

#include "jobs/ProgressItem.h"
#include "steps/KXConverter.h"

#include <functional>

namespace engines {

/// The percentage of a step has fallen: its tool began something new, which is shown as its next step.
class StepCounter final
{
public:
    using Label = std::function<QString(const KXConverter &converter, int step)>;

    explicit StepCounter(const Label &label)
        : m_label(label)
    {
    }

    /// One poll of all converters (null ones have finished); answers whether all have.
    bool poll(const QList<ConverterPointer> &converters, const jobs::ProgressList &previous,
              jobs::ProgressList &current);
    int step() const { return m_step; }

private:
    jobs::ProgressItem itemFor(const KXConverter &converter, const QString &answer,
                               const jobs::ProgressList &previous, qsizetype position);

    Label m_label;
    int m_step = 1;
};

/// The same without counting: the label is the step's name.
bool pollSteps(const QList<ConverterPointer> &converters, const jobs::ProgressList &previous,
               jobs::ProgressList &current);

/// What a converter answers; one whose tool never ran has nothing to wait for.
QString polled(KXConverter &converter);

/// The item for an answer: "error" keeps what was shown before.
jobs::ProgressItem itemFor(const QString &label, const QString &answer, const jobs::ProgressList &previous,
                           qsizetype position);

} // namespace engines
