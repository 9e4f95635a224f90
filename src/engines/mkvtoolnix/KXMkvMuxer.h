#pragma once

#include "steps/KXConverter.h"

/// Puts tracks into one Matroska file with mkvmerge, in the shell's background: those of a selection, or,
/// for a track removal, those that stay. Runs one tool once.
class KXMkvMuxer final : public KXConverter
{
    Q_OBJECT
    /// What is written. For job types other than conversion and removal the caller sets it.
    KX_FIELD(TrackList, tracksToMux, setTracksToMux, {})

public:
    explicit KXMkvMuxer(const steps::ConverterContext &context);

    QString startConversionFor(const SelectionPointer &selection) override;
    /// Its names; false, with a refusal, when nothing may be started.
    bool prepareFor(const SelectionPointer &selection);
    QString startPreparedInBackground() override;
    QList<steps::Launch> launches() override;
    QString monitorConversion() override { return pollPercentage(); }
    QList<media::MeantOutput> meantOutputs() const override;

protected:
    tools::OptionList launchForm(const tools::OptionList &meant) override;

private:
    /// "muxed" or "removed"; takes the tracks of the job type on the way.
    QString takeTracks();
    TrackList tracksOfFile(const QString &path) const;
    TrackList withoutCovers() const;
};
