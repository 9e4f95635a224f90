#pragma once

#include "steps/KXConverter.h"
#include "tools/LineCutter.h"

/// Joins MKV files, or splits one, with mkvmerge: a join as a process object or in the shell's background, a
/// split in the background. Runs one tool once.
class KXMkvEditor final : public KXConverter
{
    Q_OBJECT

public:
    explicit KXMkvEditor(const steps::ConverterContext &context);

    /// A join. For any other job type the current process, untouched.
    tools::ToolProcessPointer startConversionForSelection(const SelectionPointer &selection) override;
    /// A join or a split; "error", and no tool, for anything else.
    QString startConversionFor(const SelectionPointer &selection) override;
    /// What differs; the misspelling is meant.
    QStringList findMismatchedProperetiesFor(const QList<QUrl> &files);
    void handleNewTaskResult(const steps::ReadEvent &event) override;
    void backgroundReadingCompleted() override;
    QString monitorConversion() override { return pollPercentage(); }
    QList<QUrl> outputFiles() const override;

private:
    bool prepareJoin(const SelectionPointer &selection);
    QString startJoin(const SelectionPointer &selection);
    QString startSplit(const SelectionPointer &selection);

    tools::LineCutter m_errorLines;
};
