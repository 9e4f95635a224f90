#pragma once

#include "steps/KXConverter.h"

/// Gives a finished MP4 free space behind its index, so that tags can be edited later without rewriting the
/// film. Writes a hidden neighbour that takes the film's place only when all went well: a failure costs
/// nothing but the padding.
class KXMetadataPadder final : public KXConverter
{
    Q_OBJECT

public:
    explicit KXMetadataPadder(const steps::ConverterContext &context);

    /// True for a film that can be padded, when that is asked for and the tool is there.
    static bool isWantedFor(const QUrl &film, const KXPreferences &preferences);
    tools::ToolProcessPointer startPadding(const QUrl &film);
    /// The tool has ended: the padded film takes the film's place, or the neighbour goes.
    void finishPadding();

    steps::Outcome outcome() const override { return m_outcome; }
    void backgroundReadingCompleted() override;

private:
    bool replaceFilm();

    steps::Outcome m_outcome;
};
