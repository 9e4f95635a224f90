#include "media/StreamForm.h"

#include "media/ProbeReader.h"
#include "tools/Numbers.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace media {

namespace {

int numberOf(const QVariantMap &stream, const QString &key)
{
    constexpr qint64 most = 1'000'000;
    return static_cast<int>(std::clamp<qint64>(tools::leadingInteger(textIn(stream, key)), 0, most));
}

/// 0 where the pair stands for none: "0/0".
double quotientOf(const QString &ratio)
{
    const double value = ratio.section(u'/', 0, 0).toDouble() / ratio.section(u'/', 1, 1).toDouble();
    return std::isfinite(value) && value > 0 ? value : 0;
}

/// "8.021" of the stream, or the "00:00:08.021000000" of a tag that muxers leave.
double secondsOf(const QVariantMap &stream)
{
    const double own = textIn(stream, u"duration"_s).toDouble();
    return own > 0 && std::isfinite(own) ? own : clockSeconds(tagIn(stream, u"duration"_s));
}

} // namespace

bool StreamForm::isInterlaced() const
{
    return QStringList{u"tt"_s, u"bb"_s, u"tb"_s, u"bt"_s}.contains(fieldOrder);
}

bool StreamForm::isHighRange() const
{
    return transfer == u"smpte2084"_s || transfer == u"arib-std-b67"_s;
}

StreamForm streamFormOf(const QVariantMap &stream)
{
    StreamForm form;
    form.profile = textIn(stream, u"profile"_s);
    form.level = numberOf(stream, u"level"_s);
    form.pixelFormat = textIn(stream, u"pix_fmt"_s);
    form.fieldOrder = textIn(stream, u"field_order"_s);
    form.transfer = textIn(stream, u"color_transfer"_s);
    form.width = numberOf(stream, u"width"_s);
    form.height = numberOf(stream, u"height"_s);
    form.frameRate = quotientOf(textIn(stream, u"avg_frame_rate"_s));
    form.sampleRate = numberOf(stream, u"sample_rate"_s);
    form.seconds = secondsOf(stream);
    return form;
}

} // namespace media
