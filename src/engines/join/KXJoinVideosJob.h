#pragma once

#include "engines/join/JoinLook.h"
#include "jobs/KXJob.h"

class KXVideoJoiner;

/// Joins several files into one: a single step, with the tool that fits the files. It looks at them first,
/// and starts no tool where they don't fit together.
class KXJoinVideosJob final : public KXJob
{
    Q_OBJECT

public:
    explicit KXJoinVideosJob(const jobs::JobContext &context);

    void startJob() override;
    void monitorNotifications(const KXNotification &notification) override;

protected:
    QList<ConverterPointer> preparedSteps() override;

private:
    void looked();
    void follow(const tools::ToolProcessPointer &task);

    engines::JoinLook m_look;
    std::shared_ptr<KXVideoJoiner> m_joiner;
};
