#pragma once

#include "jobs/KXJob.h"

/// Joins several files into one: a single step, with the tool that fits the files.
class KXJoinVideosJob final : public KXJob
{
    Q_OBJECT

public:
    explicit KXJoinVideosJob(const jobs::JobContext &context);

    void startJob() override;
    void monitorNotifications(const KXNotification &notification) override;

protected:
    QList<ConverterPointer> preparedSteps() override;
};
