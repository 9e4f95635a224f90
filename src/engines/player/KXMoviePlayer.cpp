#include "engines/player/KXMoviePlayer.h"

#include "media/KXVideoTrack.h"
#include "tools/Numbers.h"

using namespace Qt::StringLiterals;

namespace {

const QString subtitleFileOption = u"-sub"_s;

tools::OptionItem numbered(tools::Literal option, const KXVideoTrack &track)
{
    return tools::OptionItem(option).with(u" ").with(tools::leadingInteger(track.trackMencoderID()));
}

/// The track by its number where it lives in the film, else its file.
tools::OptionList placeOf(const KXVideoTrack &track, const KXSelection &selection, tools::Literal inside,
                          tools::Literal outside)
{
    if (track.trackFilePath() == selection.videoTrackFilePath())
        return {numbered(inside, track)};
    return {tools::OptionItem(outside), track.trackFileURL()};
}

tools::OptionList optionsOf(const KXVideoTrack &track, const KXSelection &selection)
{
    const QString type = track.trackType();
    if (type == u"Video"_s)
        return {numbered(u"-vid", track)};
    if (type == u"Audio"_s)
        return placeOf(track, selection, u"-aid", u"-audiofile");
    if (type == u"Subtitle"_s || type == u"External Subtitle"_s)
        return placeOf(track, selection, u"-sid", u"-sub");
    return {};
}

/// What the player reads as this one file: its "-sub" takes a list, divided by commas, in which only a
/// comma is escaped.
QUrl withEscapedCommas(const QUrl &file)
{
    return QUrl::fromLocalFile(file.toLocalFile().replace(u","_s, u"\\,"_s));
}

} // namespace

KXMoviePlayer::KXMoviePlayer(const steps::ConverterContext &context)
    : KXConverter(context)
{
    setConverterName(u"moviePlayer"_s);
}

void KXMoviePlayer::playMovie(const SelectionPointer &selection)
{
    setSubtitleFontURL(QUrl::fromLocalFile(u"/Library/Fonts/Arial Unicode.ttf"_s));
    doShellScriptForWithOptions(urlOfApp(u"mplayer"_s), launchForm(playerOptions(*selection)));
}

tools::OptionList KXMoviePlayer::playerOptions(const KXSelection &selection) const
{
    tools::OptionList options{selection.videoTrackFileURL()};
    for (const TrackPointer &track : selection.trackList())
        options += optionsOf(*track, selection);
    if (tools::leadingInteger(selection.subCount()) > 0) {
        // Where the font is missing the player takes its own.
        options += {u"-font", QUrl::fromLocalFile(u"/Library/Fonts/Arial Unicode.ttf"_s),
                    u"-ass -ass-font-scale 1.0 -ass-color FFFFFF00"};
    }
    options.append(u"&> /dev/null & echo $!");
    return options;
}

tools::OptionList KXMoviePlayer::launchForm(const tools::OptionList &meant)
{
    tools::OptionList launched = meant;
    for (qsizetype i = 1; i < launched.size(); ++i) {
        if (launched.at(i).isFile() && launched.at(i - 1).text() == subtitleFileOption)
            launched[i] = withEscapedCommas(launched.at(i).url());
    }
    return launched;
}
