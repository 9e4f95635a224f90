#include "support/media/Fates.h"

using namespace Qt::StringLiterals;
using media::Became;
using media::TrackFate;

namespace support {

namespace {

QString fortuneOf(const TrackFate &fate)
{
    switch (fate.became) {
    case Became::Copied:
        return u"copied"_s;
    case Became::Reencoded:
        return u"> "_s + fate.to;
    case Became::Burned:
        return u"burned"_s;
    case Became::LeftOut:
        break;
    }
    return u"left: "_s + fate.reason;
}

} // namespace

QString told(const TrackFate &fate)
{
    QStringList words{fate.source.fileName() + u':' + (fate.index < 0 ? u"-"_s : QString::number(fate.index)),
                      fate.kind};
    if (!fate.codec.isNull())
        words.append(fate.codec);
    words.append(fortuneOf(fate));
    if (fate.outputIndex >= 0)
        words.append(u'#' + QString::number(fate.outputIndex));
    return words.join(u' ');
}

QStringList told(const QList<TrackFate> &fates)
{
    QStringList lines;
    for (const TrackFate &fate : fates)
        lines.append(told(fate));
    return lines;
}

QStringList toldPatterns(const QList<TrackFate> &patterns)
{
    QStringList lines;
    for (const TrackFate &pattern : patterns) {
        const QString source = pattern.source.isEmpty() ? QString() : pattern.source.fileName() + u": "_s;
        const QString codec = pattern.codec.isNull() ? QString() : u' ' + pattern.codec;
        lines.append(source + pattern.kind + codec + u' ' + fortuneOf(pattern));
    }
    return lines;
}

} // namespace support
