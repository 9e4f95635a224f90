#pragma once

#include "jobs/JobFactory.h"
#include "jobs/KXJob.h"

#include <functional>
#include <optional>

namespace support {

/// A step whose tool and whose end a test decides. It tells its job when its tool has ended.
class TestConverter final : public KXConverter
{
public:
    explicit TestConverter(const steps::ConverterContext &context);

    using KXConverter::claimLog;
    using KXConverter::claimOutput;
    using KXConverter::post;

    /// Runs the tool as a process object, with the output as its last argument.
    tools::ToolProcessPointer run(const QUrl &tool);
    /// Runs it in the shell's background, with the output as its first argument.
    QString runInBackground(const QUrl &tool);
    void backgroundReadingCompleted() override;
    steps::Outcome outcome() const override;

    QList<media::MeantOutput> meantOutputs() const override { return meant; }

    /// What outcome() answers instead of the base's judgement.
    std::optional<steps::Outcome> judged;
    QList<media::MeantOutput> meant;
};

using TestConverterPointer = std::shared_ptr<TestConverter>;

/// A job whose start a test decides, with its doors open. Its steps report as "monitorTestUpdate".
class TestJob final : public KXJob
{
public:
    explicit TestJob(const jobs::JobContext &context);

    using KXJob::addOutcome;
    using KXJob::addTask;
    using KXJob::endIfNothingRuns;
    using KXJob::followBackground;
    using KXJob::guard;
    using KXJob::removeTask;
    using KXJob::requestJobDone;
    using KXJob::stepStarted;
    using KXJob::temporaryFolder;

    void startJob() override;
    void monitorNotifications(const KXNotification &notification) override;
    void logObjectWithString(const QVariant &object, const QString &label) const override;

    /// A step in the lists, with its names claimed: the output, and the output's name and ".log".
    TestConverterPointer addStep(const QString &label, const QUrl &output);
    /// The same, already running the tool as a process object, or in the background.
    TestConverterPointer runStep(const QString &label, const QUrl &output, const QUrl &tool);
    TestConverterPointer runBackgroundStep(const QString &label, const QUrl &output, const QUrl &tool);

    std::function<void(TestJob &)> onStart;
    int starts = 0;
    int heard = 0;
    /// The class the factory made it as.
    jobs::JobKind kind = jobs::JobKind::Conversion;
    /// Shell lines it ran, as the rules write them.
    mutable QStringList commands;
};

using TestJobPointer = std::shared_ptr<TestJob>;

TestJobPointer makeTestJob(const jobs::JobContext &context);
/// Registers TestJob under that class name; every job that is made is handed to made first (may be empty).
void registerTestJob(jobs::JobFactory &factory, jobs::JobKind kind,
                     const std::function<void(TestJob &)> &made = {});

} // namespace support
