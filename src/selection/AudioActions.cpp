#include "selection/AudioActions.h"

#include "tools/Numbers.h"

using namespace Qt::StringLiterals;

namespace selection {

namespace {

const QString passThru = u"Pass Thru"_s;
const QString aac2 = u"AAC (2-Ch.)"_s;
const QString aac51 = u"AAC (5.1)"_s;
const QString ac351 = u"AC3 (5.1)"_s;

QString text(const QVariantMap &entry, const QString &key)
{
    return entry.value(key).toString();
}

/// Null for an output that is none of the four.
QString actionOf(const QVariantMap &entry)
{
    const QString codec = text(entry, u"userCodec"_s);
    const qint64 channels = tools::leadingInteger(text(entry, u"userNumberOfChannels"_s));
    if (codec == u"passthru"_s)
        return passThru;
    if (codec == u"aac"_s && channels == 2)
        return aac2;
    if (codec == u"aac"_s && channels == 6)
        return aac51;
    return codec == u"ac3"_s ? ac351 : QString();
}

QVariantMap entry(const QString &codec, const QString &bitRate, const QString &channels)
{
    return {{u"userCodec"_s, codec}, {u"userBitRate"_s, bitRate}, {u"userNumberOfChannels"_s, channels}};
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

QStringList actionsOf(const AudioSettingsList &settings)
{
    QStringList actions;
    for (const QVariantMap &entry : settings) {
        const QString action = actionOf(entry);
        if (!action.isNull() && !actions.contains(action))
            actions.append(action);
    }
    return actions;
}

AudioBitRates bitRatesOf(const AudioSettingsList &settings, AudioBitRates rates)
{
    for (const QVariantMap &entry : settings) {
        const QString rate = text(entry, u"userBitRate"_s) + u" kbps"_s;
        const QString action = actionOf(entry);
        if (action == aac2)
            rates.aac2 = rate;
        else if (action == aac51)
            rates.aac51 = rate;
        else if (action == ac351)
            rates.ac351 = rate;
    }
    return rates;
}

AudioSettingsList settingsFor(const QStringList &actions, const AudioBitRates &rates,
                              const KXVideoTrack &track, const QString &passThruBitRate)
{
    AudioSettingsList settings;
    for (const QString &action : actions) {
        if (action == passThru)
            settings.append(entry(u"passthru"_s, passThruBitRate, track.trackNumberOfChannels()));
        else if (action == aac2)
            settings.append(entry(u"aac"_s, number(rates.aac2), u"2"_s));
        else if (action == aac51)
            settings.append(entry(u"aac"_s, number(rates.aac51), u"6"_s));
        else if (action == ac351)
            settings.append(entry(u"ac3"_s, number(rates.ac351), u"6"_s));
    }
    return settings;
}

} // namespace selection
