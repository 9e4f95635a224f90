#include "selection/AudioActions.h"

#include "tools/Numbers.h"

using namespace Qt::StringLiterals;

namespace selection {

namespace {

const QString passThru = u"Pass Thru"_s;
const QString aac2 = u"AAC (2-Ch.)"_s;
const QString aac51 = u"AAC (5.1)"_s;
const QString ac351 = u"AC3 (5.1)"_s;

/// Null for an output that is none of the four.
QString actionOf(const AudioOutput &output)
{
    const qint64 channels = tools::leadingInteger(output.channels);
    if (output.passesThrough())
        return passThru;
    if (output.codec == u"aac"_s && channels == 2)
        return aac2;
    if (output.codec == u"aac"_s && channels == 6)
        return aac51;
    return output.codec == u"ac3"_s ? ac351 : QString();
}

/// "384 kbps" is "384".
QString number(const QString &bitRate)
{
    return QString::number(tools::leadingInteger(bitRate));
}

} // namespace

const QStringList &audioActions()
{
    static const QStringList actions{passThru, aac2, aac51, ac351};
    return actions;
}

QStringList actionsOf(const AudioOutputs &outputs)
{
    QStringList actions;
    for (const AudioOutput &output : outputs) {
        const QString action = actionOf(output);
        if (!action.isNull() && !actions.contains(action))
            actions.append(action);
    }
    return actions;
}

AudioBitRates bitRatesOf(const AudioOutputs &outputs, AudioBitRates rates)
{
    for (const AudioOutput &output : outputs) {
        const QString rate = output.bitRate + u" kbps"_s;
        const QString action = actionOf(output);
        if (action == aac2)
            rates.aac2 = rate;
        else if (action == aac51)
            rates.aac51 = rate;
        else if (action == ac351)
            rates.ac351 = rate;
    }
    return rates;
}

AudioOutputs outputsFor(const QStringList &actions, const AudioBitRates &rates,
                        const QString &passThruBitRate)
{
    AudioOutputs outputs;
    for (const QString &action : actions) {
        if (action == passThru)
            outputs.append({u"passthru"_s, {}, passThruBitRate});
        else if (action == aac2)
            outputs.append({u"aac"_s, u"2"_s, number(rates.aac2)});
        else if (action == aac51)
            outputs.append({u"aac"_s, u"6"_s, number(rates.aac51)});
        else if (action == ac351)
            outputs.append({u"ac3"_s, u"6"_s, number(rates.ac351)});
    }
    return outputs;
}

} // namespace selection
