#include "engines/MkvTrackNumbers.h"

#include "engines/FfmpegSubtitles.h"
#include "tools/Numbers.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;
using tools::OptionItem;
using tools::OptionList;

namespace engines {

namespace {

QStringList numbersOfType(const QJsonArray &tracks, const QString &type)
{
    QStringList numbers;
    for (const QJsonValue &track : tracks) {
        if (track[u"type"_s].toString() == type)
            numbers.append(QString::number(track[u"id"_s].toInt()));
    }
    return numbers;
}

/// mkvmerge's word for the kind.
QString typeOf(const KXVideoTrack &track)
{
    return isSubtitle(track) ? u"subtitles"_s : track.trackType().toLower();
}

TrackList inStreamOrder(TrackList tracks)
{
    std::sort(tracks.begin(), tracks.end(), [](const TrackPointer &one, const TrackPointer &other) {
        return tools::leadingInteger(one->trackFfmpegID()) < tools::leadingInteger(other->trackFfmpegID());
    });
    return tracks;
}

QString replaced(const QString &number, const TrackNumbers &numbers)
{
    return numbers.value(number, number);
}

/// "--language 1:" and "-a 1,2" with other numbers; everything else as it is.
QString withNumbers(const QString &text, const TrackNumbers &numbers)
{
    static const QRegularExpression option(u"^(--[a-z-]+ )([0-9]+)(:.*)$"_s);
    static const QRegularExpression list(u"^(-[das] )([0-9,]+)$"_s);
    if (const auto match = option.match(text); match.hasMatch())
        return match.captured(1) + replaced(match.captured(2), numbers) + match.captured(3);
    const auto match = list.match(text);
    if (!match.hasMatch())
        return text;
    QStringList ids;
    for (const QString &id : match.captured(2).split(u','))
        ids.append(replaced(id, numbers));
    return match.captured(1) + ids.join(u',');
}

/// The source at the end of a file's options: nothing but data.
bool isSource(const OptionItem &item)
{
    return item.hasData() && item.before().isEmpty();
}

} // namespace

bool needsIdentification(const QUrl &file)
{
    const QString extension = QFileInfo(file.toLocalFile()).suffix().toLower();
    return extension != u"mkv"_s && extension != u"avi"_s;
}

TrackNumbers trackNumbersIn(const QString &identification, const TrackList &tracksOfFile)
{
    const QJsonArray tracks =
        QJsonDocument::fromJson(identification.toUtf8()).object().value(u"tracks"_s).toArray();
    TrackNumbers numbers;
    for (const QString &type : {u"video"_s, u"audio"_s, u"subtitles"_s}) {
        TrackList ours;
        for (const TrackPointer &track : tracksOfFile) {
            if (typeOf(*track) == type)
                ours.append(track);
        }
        const QStringList theirs = numbersOfType(tracks, type);
        if (theirs.size() != ours.size())
            continue;
        const TrackList ordered = inStreamOrder(ours);
        for (qsizetype i = 0; i < ordered.size(); ++i) {
            if (ordered.at(i)->trackMkvmergeID() != theirs.at(i))
                numbers.insert(ordered.at(i)->trackMkvmergeID(), theirs.at(i));
        }
    }
    return numbers;
}

OptionList withTrackNumbers(const OptionList &meant, const QHash<QString, TrackNumbers> &numbersByPath)
{
    OptionList launched = meant;
    qsizetype begin = 0;
    for (qsizetype end = 0; end < launched.size(); ++end) {
        if (!isSource(launched.at(end)))
            continue;
        const TrackNumbers numbers = numbersByPath.value(launched.at(end).data());
        for (qsizetype i = begin; i < end && !numbers.isEmpty(); ++i) {
            if (!launched.at(i).isFile())
                launched[i] = launched.at(i).withBefore(withNumbers(launched.at(i).before(), numbers));
        }
        begin = end + 1;
    }
    return launched;
}

} // namespace engines
