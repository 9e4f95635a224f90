#include "Bench.h"

#include "media/KXVideoFile.h"
#include "tools/ToolPlaces.h"

using namespace Qt::StringLiterals;

namespace bench {

namespace {

class Places final : public tools::ToolPlaces
{
public:
    explicit Places(const QString &resources)
        : m_resources(QUrl::fromLocalFile(resources))
    {
    }
    QUrl toolsLocation() const override { return m_resources; }
    QUrl resourcesLocation() const override { return m_resources; }
    QString workingFolder() const override { return u"/"_s; }

private:
    QUrl m_resources;
};

/// The three lines of a probe of a file whose video has no bit rate of its own.
QStringList linesByHand(const QString &resources, const QString &clip)
{
    const QString start = u"\"%1/ffmpeg/ffprobe\" -i \"%2\" "_s.arg(resources, clip);
    return {start + u"-show_streams -print_format json"_s, start + u"2>&1 | grep 'Stream #'"_s,
            start + u"-print_format json | grep 'Durations'"_s};
}

} // namespace

int probe(const QString &resources, const QString &clip, int rounds)
{
    const Places places(resources);
    KXVideoFile file(&places);
    QList<double> ours;
    QList<double> byHand;
    QString status;
    for (int round = 0; round < rounds; ++round) {
        ours.append(seconds([&] { status = file.initializeForURL(QUrl::fromLocalFile(clip)); }));
        byHand.append(seconds([&] {
            for (const QString &line : linesByHand(resources, clip))
                runQuietly(u"/bin/sh"_s, {u"-c"_s, line});
        }));
    }
    if (status != u"OK"_s) {
        say(u"the probe answered "_s + status);
        return 1;
    }
    const double a = median(ours);
    const double b = median(byHand);
    say(u"probe: median %1 ms; the same ffprobe lines by hand: median %2 ms; ratio %3; aim: at most 1.10"_s
            .arg(a * 1000, 0, 'f', 1)
            .arg(b * 1000, 0, 'f', 1)
            .arg(a / b, 0, 'f', 3));
    return 0;
}

} // namespace bench
