// The polling monitor of the conversion job, and the error alert that only it leads to.
#include "engines/ffmpeg/KXConvertWithFfmpegJob.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int errorDelayMs = 100;

/// Phase answers and how they are shown.
struct Phase
{
    const char16_t *answer;
    const char16_t *step;
    const char16_t *progress;
};

constexpr Phase phases[] = {
    {u"no fontconfig 1", u"Fontconfig Cache", u"Rebuilding"},
    {u"no fontconfig 2", u"Fontconfig Cache", u""},
    {u"Moving MOOV Atom 1", u"MOOV Atom", u"Moving"},
    {u"Moving MOOV Atom 2", u"MOOV Atom", u""},
};

} // namespace

jobs::ProgressItem KXConvertWithFfmpegJob::itemFor(KXConverter &converter, const QString &answer,
                                                   const jobs::ProgressItem *previous, bool &adds)
{
    for (const Phase &phase : phases) {
        if (answer == QStringView(phase.answer))
            return {QString::fromUtf16(phase.step), QString::fromUtf16(phase.progress)};
    }
    auto *ffmpeg = qobject_cast<KXFfmpegConverter *>(&converter);
    if (answer == u"Pass 1 Complete"_s && ffmpeg != nullptr)
        runOnMain([this, ffmpeg] { startPass2SelectorFor(*ffmpeg); }, Qt::BlockingQueuedConnection);
    if (answer == u"timestamp error"_s) {
        adds = false;
        if (ffmpeg != nullptr)
            runOnMain([this, ffmpeg] { retryForTimeStampError(*ffmpeg); }, Qt::BlockingQueuedConnection);
    }
    if (answer == u"error"_s)
        return previous != nullptr ? *previous : jobs::ProgressItem{converter.stepName(), u""_s};
    return {converter.stepName(), answer};
}

bool KXConvertWithFfmpegJob::pollOnce(const jobs::ProgressList &previous, jobs::ProgressList &current)
{
    qsizetype finished = 0;
    const auto converters = stepConverterList();
    for (const ConverterPointer &converter : converters) {
        if (!converter) {
            ++finished;
            continue;
        }
        const QString answer = converter->monitorConversion();
        if (answer == u"Complete"_s)
            ++finished;
        const qsizetype position = current.size();
        bool adds = true;
        const auto item =
            itemFor(*converter, answer, position < previous.size() ? &previous.at(position) : nullptr, adds);
        if (adds)
            current.append(item);
    }
    return finished >= converters.size();
}

void KXConvertWithFfmpegJob::monitorStartJob()
{
    const auto cycle = [this](const jobs::ProgressList &previous, jobs::ProgressList &current) {
        return pollOnce(previous, current);
    };
    poll(firstProgress(), cycle, [this] { errorCheck(); });
}

void KXConvertWithFfmpegJob::errorCheck()
{
    for (const ConverterPointer &converter : stepConverterList()) {
        if (!converter || converter->converterName() != u"ffmpegConverter"_s || !converter->conversionError())
            continue;
        platform::Alert alert;
        alert.message = u"An error occured during the processing of this video."_s; // spelled so on purpose
        alert.informativeText = u"Check the created log file for error messages."_s;
        alert.style = platform::AlertStyle::Warning;
        const auto self = weak_from_this();
        context().alerts.show(std::make_shared<const platform::Alert>(alert), [self, this](int returnCode) {
            if (self.lock())
                handleConversionErrorReturnCode(returnCode);
        });
        requestJobDone(errorDelayMs);
        postProgress(progressList());
        return;
    }
    jobDone();
}

void KXConvertWithFfmpegJob::handleConversionErrorReturnCode(int) {}
