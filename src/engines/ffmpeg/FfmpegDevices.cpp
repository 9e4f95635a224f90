#include "engines/ffmpeg/FfmpegDevices.h"

#include "engines/ffmpeg/FfmpegArguments.h"
#include "media/KXVideoTrack.h"
#include "selection/KXSelection.h"
#include "tools/Numbers.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

using tools::OptionItem;

namespace engines {

namespace {

constexpr std::array appNames = {
    std::pair{OutputKind::Mp4, u"Pollenta"},
    std::pair{OutputKind::Mkv, u"Tessaray"},
    std::pair{OutputKind::Avi, u"Marbleon"},
};

bool isAbove(const QString &number, int cap)
{
    return cap > 0 && tools::leadingInteger(number) > cap;
}

bool isReencoded(const KXSelection &selection)
{
    const TrackPointer video = videoTrackOf(selection.trackList());
    return video && video->userCodec() != u"passthru"_s;
}

} // namespace

OutputKind outputKindNamed(const QString &appName)
{
    for (const auto &[kind, name] : appNames) {
        if (appName == QStringView(name))
            return kind;
    }
    return OutputKind::Unknown;
}

QString appNameForDevice(const QString &device)
{
    const OutputKind wanted = selection::outputKindFor(device);
    const auto found =
        std::find_if(appNames.begin(), appNames.end(), [&](const auto &row) { return row.first == wanted; });
    return QString::fromUtf16(found->second);
}

tools::OptionList levelArguments(const QString &device)
{
    const selection::Target *target = selection::targetNamed(device);
    tools::OptionList arguments;
    for (const int level : target != nullptr ? target->levels : QList<int>())
        arguments << u"-level" << OptionItem::ofNumber(level);
    return arguments;
}

void applyDeviceCaps(KXSelection &selection, OutputKind kind)
{
    const selection::Target *target = selection::targetNamed(selection.theDevice());
    if (target == nullptr || kind != OutputKind::Mp4 || !isReencoded(selection))
        return;
    if (isAbove(selection.userVideoBitRate(), target->bitRateCap))
        selection.setUserVideoBitRate(QString::number(target->bitRateCap));
    if (isAbove(selection.userWidth(), target->widthCap))
        selection.setUserWidth(QString::number(target->widthCap));
}

} // namespace engines
