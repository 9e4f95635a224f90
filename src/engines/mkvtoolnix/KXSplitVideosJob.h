#pragma once

#include "jobs/KXJob.h"

/// Splits one file: a single step.
class KXSplitVideosJob final : public KXJob
{
    Q_OBJECT

public:
    explicit KXSplitVideosJob(const jobs::JobContext &context);

    void startJob() override;
    void monitorNotifications(const KXNotification &notification) override;

protected:
    QList<ConverterPointer> preparedSteps() override;
};
