#pragma once

#include "jobs/KXJob.h"

/// Extracts each track of its selection into a file of its own, several at the same time.
class KXExtractTracksJob final : public KXJob
{
    Q_OBJECT

public:
    explicit KXExtractTracksJob(const jobs::JobContext &context);

    void startJob() override;
    void monitorNotifications(const KXNotification &notification) override;

protected:
    QList<ConverterPointer> preparedSteps() override;
};
