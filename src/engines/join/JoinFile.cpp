#include "engines/join/JoinFile.h"

using namespace Qt::StringLiterals;

namespace engines {

namespace {

/// "Input #0, matroska,webm, from '/v/a.mkv':"
QString formatIn(const QString &words)
{
    const QString start = u"Input #0, "_s;
    for (const QString &line : words.split(u'\n')) {
        if (line.startsWith(start))
            return line.mid(start.size()).section(u", from '"_s, 0, 0);
    }
    return {};
}

QString sizeOf(const QVariantMap &stream)
{
    const QString width = media::textIn(stream, u"width"_s);
    const QString height = media::textIn(stream, u"height"_s);
    return width.isEmpty() || height.isEmpty() ? QString() : width + u'x' + height;
}

JoinStream joinStreamOf(const QVariantMap &stream)
{
    const auto text = [&](const QString &key) { return media::textIn(stream, key); };
    const QVariantMap flags = stream.value(u"disposition"_s).toMap();
    JoinStream found;
    found.type = text(u"codec_type"_s);
    found.codec = text(u"codec_name"_s);
    found.size = sizeOf(stream);
    found.pixelFormat = text(u"pix_fmt"_s);
    found.frameRate = text(u"avg_frame_rate"_s);
    found.sampleRate = text(u"sample_rate"_s);
    found.channels = text(u"channels"_s);
    found.extradata = text(u"extradata_hash"_s);
    found.timeBase = text(u"time_base"_s);
    found.isCover = media::textIn(flags, u"attached_pic"_s) == u"1"_s;
    return found;
}

} // namespace

bool JoinStream::isExtra() const
{
    return isCover || (type != u"video"_s && type != u"audio"_s && type != u"subtitle"_s);
}

JoinFile joinFileOf(const QUrl &url, const media::Printout &printed, const tools::ToolPlaces *places)
{
    JoinFile file;
    file.url = url;
    file.words = printed.words;
    file.format = formatIn(printed.words);
    const auto film = std::make_shared<KXVideoFile>(places);
    if (film->initializeFromPrintout(url, printed) == u"OK"_s)
        file.film = film;
    if (!media::holdsStreamList(printed.json))
        return file;
    for (const QVariantMap &stream : media::streamsIn(printed.json)) {
        if (stream.contains(u"index"_s) || stream.contains(u"codec_type"_s)) // else what is said beside one
            file.streams.append(joinStreamOf(stream));
    }
    return file;
}

} // namespace engines
