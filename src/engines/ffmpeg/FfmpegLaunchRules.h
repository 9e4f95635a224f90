#pragma once

#include "engines/ffmpeg/FfmpegLaunch.h"

/// One function per launch rule; each changes the list only where its fault would show.
namespace engines {

/// Whether the container has a place for that subtitle as a stream of its own.
bool holdsSubtitle(OutputKind kind, const MappedStream &stream);

} // namespace engines

namespace engines::launchrules {

/// A single track's pass 2 was written for a shell line but runs as a process: the redirection goes
/// and items of two words are split.
void splitShellWords(LaunchForm &form, const LaunchFacts &facts);
/// Without a name, ffmpeg writes its statistics into whatever folder it runs in and takes what lies
/// there.
void placeStatistics(LaunchForm &form, const LaunchFacts &facts);
/// ffmpeg refuses "-pass" in front of a further input.
void movePassBehindInputs(LaunchForm &form, const LaunchFacts &facts);
/// Else the overlay runs on past the end of the video.
void endOverlay(LaunchForm &form, const LaunchFacts &facts);
/// "-af" holds for every audio output, and ffmpeg refuses to filter a copied one.
void narrowAudioFilter(LaunchForm &form, const LaunchFacts &facts);
/// libx264 refuses odd sizes.
void makeSizeEven(LaunchForm &form, const LaunchFacts &facts);
/// One stream that can't be muxed fails the whole run.
void leaveOutSubtitles(LaunchForm &form, const LaunchFacts &facts);
/// Matroska has no place for MP4's text subtitles.
void textForMatroska(LaunchForm &form, const LaunchFacts &facts);
/// The format behind ".m4v" refuses audio that MP4 itself takes.
void nameMp4Format(LaunchForm &form, const LaunchFacts &facts);
/// ffmpeg tags it "hev1", which devices and their players do not open.
void tagHevc(LaunchForm &form, const LaunchFacts &facts);
/// Else pass 2 fails just as it did before the retry.
void generateTimestamps(LaunchForm &form, const LaunchFacts &facts);
/// An added file is mapped whole, so what else it holds (a font, chapter texts) would come along; a
/// container that has no place for that fails the run.
void pickAddedTracks(LaunchForm &form, const LaunchFacts &facts);
/// A list for one track takes the first stream of its file, which is another track as a rule.
void pickSingleTrack(LaunchForm &form, const LaunchFacts &facts);

} // namespace engines::launchrules
