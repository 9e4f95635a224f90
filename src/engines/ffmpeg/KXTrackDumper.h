#pragma once

#include "steps/FfmpegProgress.h"
#include "steps/KXConverter.h"

class KXVideoTrack;

/// Writes one track of a file into a file of its own: picture subtitles of MKV files with mkvextract,
/// everything else with ffmpeg by stream copy. Runs one tool once.
class KXTrackDumper final : public KXConverter
{
    Q_OBJECT
    /// "ffmpeg", "mkvextractor" or "mp4box"; chooses the progress poll.
    KX_FIELD(QString, extractorName, setExtractorName, QString())

public:
    explicit KXTrackDumper(const steps::ConverterContext &context);

    /// The names come from the given folder, or, without one, from the source's.
    tools::ToolProcessPointer
    startConversionForSelectionWithSaveDirectoryURL(const SelectionPointer &selection,
                                                    const QUrl &folder) override;
    tools::ToolProcessPointer startConversionForSelection(const SelectionPointer &selection) override;
    /// The names of a run, claimed; false, with a refusal, when nothing may be started. startPrepared()
    /// starts it then.
    bool prepareForSelection(const SelectionPointer &selection);
    bool prepareForSelectionWithSaveDirectoryURL(const SelectionPointer &selection, const QUrl &folder);
    tools::ToolProcessPointer startPrepared() override;
    QString startConversionFor(const SelectionPointer &selection) override;
    /// The same for such a run.
    bool prepareInBackground(const SelectionPointer &selection);
    QString startPreparedInBackground() override;
    QList<steps::Launch> launches() override;
    void handleNewTaskResult(const steps::ReadEvent &event) override;
    void backgroundReadingCompleted() override;
    QString monitorConversion() override;
    steps::Outcome outcome() const override;
    QList<QUrl> outputFiles() const override;
    QList<media::MeantOutput> meantOutputs() const override;
    QList<QUrl> namesToWrite() const override { return outputFiles(); }
    QList<QUrl> temporaryFiles() const override;

protected:
    tools::OptionList launchForm(const tools::OptionList &meant) override;

private:
    bool takesCompanion(const QUrl &companion);
    enum class Naming { Output, Intermediate };

    const KXVideoTrack *track() const;
    bool prepare(const QString &base, Naming naming);
    QUrl tool() const;
    tools::OptionList arguments() const;
    tools::OptionList shellItems() const;
    QString pollFfmpeg();
    QString pollMkvextract();
    steps::Outcome outcomeBeside(const steps::Outcome &ended, const KXVideoTrack &source) const;

    steps::FfmpegProgressReader m_progress;
    bool m_isInBackground = false;
};
