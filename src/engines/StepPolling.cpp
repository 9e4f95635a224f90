#include "engines/StepPolling.h"

#include "tools/Numbers.h"

using namespace Qt::StringLiterals;

namespace engines {

QString polled(KXConverter &converter)
{
    return converter.doShell_ID().isEmpty() ? u"Complete"_s : converter.monitorConversion();
}

jobs::ProgressItem itemFor(const QString &label, const QString &answer, const jobs::ProgressList &previous,
                           qsizetype position)
{
    if (answer != u"error"_s)
        return {label, answer};
    return position < previous.size() ? previous.at(position) : jobs::ProgressItem{label, u""_s};
}

jobs::ProgressItem StepCounter::itemFor(const KXConverter &converter, const QString &answer,
                                        const jobs::ProgressList &previous, qsizetype position)
{
    const bool isNumber = answer.endsWith(u'%');
    const QString before = position < previous.size() ? previous.at(position).progress : QString();
    if (isNumber && tools::leadingInteger(before) > tools::leadingInteger(answer))
        ++m_step;
    return engines::itemFor(m_label(converter, m_step), answer, previous, position);
}

bool StepCounter::poll(const QList<ConverterPointer> &converters, const jobs::ProgressList &previous,
                       jobs::ProgressList &current)
{
    qsizetype finished = 0;
    for (const ConverterPointer &converter : converters) {
        const QString answer = converter ? polled(*converter) : u"Complete"_s;
        if (answer == u"Complete"_s)
            ++finished;
        if (converter)
            current.append(itemFor(*converter, answer, previous, current.size()));
    }
    return finished >= converters.size();
}

bool pollSteps(const QList<ConverterPointer> &converters, const jobs::ProgressList &previous,
               jobs::ProgressList &current)
{
    qsizetype finished = 0;
    for (const ConverterPointer &converter : converters) {
        const QString answer = converter ? polled(*converter) : u"Complete"_s;
        if (answer == u"Complete"_s)
            ++finished;
        if (converter)
            current.append(itemFor(converter->stepName(), answer, previous, current.size()));
    }
    return finished >= converters.size();
}

} // namespace engines
