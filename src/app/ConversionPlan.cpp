#include "app/ConversionPlan.h"

#include "media/KXVideoFile.h"
#include "media/ProbeReader.h"
#include "tools/Numbers.h"

#include <QSet>

using namespace Qt::StringLiterals;
using media::textIn;

namespace app {

namespace {

/// The word of a receipt for a stream's kind.
QString kindOf(const QVariantMap &stream)
{
    const QString type = textIn(stream, u"codec_type"_s);
    const bool isCover = textIn(stream.value(u"disposition"_s).toMap(), u"attached_pic"_s) == u"1"_s;
    if (type == u"video"_s)
        return isCover ? u"cover"_s : type;
    const bool isNamed = QStringList{u"audio"_s, u"subtitle"_s, u"attachment"_s}.contains(type);
    return isNamed ? type : u"data"_s;
}

QList<media::MeantOutput> meantBy(const KXJob &job)
{
    QList<media::MeantOutput> outputs;
    for (const ConverterPointer &converter : job.stepConverterList()) {
        if (converter && !converter->isTemporaryOutput())
            outputs += converter->meantOutputs();
    }
    return outputs;
}

/// That fonts are left out of a film with styled subtitles, and the like, is told before too.
QStringList wordsOf(const media::Receipt &receipt)
{
    return media::sentencesOf(receipt, media::Told::AsAWarning) +
           media::sentencesOf(receipt, media::Told::AsANote);
}

} // namespace

PlannedFilm PlannedFilm::of(const KXVideoFile &file)
{
    PlannedFilm film{file.seconds(), {}};
    for (const QVariant &value : file.ffprobeResultsDictionaryArray()) {
        const QVariantMap stream = value.toMap();
        const QString codec = textIn(stream, u"codec_name"_s);
        film.streams.append({static_cast<int>(tools::leadingInteger(textIn(stream, u"index"_s))),
                             kindOf(stream), codec.isEmpty() ? QString() : codec});
    }
    return film;
}

ConversionPlan planOf(KXJob &job, const PlannedFilm &film)
{
    const QUrl source = job.jobSelection()->videoTrackFileURL();
    ConversionPlan plan;
    plan.source = source;
    plan.target = job.jobSelection()->theDevice();
    plan.seconds = film.seconds;
    plan.size = selection::estimateOf(*job.jobSelection(), film.seconds);
    job.plan();
    if (const QString problem = job.startProblem(); !problem.isNull())
        plan.problems.append(problem);
    QList<media::MeantOutput> complete;
    for (const media::MeantOutput &output : meantBy(job)) {
        plan.outputs.append(output.output);
        complete.append(media::completed(output, {{source, film.streams}}));
    }
    const media::Receipt receipt = media::receiptOf(complete);
    plan.tracks = receipt.tracks;
    plan.notes = wordsOf(receipt);
    if (plan.size && plan.size->isLarger())
        plan.notes.append(plan.size->wordOfGrowth());
    return plan;
}

} // namespace app
