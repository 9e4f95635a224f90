#pragma once

#include "jobs/KXJob.h"

/// Rewrites one MKV file without header-removal compression: a single step.
class KXRemuxVideoJob final : public KXJob
{
    Q_OBJECT

public:
    explicit KXRemuxVideoJob(const jobs::JobContext &context);

    void startJob() override;
    void monitorNotifications(const KXNotification &notification) override;

protected:
    QList<ConverterPointer> preparedSteps() override;
};
