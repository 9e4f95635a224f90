#pragma once

#include "steps/KXConverter.h"
#include "steps/MkvProgress.h"

/// Cuts one file into parts by a time range, by size or by duration with mkvmerge, which numbers the
/// parts itself. Runs one tool once.
class KXVideoSplitter final : public KXConverter
{
    Q_OBJECT

public:
    explicit KXVideoSplitter(const steps::ConverterContext &context);

    tools::ToolProcessPointer
    startConversionForSelectionWithSaveDirectoryURL(const SelectionPointer &selection,
                                                    const QUrl &folder) override;
    /// Names for output and log; false, with a refusal, when nothing may be started.
    bool prepareForSelectionWithSaveDirectoryURL(const SelectionPointer &selection, const QUrl &folder);
    tools::ToolProcessPointer startPrepared() override;
    QList<steps::Launch> launches() override;
    void handleNewTaskResult(const steps::ReadEvent &event) override;
    void backgroundReadingCompleted() override;
    QList<QUrl> outputFiles() const override;
    QList<media::MeantOutput> meantOutputs() const override;

private:
    tools::OptionList arguments() const;

    steps::MkvProgressReader m_progress;
};

namespace engines {

/// How a split of that type names what it writes: a time range is one file.
steps::OutputForm splitForm(const KXSelection &selection);
/// The output of a split: "BASE.split.EXTENSION". Without what mkvmerge would take for the place of a
/// part's number.
QUrl splitOutput(const QString &base, const KXSelection &selection);

} // namespace engines
