#pragma once

#include "engines/join/JoinFile.h"
#include "steps/KXConverter.h"
#include "tools/LineCutter.h"

/// Joins MKV files, or splits one, with mkvmerge: a join as a process object or in the shell's background, a
/// split in the background. Runs one tool once.
class KXMkvEditor final : public KXConverter
{
    Q_OBJECT

public:
    explicit KXMkvEditor(const steps::ConverterContext &context);

    // The two starts of a join look at its files first and serve the event loop meanwhile; a job looks at
    // them itself.
    /// A join. For any other job type the current process, untouched.
    tools::ToolProcessPointer startConversionForSelection(const SelectionPointer &selection) override;
    /// A join or a split; "error", and no tool, for anything else.
    QString startConversionFor(const SelectionPointer &selection) override;
    /// The names of a join, or of a split in the background; false, with a refusal, when nothing may be
    /// started.
    bool prepareJoin(const SelectionPointer &selection);
    bool prepareSplit(const SelectionPointer &selection);
    /// Takes what was found out about the files of a join: shows the warning, and refuses them where they
    /// don't fit.
    void takeLook(const QList<engines::JoinFile> &files);
    tools::ToolProcessPointer startPrepared() override;
    QString startPreparedInBackground() override;
    /// A join is planned as a process object.
    QList<steps::Launch> launches() override;
    /// What differs; the misspelling is meant.
    QStringList findMismatchedProperetiesFor(const QList<QUrl> &files);
    void handleNewTaskResult(const steps::ReadEvent &event) override;
    void backgroundReadingCompleted() override;
    QString monitorConversion() override { return pollPercentage(); }
    QList<QUrl> outputFiles() const override;
    QList<media::MeantOutput> meantOutputs() const override;

private:
    bool lookAndTake();
    tools::OptionList splitItems() const;
    QString startSplit(const SelectionPointer &selection);

    tools::LineCutter m_errorLines;
};
