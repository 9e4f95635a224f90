#include "support/jobs/TestJob.h"

using namespace Qt::StringLiterals;

namespace support {

TestConverter::TestConverter(const steps::ConverterContext &context)
    : KXConverter(context)
{
}

tools::ToolProcessPointer TestConverter::run(const QUrl &tool)
{
    return runAndMonitorBinaryURLWithOptionsShouldWait(tool, {outputFileURL()}, ShouldWait::No);
}

QString TestConverter::runInBackground(const QUrl &tool)
{
    setDoShell_ID(startInBackground(tool, {outputFileURL(), u"&>", logFileURL(), u"& echo $!"}));
    return doShell_ID();
}

void TestConverter::backgroundReadingCompleted()
{
    KXConverter::backgroundReadingCompleted();
    post(u"taskCompletion"_s, u"Complete"_s);
}

steps::Outcome TestConverter::outcome() const
{
    return judged ? *judged : KXConverter::outcome();
}

TestJob::TestJob(const jobs::JobContext &context)
    : KXJob(context)
{
    observe(u"monitorTestUpdate"_s);
}

void TestJob::startJob()
{
    ++starts;
    if (onStart)
        onStart(*this);
}

void TestJob::monitorNotifications(const KXNotification &notification)
{
    ++heard;
    followNotification(notification, u"monitorTestUpdate"_s);
}

void TestJob::logObjectWithString(const QVariant &object, const QString &label) const
{
    if (label == u"doUnixCommand string: "_s)
        commands.append(object.toString());
}

TestConverterPointer TestJob::addStep(const QString &label, const QUrl &output)
{
    const auto converter = std::make_shared<TestConverter>(converterContext());
    converter->setStepName(label);
    converter->claimOutput(output);
    converter->claimLog(QUrl::fromLocalFile(output.toLocalFile() + u".log"_s));
    setStepConverterList(stepConverterList() << converter);
    return converter;
}

TestConverterPointer TestJob::runStep(const QString &label, const QUrl &output, const QUrl &tool)
{
    const auto converter = addStep(label, output);
    stepStarted(converter, converter->refusal().isNull() ? converter->run(tool) : nullptr);
    return converter;
}

TestConverterPointer TestJob::runBackgroundStep(const QString &label, const QUrl &output, const QUrl &tool)
{
    const auto converter = addStep(label, output);
    if (!converter->runInBackground(tool).isEmpty())
        followBackground(*converter);
    setProgressList(progressList() << jobs::ProgressItem{label, u"0%"_s});
    setLogFilesToDeleteList(logFilesToDeleteList() << converter->logFileURL());
    return converter;
}

TestJobPointer makeTestJob(const jobs::JobContext &context)
{
    return {new TestJob(context), jobs::disposeOfJob};
}

void registerTestJob(jobs::JobFactory &factory, jobs::JobKind kind,
                     const std::function<void(TestJob &)> &made)
{
    factory.add(kind, [kind, made](const jobs::JobContext &context) -> std::shared_ptr<KXJob> {
        const TestJobPointer job = makeTestJob(context);
        job->kind = kind;
        if (made)
            made(*job);
        return job;
    });
}

} // namespace support
