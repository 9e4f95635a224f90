#pragma once

#include "engines/ffmpeg/FfmpegArguments.h"
#include "engines/ffmpeg/FfmpegLaunch.h"
#include "steps/FfmpegProgress.h"
#include "steps/KXConverter.h"

#include <QDateTime>

#include <atomic>

/// Turns a selection into ffmpeg's argument lists and runs them: a whole file in one pass or two, or
/// one track into a file of its own. It follows ffmpeg's error stream and classifies the end of a run;
/// what comes next is the job's to decide. Not final, so that a test can answer for it.
class KXFfmpegConverter : public KXConverter
{
    Q_OBJECT
    KX_FIELD(tools::OptionList, optionArray1, setOptionArray1, {})
    KX_FIELD(tools::OptionList, optionArray2, setOptionArray2, {})
    /// The subtitle to draw into the picture; without a path: none.
    KX_FIELD(QUrl, subToBurnURL, setSubToBurnURL, QUrl())
    KX_FIELD(QStringList, subCanBurnList, setSubCanBurnList, {})
    KX_FIELD(bool, fontconfigDirectoryExists, setFontconfigDirectoryExists, true)
    KX_FIELD(bool, fontconfigIsRebuilding, setFontconfigIsRebuilding, false)
    KX_FIELD(int, fontconfigFileCount, setFontconfigFileCount, 0)
    KX_FIELD(QDateTime, logModifiedDateOld, setLogModifiedDateOld, QDateTime())
    KX_FIELD(QString, passlogfileString, setPasslogfileString, QString())

public:
    explicit KXFfmpegConverter(const steps::ConverterContext &context);

    void initializeFor(const SelectionPointer &selection) override;
    tools::ToolProcessPointer startConversionForSelection(const SelectionPointer &selection) override;
    /// Names and lists of such a run; false, with a refusal, when nothing may be started. startPrepared()
    /// starts it then.
    bool prepareConversion(const SelectionPointer &selection);
    tools::ToolProcessPointer startPrepared() override;
    tools::ToolProcessPointer startSecondPass();
    tools::ToolProcessPointer startTimeStampRetry();
    /// Converts the track at trackItemToProcess() in the shell's background; answers the process id.
    QString startConvertingTrackItemToProcess(const SelectionPointer &selection);
    /// The names and lists of such a run; false, with a refusal, when nothing may be started.
    /// startPreparedInBackground() starts it then.
    bool prepareTrackItemToProcess(const SelectionPointer &selection);
    QString startPreparedInBackground() override;
    QList<steps::Launch> launches() override;
    void prepSubtitleForBurning(const QUrl &subtitle);
    /// The file that is burned where prepSubtitleForBurning() can make the copies that it wants; without a
    /// path: none.
    QUrl fileToBurn(const QUrl &subtitle) const;
    /// The same in a plan, where a copy is made by who pastes its lines.
    void planBurning(const QUrl &subtitle);
    void handleNewTaskResult(const steps::ReadEvent &event) override;
    void backgroundReadingCompleted() override;
    QString monitorConversion() override;
    steps::Outcome outcome() const override;
    /// A single track is a part of a film to come.
    bool isNeverKept() const override { return isTemporaryOutput(); }
    QList<media::MeantOutput> meantOutputs() const override;
    /// True when the run failed for packets without timestamps.
    bool asksForTimestamps() const;

protected:
    tools::OptionList launchForm(const tools::OptionList &meant) override;
    tools::OptionList workingAside(const tools::OptionList &list) const override;

private:
    void noteSubtitlesWithoutPlace();
    void beginSecondPass();
    void prepareNames(const QUrl &wantedOutput);
    QUrl wantedOutput() const;
    QUrl besideSources(const QUrl &wanted) const;
    QStringList namesInLog() const;
    bool fontCacheIsThere() const;
    bool goesByDuration(const steps::ReadEvent &event) const;
    void checkFontCache();
    void postProgress(const steps::FfmpegReading &reading);
    void removeInterruptedStatistics();
    QUrl copyToBurn() const;

    /// What the lists of a whole-file conversion were made from; absent for a single track.
    std::optional<engines::ConversionRequest> m_request;
    steps::FfmpegProgressReader m_progress;
    QStringList m_warnings;
    QList<steps::Preparation> m_before; ///< of a plan
    /// A retry of a two-pass run: pass 1 runs again although currentPass() stays 2.
    bool m_repeatsFirstPass = false;
    bool m_generatesTimestamps = false;
    bool m_isShellLine = false;
    bool m_startsSecondPass = false;
    std::atomic_bool m_secondPassRuns = false; ///< read by a job's monitor thread
    std::atomic_int m_secondPassPercent = 0;   ///< the same
};
