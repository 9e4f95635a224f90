#pragma once

#include "engines/ffmpeg/KXFfmpegConverter.h"
#include "jobs/KXJob.h"

class KXMkvMuxer;

/// Makes an MKV file of a selection: re-encodes the tracks that do not pass through, each into a file of its
/// own and several at the same time, and then muxes everything with mkvmerge. Followed by polling.
class KXConvertToMkvJob final : public KXJob
{
    Q_OBJECT
    KX_FIELD(TrackList, theTracks, setTheTracks, {})
    KX_FIELD(int, muxStepCounter, setMuxStepCounter, 0)
    KX_FIELD(int, oldMuxProgress, setOldMuxProgress, 0)

public:
    explicit KXConvertToMkvJob(const jobs::JobContext &context);

    void startJob() override;
    QList<steps::Launch> planned() override;
    void monitorStartJob();
    void startPass2SelectorFor(KXFfmpegConverter &converter);
    void muxStep();
    void monitorMuxStep();

protected:
    QList<ConverterPointer> preparedSteps() override;

private:
    /// The converter that a track needs; null for one that goes in as it is.
    ConverterPointer converterFor(KXVideoTrack &track, qsizetype index, const QString &label);
    QList<ConverterPointer> makeConverters();
    void startWaitingConversions(int most);
    void redirectTracks();
    std::shared_ptr<KXMkvMuxer> makeMuxer();
    QString answerOf(KXConverter *converter) const;
    bool pollConversions(const jobs::ProgressList &previous, jobs::ProgressList &current);
    bool conversionsSucceeded();

    /// Those that have not been started. While the monitor looks, only it may touch the list.
    QList<KXFfmpegConverter *> m_waiting;
};
