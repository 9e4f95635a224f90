#include "presets/TrackFilters.h"

#include "tools/Numbers.h"

#include <algorithm>
#include <functional>

using namespace Qt::StringLiterals;

namespace presets {

namespace {

using Clause = std::function<bool(const KXVideoTrack &)>;

const QString anyLanguage = u"Any Language"_s;
const QString anyCodec = u"Any Codec"_s;
const QString anyType = u"Any Type"_s;

/// One filter as it was stored.
class Filter final
{
public:
    Filter(FilterKind kind, const QVariantMap &values)
        : m_kind(kind)
        , m_values(values)
    {
    }

    QString text(const QString &word) const { return m_values.value(word).toString(); }
    QString choice() const { return text(u"currentTrackChoice"_s); }
    bool takesEveryProperty() const;
    QList<Clause> clauses() const;

private:
    QString channels() const;

    FilterKind m_kind;
    QVariantMap m_values;
};

/// Subtitles have none, whatever their filter says.
QString Filter::channels() const
{
    return m_kind == FilterKind::Audio ? text(u"currentChannels"_s) : anyType;
}

bool Filter::takesEveryProperty() const
{
    return text(u"currentLanguage"_s) == anyLanguage && text(u"currentCodec"_s) == anyCodec &&
           channels() == anyType;
}

/// The channels are compared as texts, on purpose: "10" counts as stereo.
QList<Clause> Filter::clauses() const
{
    QList<Clause> clauses;
    const QString language = text(u"currentLanguage"_s);
    const QString codec = text(u"currentCodec"_s);
    if (language != anyLanguage)
        clauses.append([language](const KXVideoTrack &track) { return track.trackLanguage() == language; });
    if (codec != anyCodec)
        clauses.append([codec](const KXVideoTrack &track) { return track.trackCodec() == codec; });
    if (channels() == u"Stereo Only"_s)
        clauses.append([](const KXVideoTrack &track) { return track.trackNumberOfChannels() <= u"2"_s; });
    else if (channels() == u"Surround Only"_s)
        clauses.append([](const KXVideoTrack &track) { return track.trackNumberOfChannels() > u"2"_s; });
    return clauses;
}

void tickAll(const TrackList &tracks)
{
    for (const TrackPointer &track : tracks)
        track->setTrackSelected(true);
}

/// True when the track was there to be ticked.
bool tickNumber(qint64 number, const TrackList &tracks)
{
    if (number < 1 || number > tracks.size())
        return false;
    tracks.at(number - 1)->setTrackSelected(true);
    return true;
}

/// True when any track fits. No clause at all (channels of an unknown word) fits none.
bool tickFitting(const QList<Clause> &clauses, const TrackList &tracks)
{
    bool any = false;
    for (const TrackPointer &track : tracks) {
        const bool fits =
            !clauses.isEmpty() &&
            std::all_of(clauses.begin(), clauses.end(), [&](const Clause &clause) { return clause(*track); });
        if (fits)
            track->setTrackSelected(true);
        any = any || fits;
    }
    return any;
}

/// True when the filter chose something in a way that can end the list.
bool apply(FilterKind kind, const Filter &filter, const TrackList &tracks)
{
    if (filter.choice() == numberedChoice(kind))
        return tickNumber(tools::leadingInteger(filter.text(u"currentTrackNumber"_s)), tracks);
    const bool isByProperties = filter.choice() == u"Tracks w/ Properties ..."_s;
    if (filter.choice() == u"All"_s || (isByProperties && filter.takesEveryProperty())) {
        tickAll(tracks);
        return false;
    }
    return isByProperties && tickFitting(filter.clauses(), tracks);
}

} // namespace

QVariantMap makeFilter(FilterKind kind, const QString &choice, const QString &language)
{
    QVariantMap filter{{u"currentTrackChoice"_s, choice},
                       {u"currentTrackNumber"_s, u"1"_s},
                       {u"currentLanguage"_s, language},
                       {u"currentCodec"_s, anyCodec}};
    if (kind == FilterKind::Audio)
        filter.insert(u"currentChannels"_s, anyType);
    return filter;
}

QVariantMap defaultFilter(FilterKind kind)
{
    return makeFilter(kind, numberedChoice(kind), anyLanguage);
}

QString numberedChoice(FilterKind kind)
{
    return kind == FilterKind::Audio ? u"Audio Track Number"_s : u"Subtitle Track Number"_s;
}

const QStringList &filterWords(FilterKind kind)
{
    static const QStringList subtitle{u"currentTrackChoice"_s, u"currentTrackNumber"_s, u"currentLanguage"_s,
                                      u"currentCodec"_s};
    static const QStringList audio = subtitle + QStringList{u"currentChannels"_s};
    return kind == FilterKind::Audio ? audio : subtitle;
}

void applyFilters(FilterKind kind, const QVariantList &filters, const QString &mode, const TrackList &tracks)
{
    for (const QVariant &values : filters) {
        const bool chose = apply(kind, Filter(kind, values.toMap()), tracks);
        if (chose && mode == u"Prioritized"_s)
            return;
    }
}

} // namespace presets
