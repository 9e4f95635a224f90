#pragma once

#include "jobs/KXJob.h"

/// Extracts a file's first subtitle and opens it, and then the film, in the subtitle application that the
/// preferences name.
class KXSendToLintwickJob final : public KXJob
{
    Q_OBJECT

public:
    explicit KXSendToLintwickJob(const jobs::JobContext &context);

    void startJob() override;
    void monitorNotifications(const KXNotification &notification) override;

protected:
    QList<ConverterPointer> preparedSteps() override;

private:
    void published() override;
    void handOver();
};
