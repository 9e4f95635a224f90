#pragma once

#include "engines/join/JoinLook.h"
#include "jobs/KXJob.h"

/// Edits an existing MKV file as its job type says: extracts, removes, joins, splits or remuxes. Extracting
/// and joining are followed by their tools' output, the rest by polling. It hands nothing over to another
/// application.
class KXEditMkvJob final : public KXJob
{
    Q_OBJECT
    KX_FIELD(TrackList, theTracks, setTheTracks, {})
    KX_FIELD(int, muxStepCounter, setMuxStepCounter, 0)
    KX_FIELD(int, oldStepProgress, setOldStepProgress, 0)

public:
    explicit KXEditMkvJob(const jobs::JobContext &context);

    void startJob() override;
    void monitorNotifications(const KXNotification &notification) override;
    void monitorMuxStep();
    // Two further ways to follow the steps by polling; startJob() starts neither.
    /// After "Send To Lintwick" the subtitle is handed to its application.
    void monitorStartJob();
    void monitorStartJobWithMultipleSteps();

protected:
    QList<ConverterPointer> preparedSteps() override;

private:
    QList<ConverterPointer> preparedExtraction();
    ConverterPointer preparedJoin();
    ConverterPointer preparedRemoval();
    ConverterPointer preparedSplit();
    ConverterPointer preparedRemux();
    void startBackground(const ConverterPointer &converter);
    void startJoin(const ConverterPointer &editor);
    void looked();
    void published() override;
    void handOver();

    engines::JoinLook m_look;
    bool m_handsOver = false;
};
