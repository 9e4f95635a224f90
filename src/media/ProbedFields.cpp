#include "media/ProbedFields.h"

#include "tools/Numbers.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace media {

namespace {

bool isNumber(const QString &value, qsizetype mostDigits)
{
    return tools::isAllDigits(value) && value.size() <= mostDigits;
}

bool isIndex(const QString &value)
{
    return isNumber(value, 6);
}

bool isPixels(const QString &value)
{
    return isNumber(value, 6);
}

bool isChannels(const QString &value)
{
    return isNumber(value, 4);
}

bool isBitRate(const QString &value)
{
    return isNumber(value, 12);
}

/// -99 and its like stand for one that is not known.
bool isLevel(const QString &value)
{
    return isNumber(value.startsWith(u'-') ? value.mid(1) : value, 4);
}

bool isRatio(const QString &value)
{
    const qsizetype stroke = value.indexOf(u'/');
    return stroke > 0 && isNumber(value.left(stroke), 10) && isNumber(value.mid(stroke + 1), 10);
}

bool isSeconds(const QString &value)
{
    const qsizetype point = value.indexOf(u'.');
    return point < 0 ? isNumber(value, 12)
                     : isNumber(value.left(point), 12) && isNumber(value.mid(point + 1), 9);
}

bool isKind(const QString &value)
{
    static constexpr std::array kinds{u"video",      u"audio",   u"subtitle", u"data",
                                      u"attachment", u"unknown", u"nb"};
    return std::any_of(kinds.begin(), kinds.end(),
                       [&](const char16_t *kind) { return value == QStringView(kind); });
}

bool isWords(const QString &value, QStringView alsoAllowed)
{
    constexpr qsizetype longest = 64;
    return value.size() <= longest && std::all_of(value.begin(), value.end(), [&](QChar c) {
               return (c.unicode() < 128 && c.isLetterOrNumber()) || alsoAllowed.contains(c);
           });
}

bool isCodecName(const QString &value)
{
    return isWords(value, u" _-./+");
}

bool isProfile(const QString &value)
{
    return isWords(value, u" _-./+:()");
}

struct Field
{
    const char16_t *key;
    bool (*fits)(const QString &value);
};

constexpr std::array fields = {
    Field{u"index", isIndex},           Field{u"codec_type", isKind},
    Field{u"codec_name", isCodecName},  Field{u"width", isPixels},
    Field{u"height", isPixels},         Field{u"channels", isChannels},
    Field{u"bit_rate", isBitRate},      Field{u"level", isLevel},
    Field{u"profile", isProfile},       Field{u"avg_frame_rate", isRatio},
    Field{u"time_base", isRatio},       Field{u"sample_rate", isIndex},
    Field{u"pix_fmt", isCodecName},     Field{u"extradata_hash", isProfile},
    Field{u"field_order", isCodecName}, Field{u"color_transfer", isCodecName},
    Field{u"duration", isSeconds},
};

const Field *fieldOf(const QString &key)
{
    const auto field = std::find_if(fields.begin(), fields.end(),
                                    [&](const Field &known) { return key == QStringView(known.key); });
    return field == fields.end() ? nullptr : &*field;
}

} // namespace

bool fitsItsField(const QString &key, const QString &value)
{
    const Field *field = fieldOf(key);
    return field == nullptr || field->fits(value);
}

bool isTypedField(const QString &key)
{
    return fieldOf(key) != nullptr;
}

} // namespace media
