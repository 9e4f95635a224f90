#pragma once

#include "steps/KXConverter.h"
#include "steps/MkvProgress.h"

/// Rewrites an MKV file with header-removal compression switched off, for players that can't read it.
/// Runs mkvmerge once, as a process object or in the shell's background.
class KXMkvReMuxer final : public KXConverter
{
    Q_OBJECT

public:
    explicit KXMkvReMuxer(const steps::ConverterContext &context);

    tools::ToolProcessPointer
    startConversionForSelectionWithSaveDirectoryURL(const SelectionPointer &selection,
                                                    const QUrl &folder) override;
    QString startConversionFor(const SelectionPointer &selection) override;
    /// Names for output and log, in the source's folder when none is given; false, with a refusal, when
    /// nothing may be started.
    bool prepareForSelectionWithSaveDirectoryURL(const SelectionPointer &selection, const QUrl &folder);
    bool prepareInBackground(const SelectionPointer &selection);
    tools::ToolProcessPointer startPrepared() override;
    QString startPreparedInBackground() override;
    QList<steps::Launch> launches() override;
    void handleNewTaskResult(const steps::ReadEvent &event) override;
    void backgroundReadingCompleted() override;
    QString monitorConversion() override { return pollPercentage(); }
    QList<media::MeantOutput> meantOutputs() const override;

private:
    steps::MkvProgressReader m_progress;
    bool m_isInBackground = false;
};
