#include "jobs/Pace.h"

#include "jobs/KXJob.h"
#include "selection/ConversionSettings.h"
#include "tools/Numbers.h"

#include <QFileInfo>

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

namespace jobs {

namespace {

constexpr double whole = 100;
constexpr double soonestSeconds = 10;
constexpr double inASecond = 1000;
constexpr int passes = 2;

std::optional<double> percentIn(const QString &text)
{
    if (!text.endsWith(u'%') || !tools::isAllDigits(text.chopped(1)))
        return std::nullopt;
    return std::min(static_cast<double>(tools::leadingInteger(text)), whole) / whole;
}

/// What a job has to do, in a measure of its own: an encoder takes far longer than a copy of as many bytes.
double workOf(const KXJob &job)
{
    constexpr double ofAnEncoder = 30;
    const KXSelection &selection = *job.jobSelection();
    const auto chosen = selection::ConversionSettings::of(selection);
    const bool encodes = chosen.picture && *chosen.picture != selection::Picture::PassThrough;
    const double turns = !encodes                                          ? 1
                         : chosen.picture == selection::Picture::TwoPasses ? passes * ofAnEncoder
                                                                           : ofAnEncoder;
    return turns * static_cast<double>(QFileInfo(selection.videoTrackFileURL().toLocalFile()).size());
}

} // namespace

std::optional<double> shareIn(const QString &progress)
{
    if (progress == u"Complete"_s)
        return 1;
    if (progress == u"Pass 1 Complete"_s)
        return 1.0 / passes;
    if (!progress.startsWith(u"Pass #"_s))
        return percentIn(progress);
    const auto ofPass = percentIn(progress.section(u' ', 2));
    const qint64 before = progress.startsWith(u"Pass #2"_s) ? 1 : 0;
    return ofPass ? std::optional((static_cast<double>(before) + *ofPass) / passes) : std::nullopt;
}

std::optional<double> secondsLeft(double elapsedSeconds, double share)
{
    if (elapsedSeconds < soonestSeconds || share <= 0)
        return std::nullopt;
    return elapsedSeconds * (1 - share) / share;
}

void PaceKeeper::take(const ProgressList &steps)
{
    if (steps.isEmpty())
        return;
    if (m_shares.isEmpty())
        m_running.start();
    m_shares.resize(steps.size());
    for (qsizetype i = 0; i < steps.size(); ++i)
        m_shares[i] = shareIn(steps.at(i).progress).value_or(m_shares.at(i));
}

void PaceKeeper::pause()
{
    m_before = elapsed();
    m_running.invalidate();
}

void PaceKeeper::resume()
{
    if (!m_running.isValid() && !m_shares.isEmpty())
        m_running.start();
}

Pace PaceKeeper::pace() const
{
    return {share() * whole, elapsed(), secondsLeft(elapsed(), share()), {}, {}};
}

double PaceKeeper::elapsed() const
{
    return m_before + (m_running.isValid() ? static_cast<double>(m_running.elapsed()) / inASecond : 0);
}

double PaceKeeper::share() const
{
    const double sum = std::accumulate(m_shares.begin(), m_shares.end(), 0.0);
    return m_shares.isEmpty() ? 0 : sum / static_cast<double>(m_shares.size());
}

std::optional<double> secondsLeftFor(const QList<JobPointer> &queue)
{
    const auto running = std::find_if(queue.begin(), queue.end(), [](const JobPointer &job) {
        return job->jobStatus() == u"Running"_s && !job->hasEnded();
    });
    if (running == queue.end())
        return std::nullopt;
    const Pace pace = (*running)->pace();
    const double work = workOf(**running);
    if (!pace.leftSeconds || work <= 0)
        return std::nullopt;
    double left = *pace.leftSeconds;
    for (const JobPointer &job : queue) {
        if (job->jobStatus() == u"Queued"_s)
            left += (pace.elapsedSeconds + *pace.leftSeconds) * workOf(*job) / work;
    }
    return left;
}

QString clockText(double seconds)
{
    constexpr qint64 inAMinute = 60;
    const auto all = static_cast<qint64>(std::max(seconds, 0.0));
    const auto two = [](qint64 number) { return QString::number(number).rightJustified(2, u'0'); };
    const QString rest = two(all % inAMinute);
    const qint64 minutes = all / inAMinute;
    if (minutes < inAMinute)
        return QString::number(minutes) + u':' + rest;
    return QString::number(minutes / inAMinute) + u':' + two(minutes % inAMinute) + u':' + rest;
}

} // namespace jobs
