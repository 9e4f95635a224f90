#include "media/CheckWords.h"

#include "media/FilmCheck.h"

using namespace Qt::StringLiterals;

namespace media {

QString fineSeconds(double seconds)
{
    return QString::number(seconds, 'f', 2);
}

QString withTimes(const QString &sentence, double one, double other)
{
    const bool isCoarse = clockTime(one) != clockTime(other);
    return sentence.arg(isCoarse ? clockTime(one) : fineSeconds(one) + u" s"_s,
                        isCoarse ? clockTime(other) : fineSeconds(other) + u" s"_s);
}

QString asSentence(const QString &words)
{
    return words.endsWith(u'.') ? words : words + u'.';
}

QString kindWord(const QString &kind, qint64 count)
{
    if (kind == u"attachment"_s || kind == u"cover"_s)
        return count == 1 ? kind : kind + u's';
    return kind + (count == 1 ? u" track"_s : u" tracks"_s);
}

} // namespace media
