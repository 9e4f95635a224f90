#pragma once

#include "engines/ffmpeg/KXFfmpegConverter.h"
#include "jobs/KXJob.h"

class KXTrackDumper;

class KXMetadataPadder;

/// Converts one file for a target: prepares a subtitle that is to be burned, runs one ffmpeg
/// converter, and follows it through passes, retries and completion.
class KXConvertWithFfmpegJob final : public KXJob
{
    Q_OBJECT
    KX_FIELD(TrackList, theTracks, setTheTracks, {})
    KX_FIELD(QUrl, ffmpegOutputURL, setFfmpegOutputURL, QUrl())
    KX_FIELD(bool, subWasBurned, setSubWasBurned, false)
    // Carried for the record; this job reads none of them.
    KX_FIELD(bool, shouldFlashProgress, setShouldFlashProgress, false)
    KX_FIELD(int, muxStepCounter, setMuxStepCounter, 0)
    KX_FIELD(QString, oldMuxProgress, setOldMuxProgress, QString())
    KX_FIELD(int, finalizingStepNumber, setFinalizingStepNumber, 0)

public:
    explicit KXConvertWithFfmpegJob(const jobs::JobContext &context);

    void startJob() override;
    QList<steps::Launch> plan() override;
    void monitorNotifications(const KXNotification &notification) override;
    QString refusal() const override;

    void startPass2SelectorFor(KXFfmpegConverter &converter);
    void retryForTimeStampError(KXFfmpegConverter &converter);
    /// The polling monitor. startJob() does not start it: notifications decide the end of this job.
    void monitorStartJob();
    /// Reports a failed conversion by an alert and ends the job. Reached through monitorStartJob().
    void errorCheck();
    void handleConversionErrorReturnCode(int returnCode);

    static constexpr int mostRetries = 5;

private:
    /// What subtitles need before the conversion, as positions in theTracks().
    struct SubtitleWork
    {
        QList<qsizetype> extracted;
        std::optional<qsizetype> burned;
    };

    /// One cycle of the polling monitor; true when every converter has finished.
    bool pollOnce(const jobs::ProgressList &previous, jobs::ProgressList &current);
    jobs::ProgressItem itemFor(KXConverter &converter, const QString &answer,
                               const jobs::ProgressItem *previous, bool &adds);

    std::shared_ptr<KXFfmpegConverter> begin();
    SubtitleWork subtitleWork();
    void prepareSubtitles(KXFfmpegConverter &converter);
    QList<steps::Launch> planSubtitles(KXFfmpegConverter &converter);
    std::shared_ptr<KXTrackDumper> preparedDumper(qsizetype index);
    void prepareBurning(KXFfmpegConverter &converter, qsizetype index);
    void noteUnlessDrawn(const KXFfmpegConverter &converter, const KXVideoTrack &track);
    QUrl extracted(qsizetype index, KXConverter::Keeping keeping);
    void keepFilesOf(const KXConverter &converter);
    void waitForBackground(KXConverter &converter);
    void startConversion(const std::shared_ptr<KXFfmpegConverter> &converter);
    void completion(const KXNotification &notification, qsizetype index);
    void conversionCompleted();

    std::shared_ptr<KXFfmpegConverter> m_converter;
    std::shared_ptr<KXMetadataPadder> m_padder;
    int m_retries = 0;
};
