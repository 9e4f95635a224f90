#include "media/CodecVocabulary.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace media {

struct CodecVocabulary::Row
{
    QStringList words;
    QString codec;
    QString extension;
};

namespace {

bool matches(const QString &word, const QString &name)
{
    return word.contains(name, Qt::CaseInsensitive) || name.contains(word, Qt::CaseInsensitive);
}

} // namespace

CodecVocabulary::CodecVocabulary(std::initializer_list<Row> rows)
{
    for (const Row &row : rows) {
        m_codecs.append(row.words);
        m_infos.append(row.codec);
        m_extensions.append(row.extension);
    }
}

// clang-format off
/// "div3" stands twice, harmlessly.
const CodecVocabulary &CodecVocabulary::video()
{
    static const CodecVocabulary table{
        {{u"xvid"_s, u"dx50"_s, u"div3"_s, u"divx"_s, u"div2"_s, u"div3"_s, u"vfw"_s, u"mpeg4"_s, u"mpeg-4"_s},
         u"mpeg4"_s, u"avi"_s},
        {{u"avc"_s, u"h264"_s}, u"h264"_s, u"h264"_s},
        {{u"real"_s}, u"rm"_s, u"rm"_s},
        {{u"wmv"_s}, u"wmv"_s, u"wmv"_s},
        {{u"sorenson"_s, u"h263"_s, u"flv"_s}, u"h263"_s, u"h263"_s},
        {{u"V_MS"_s, u"VFW"_s, u"VC-1"_s, u"WVC1"_s}, u"vc1"_s, u"wmv"_s},
        {{u"MPEG2"_s, u"MPEG-2"_s}, u"mpeg2"_s, u"mpg"_s},
        {{u"mjpeg"_s}, u"mjpeg"_s, u"mjpeg"_s},
        {{u"dvvideo"_s}, u"dv"_s, u"dv"_s},
    };
    return table;
}

const CodecVocabulary &CodecVocabulary::audio()
{
    static const CodecVocabulary table{
        {{u"vorbis"_s, u"ogg"_s}, u"ogg"_s, u"ogg"_s},
        {{u"mp3"_s, u"mpeg3"_s, u"mpeg/l3"_s, u"mpeg-1 Audio layer 3"_s, u"MPEG-1/2 L3"_s,
          u"mpeg-2 Audio layer 3"_s, u"Audio layer 3"_s, u"MPA2L3"_s}, u"mp3"_s, u"mp3"_s},
        {{u"mp2"_s, u"mpeg2"_s, u"mpeg/l2"_s, u"mpeg-1 Audio layer 2"_s, u"MPEG-1/2 L2"_s,
          u"mpeg-2 Audio layer 2"_s, u"Audio layer 2"_s, u"MPA2L2"_s}, u"mp2"_s, u"mp2"_s},
        {{u"aac"_s, u"mpeg4"_s}, u"aac"_s, u"aac"_s},
        {{u"ac3"_s, u"ac-3"_s}, u"ac3"_s, u"ac3"_s},
        {{u"pcm"_s}, u"wav"_s, u"wav"_s},
        {{u"dts"_s, u"dca"_s}, u"dts"_s, u"dts"_s},
        {{u"wma"_s}, u"wma"_s, u"wma"_s},
        {{u"flac"_s}, u"flac"_s, u"flac"_s},
        {{u"Wavpack"_s}, u"Wavpack"_s, u"wv"_s},
        {{u"truehd"_s, u"true"_s}, u"truehd"_s, u"thd"_s},
        {{u"dtshd"_s, u"dts-hd"_s}, u"dtshd"_s, u"dtshd"_s},
    };
    return table;
}

/// "xxx" and "yyy" mark kinds that have no form as a file.
const CodecVocabulary &CodecVocabulary::subtitle()
{
    static const CodecVocabulary table{
        {{u"ssa"_s}, u"ssa"_s, u"ssa"_s},
        {{u"ass"_s}, u"ass"_s, u"ass"_s},
        {{u"utf8"_s, u"utf-8"_s, u"subrip"_s}, u"srt"_s, u"srt"_s},
        {{u"VobSub"_s, u"S_VOBSUB"_s, u"dvd_subtitle"_s, u"dvdsub"_s}, u"vobsub"_s, u"idx"_s},
        {{u"MicroDVD"_s}, u"sub"_s, u"sub"_s},
        {{u"S_HDMV"_s, u"PGS"_s}, u"pgs"_s, u"sup"_s},
        {{u"tx3g"_s, u"timed"_s, u"3gpp"_s, u"mov_text"_s}, u"ttxt"_s, u"ttxt"_s},
        {{u"dvb_teletext"_s, u"subtitle"_s}, u"teletext"_s, u"xxx"_s},
        {{u"dvb_subtitle"_s, u"dvbsub"_s}, u"dvbsub"_s, u"yyy"_s},
    };
    return table;
}
// clang-format on

const CodecVocabulary &CodecVocabulary::of(TrackKind kind)
{
    switch (kind) {
    case TrackKind::Video:
        return video();
    case TrackKind::Audio:
        return audio();
    case TrackKind::Subtitle:
        break;
    }
    return subtitle();
}

std::optional<CodecVocabulary::Match> CodecVocabulary::classifyNewer(TrackKind kind, const QString &codecName)
{
    static const QHash<QString, Match> forms{
        {u"hevc"_s, {u"hevc"_s, u"hevc"_s}},     {u"av1"_s, {u"av1"_s, u"ivf"_s}},
        {u"vp8"_s, {u"vp8"_s, u"ivf"_s}},        {u"vp9"_s, {u"vp9"_s, u"ivf"_s}},
        {u"prores"_s, {u"prores"_s, u"mov"_s}},  {u"theora"_s, {u"theora"_s, u"ogv"_s}},
        {u"opus"_s, {u"opus"_s, u"opus"_s}},     {u"alac"_s, {u"alac"_s, u"m4a"_s}},
        {u"amr_nb"_s, {u"amr_nb"_s, u"amr"_s}},  {u"amr_wb"_s, {u"amr_wb"_s, u"amr"_s}},
    };
    if (codecName.isEmpty())
        return std::nullopt;
    const QString name = codecName.toLower();
    const auto known = forms.constFind(name);
    if (known != forms.constEnd())
        return *known;
    return Match{name, kind == TrackKind::Audio ? u"mka"_s : u"mkv"_s};
}

std::optional<CodecVocabulary::Match> CodecVocabulary::classify(const QString &codecName) const
{
    std::optional<Match> last;
    if (codecName.isEmpty())
        return last;
    for (qsizetype group = 0; group < m_codecs.size(); ++group) {
        for (const QString &word : m_codecs.at(group)) {
            if (matches(word, codecName))
                last = Match{m_infos.at(group), m_extensions.at(group)};
        }
    }
    return last;
}

} // namespace media
