// Whatever a media file makes ffprobe print, the readers and the track builder must take it, and every field
// that anything is decided by comes out in the form that it can have.
#include "ProbeReaderCheck.h"
#include "media/ProbeReader.h"
#include "media/TrackBuilder.h"

#include <QUrl>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

void buildTracks(const QList<QVariantMap> &streams)
{
    const QUrl file = QUrl::fromLocalFile(u"/films/film.avi"_s);
    media::TrackBuilder builder(file, streams.size());
    for (const QVariantMap &stream : streams)
        builder.add(stream, u"h264"_s);
    media::nameUntitledTracks(builder.tracks());
    require(builder.tracks().size() <= streams.size());
    for (const TrackPointer &track : builder.tracks())
        require(!track->trackTitle().startsWith(u"none"_s) && track->trackCodec() != u"none"_s);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *bytes, size_t size)
{
    const QString output =
        QString::fromUtf8(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(size));
    media::holdsStreamList(output);
    const QList<QVariantMap> streams = media::streamsIn(output);
    require(streams.size() <= output.count(u'{'));
    const QString offence = fuzz::ProbeReaderCheck::offenceOf(output, streams);
    if (!offence.isNull())
        std::fprintf(stderr, "%s\n", qPrintable(offence));
    require(offence.isNull());
    require(media::streamLineCodecs(output).size() <= output.count(u'\n') + 1);
    media::containerBitRate(output);
    buildTracks(streams);
    return 0;
}
