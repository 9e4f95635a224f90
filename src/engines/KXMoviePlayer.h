#pragma once

#include "tools/step/KXConverter.h"

/// Shows a film with the tracks that are chosen: starts mplayer in the shell's background and forgets it.
/// It never waits for the player and never reads what it says.
class KXMoviePlayer final : public KXConverter
{
    Q_OBJECT

public:
    explicit KXMoviePlayer(const step::ConverterContext &context);

    void playMovie(const SelectionPointer &selection);
    /// What playMovie() means to run: mplayer's options, with the shell's redirection at their end.
    tools::OptionList playerOptions(const KXSelection &selection) const;

protected:
    /// A comma would end a subtitle's name: such a file is shown through a link beside our own files.
    tools::OptionList launchForm(const tools::OptionList &meant) override;

private:
    QUrl withoutComma(const QUrl &file) const;
};
