#include "engines/mkvtoolnix/KXMkvMuxer.h"

#include "engines/OutputBase.h"
#include "engines/mkvtoolnix/MkvArguments.h"
#include "engines/mkvtoolnix/MkvFates.h"
#include "engines/mkvtoolnix/MkvTrackNumbers.h"
#include "media/KXVideoTrack.h"

#include <algorithm>

using namespace Qt::StringLiterals;

KXMkvMuxer::KXMkvMuxer(const steps::ConverterContext &context)
    : KXConverter(context)
{
    setConverterName(u"MkvMuxer"_s);
}

QString KXMkvMuxer::takeTracks()
{
    const QString type = converterSelection()->jobType();
    if (type == u"MKV Conversion"_s)
        setTracksToMux(converterSelection()->trackList());
    if (type != u"MKV Track Removal"_s)
        return u"muxed"_s;
    setTracksToMux(converterSelection()->keepTracksList());
    for (const TrackPointer &track : tracksToMux())
        track->initializeForMuxing();
    return u"removed"_s;
}

bool KXMkvMuxer::prepareFor(const SelectionPointer &selection)
{
    initializeFor(selection);
    setDoShell_ID({});
    const QString label = takeTracks();
    const QString base = engines::withoutExtension(outputFileURL());
    const QString logBase = logFileURL().toLocalFile();
    if (!claimOutput(QUrl::fromLocalFile(u"%1.%2.mkv"_s.arg(base, label))))
        return false;
    claimLog(QUrl::fromLocalFile(u"%1.%2.log"_s.arg(logBase, label)));
    return true;
}

QList<steps::Launch> KXMkvMuxer::launches()
{
    return {launchOfLine(urlOfApp(u"mkvmerge"_s),
                         engines::muxShellItems(tracksToMux(), outputFileURL(), logFileURL()))};
}

QString KXMkvMuxer::startConversionFor(const SelectionPointer &selection)
{
    return prepareFor(selection) ? startPreparedInBackground() : QString();
}

QString KXMkvMuxer::startPreparedInBackground()
{
    postConversionStarted();
    setDoShell_ID(startInBackground(urlOfApp(u"mkvmerge"_s),
                                    engines::muxShellItems(tracksToMux(), outputFileURL(), logFileURL())));
    return doShell_ID();
}

QList<media::MeantOutput> KXMkvMuxer::meantOutputs() const
{
    if (!converterSelection() || !refusal().isNull())
        return {};
    return {engines::muxOutput(*converterSelection(), tracksToMux(), outputFileURL())};
}

/// All that we know of the file, also what is not written: the numbers go by position.
TrackList KXMkvMuxer::tracksOfFile(const QString &path) const
{
    TrackList tracks;
    const TrackList known = converterSelection()->trackList() + converterSelection()->keepTracksList();
    for (const TrackPointer &track : known) {
        const bool isFromIt =
            track->trackFileURL().toLocalFile() == path && !track->isStereoCopyFlag() && !track->isCover();
        if (isFromIt && !tracks.contains(track))
            tracks.append(track);
    }
    return tracks;
}

/// To mkvmerge a cover is an attachment, which it takes along by itself; asked for as a track it warns. One
/// that is all that is wanted of its file stays: else the file would not be read.
TrackList KXMkvMuxer::withoutCovers() const
{
    const TrackList all = tracksToMux();
    TrackList tracks;
    for (const TrackPointer &track : all) {
        const auto isCompany = [&](const TrackPointer &other) {
            return !other->isCover() && other->muxingTrackFileURL() == track->muxingTrackFileURL();
        };
        if (!track->isCover() || std::none_of(all.begin(), all.end(), isCompany))
            tracks.append(track);
    }
    return tracks;
}

/// mkvmerge counts some containers' tracks in its own way, so it is asked.
tools::OptionList KXMkvMuxer::launchForm(const tools::OptionList &)
{
    QHash<QString, engines::TrackNumbers> numbers;
    for (const TrackPointer &track : tracksToMux()) {
        const QUrl source = track->muxingTrackFileURL();
        const QString path = source.toLocalFile();
        // A converted file holds one track, and its number is known.
        if (numbers.contains(path) || track->trackFileURL() != source ||
            !engines::needsIdentification(source))
            continue;
        const QString answer = doShellScriptForWithOptions(urlOfApp(u"mkvmerge"_s), {u"-J", source});
        numbers.insert(path, engines::trackNumbersIn(answer, tracksOfFile(path)));
    }
    return engines::muxShellItems(withoutCovers(), outputFileURL(), logFileURL(), numbers);
}
