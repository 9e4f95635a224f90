#pragma once

#include "steps/KXConverter.h"

/// Shows a film with the tracks that are chosen: starts mplayer in the shell's background and forgets it.
/// It never waits for the player and never reads what it says.
class KXMoviePlayer final : public KXConverter
{
    Q_OBJECT

public:
    explicit KXMoviePlayer(const steps::ConverterContext &context);

    void playMovie(const SelectionPointer &selection);
    /// What playMovie() means to run: mplayer's options, with the shell's redirection at their end.
    tools::OptionList playerOptions(const KXSelection &selection) const;

    /// What it runs: a comma would end the name of a subtitle's file, so it is escaped.
    tools::OptionList launchForm(const tools::OptionList &meant) override;
};
