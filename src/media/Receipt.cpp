#include "media/Receipt.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace media {

namespace {

using TrackKey = std::pair<QUrl, std::pair<int, QString>>;

TrackKey keyOf(const TrackFate &fate)
{
    return {fate.source, {fate.index, fate.kind}};
}

QList<TrackFate> withoutContradictions(const QList<TrackFate> &all)
{
    QList<TrackFate> kept;
    QSet<TrackKey> told;
    for (const TrackFate &fate : all) {
        if (fate.became == Became::LeftOut)
            continue;
        kept.append(fate);
        told.insert(keyOf(fate));
    }
    for (const TrackFate &fate : all) {
        if (fate.became != Became::LeftOut || told.contains(keyOf(fate)))
            continue;
        kept.append(fate);
        told.insert(keyOf(fate));
    }
    return kept;
}

int placeOf(const TrackFate &fate)
{
    constexpr int last = 1 << 30;
    return fate.index < 0 ? last : fate.index;
}

void sortBySource(QList<TrackFate> &tracks, const QList<QUrl> &sources)
{
    std::stable_sort(tracks.begin(), tracks.end(), [&](const TrackFate &one, const TrackFate &other) {
        const auto source = sources.indexOf(one.source);
        const auto otherSource = sources.indexOf(other.source);
        return source != otherSource ? source < otherSource : placeOf(one) < placeOf(other);
    });
}

QString nameOf(const TrackFate &fate)
{
    const QString number = fate.index < 0 ? QString() : u" %1"_s.arg(fate.index);
    const QString codec = fate.codec.isNull() ? QString() : u" (%1)"_s.arg(fate.codec);
    return fate.kind + number + codec + u" of "_s + fate.source.fileName();
}

/// Those that are left out for the same reason, and told in the same way, as the first one.
QList<TrackFate> alike(const QList<TrackFate> &tracks, const TrackFate &first)
{
    QList<TrackFate> found;
    for (const TrackFate &track : tracks) {
        if (track.told == first.told && track.source == first.source && track.kind == first.kind &&
            track.reason == first.reason)
            found.append(track);
    }
    return found;
}

QString sentenceOf(const QList<TrackFate> &tracks)
{
    const TrackFate &first = tracks.constFirst();
    const QString which =
        tracks.size() == 1
            ? u"The %1 was"_s.arg(nameOf(first))
            : u"%1 %2s of %3 were"_s.arg(QString::number(tracks.size()), first.kind, first.source.fileName());
    return which + u" left out. "_s + first.reason;
}

QString seconds(double value)
{
    return QString::number(value, 'f', 2) + u" s"_s;
}

/// "; 60.00 s of 60.02 s", or what is known of it.
QString lengthsOf(const TrackFate &fate)
{
    if (fate.outputSeconds && fate.sourceSeconds)
        return u"; "_s + seconds(*fate.outputSeconds) + u" of "_s + seconds(*fate.sourceSeconds);
    return fate.outputSeconds ? u"; "_s + seconds(*fate.outputSeconds) : QString();
}

QString sizesOf(const TrackFate &fate)
{
    if (fate.outputBytes && fate.sourceBytes)
        return u"; %1 bytes of %2"_s.arg(*fate.outputBytes).arg(*fate.sourceBytes);
    return fate.outputBytes ? u"; %1 bytes"_s.arg(*fate.outputBytes) : QString();
}

QString proofOf(const TrackFate &fate)
{
    switch (fate.proof) {
    case Proof::Lengths:
        return u"; lengths compared"_s;
    case Proof::Packets:
        return u"; packets counted"_s;
    case Proof::Bits:
        return u"; the same bits"_s;
    case Proof::NotProven:
        break;
    }
    return {};
}

QString verifiedOf(const TrackFate &fate)
{
    switch (fate.verified) {
    case Verified::NotProven:
        return u"; not proven bit for bit"_s;
    case Verified::Decodes:
        return u"; its key frames decode"_s;
    case Verified::SameBits: // proofOf() tells it
    case Verified::NotAsked:
        break;
    }
    return {};
}

/// A track in its own output: "audio 1 (alac)".
QString shortNameOf(const TrackFate &fate)
{
    const QString codec = fate.codec.isNull() ? QString() : u" (%1)"_s.arg(fate.codec);
    return fate.kind + u' ' + QString::number(fate.outputIndex < 0 ? fate.index : fate.outputIndex) + codec;
}

QString sentenceOfVerified(const QList<TrackFate> &tracks)
{
    QStringList unproven;
    bool isProven = false;
    bool decodes = false;
    for (const TrackFate &track : tracks) {
        isProven = isProven || track.verified == Verified::SameBits;
        decodes = decodes || track.verified == Verified::Decodes;
        if (track.verified == Verified::NotProven)
            unproven.append(shortNameOf(track));
    }
    QStringList found;
    if (!unproven.isEmpty())
        found << u"not proven bit for bit: "_s + unproven.join(u", "_s);
    else if (isProven)
        found << u"proven bit for bit"_s;
    if (decodes)
        found << u"its key frames decode"_s;
    return found.isEmpty() ? QString()
                           : tracks.constFirst().output.fileName() + u": "_s + found.join(u"; "_s) + u'.';
}

QString fortuneOf(const TrackFate &fate)
{
    const QString place = fate.output.fileName();
    switch (fate.became) {
    case Became::Copied:
        return u"copied into "_s + place;
    case Became::Reencoded:
        return (fate.to.isNull() ? u"re-encoded into "_s : u"re-encoded to %1 into "_s.arg(fate.to)) + place;
    case Became::Burned:
        return u"drawn into the picture of "_s + place;
    case Became::LeftOut:
        break;
    }
    return fate.reason.isNull() ? u"left out"_s : u"left out. "_s + fate.reason;
}

/// Why that was chosen for a track that is not left out.
QString choiceOf(const TrackFate &fate)
{
    return fate.became == Became::LeftOut || fate.reason.isNull() ? QString() : u". "_s + fate.reason;
}

} // namespace

Receipt receiptOf(const QList<MeantOutput> &outputs)
{
    QList<TrackFate> all;
    QList<QUrl> sources;
    for (const MeantOutput &output : outputs) {
        all += output.tracks;
        for (const QUrl &source : output.sources) {
            if (!sources.contains(source))
                sources.append(source);
        }
    }
    Receipt receipt{withoutContradictions(all)};
    sortBySource(receipt.tracks, sources);
    return receipt;
}

QString wordOf(Became became)
{
    switch (became) {
    case Became::Copied:
        return u"copied"_s;
    case Became::Reencoded:
        return u"reencoded"_s;
    case Became::Burned:
        return u"burned"_s;
    case Became::LeftOut:
        break;
    }
    return u"leftOut"_s;
}

QString wordOf(Proof proof)
{
    switch (proof) {
    case Proof::Lengths:
        return u"lengths"_s;
    case Proof::Packets:
        return u"packets"_s;
    case Proof::Bits:
        return u"bits"_s;
    case Proof::NotProven:
        break;
    }
    return u"notProven"_s;
}

QString proofWordOf(const TrackFate &fate)
{
    return wordOf(fate.verified == Verified::NotProven ? Proof::NotProven : fate.proof);
}

QStringList sentencesOf(const Receipt &receipt, Told told)
{
    QStringList sentences;
    for (const TrackFate &fate : receipt.tracks) {
        if (fate.became != Became::LeftOut || fate.told != told)
            continue;
        const QString sentence = sentenceOf(alike(receipt.tracks, fate));
        if (!sentences.contains(sentence))
            sentences.append(sentence);
    }
    return sentences;
}

QStringList sentencesOfVerified(const Receipt &receipt)
{
    QList<QUrl> outputs;
    QHash<QUrl, QList<TrackFate>> tracks;
    for (const TrackFate &track : receipt.tracks) {
        if (track.output.isEmpty())
            continue;
        if (!tracks.contains(track.output))
            outputs.append(track.output);
        tracks[track.output].append(track);
    }
    QStringList sentences;
    for (const QUrl &output : outputs)
        sentences << sentenceOfVerified(tracks.value(output));
    sentences.removeAll(QString());
    return sentences;
}

QStringList linesOf(const Receipt &receipt)
{
    QStringList lines;
    for (const TrackFate &fate : receipt.tracks)
        lines.append(nameOf(fate) + u": "_s + fortuneOf(fate) + lengthsOf(fate) + sizesOf(fate) +
                     proofOf(fate) + verifiedOf(fate) + choiceOf(fate));
    return lines;
}

} // namespace media
