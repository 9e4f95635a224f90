#pragma once

#include "media/TrackFate.h"

#include <QStringList>

namespace media {

/// What became of every track of a job's sources, in the user's terms. A plain value. Made of what the
/// outputs of its steps were meant to hold, once these are complete; what was measured comes with them.
struct Receipt
{
    QList<TrackFate> tracks; ///< by source, in the sources' order, and by index; chapters last

    bool isEmpty() const { return tracks.isEmpty(); }
};

/// A track that is in any of the outputs was not left out; one that is in none stands there once. A joined
/// file that holds the same source twice has its tracks twice.
Receipt receiptOf(const QList<MeantOutput> &outputs);

/// The words of the record: "copied", "notProven".
QString wordOf(Became became);
QString wordOf(Proof proof);
/// The word of how a track was proven. Where its bits were to be compared and could not be, it is not proven.
QString proofWordOf(const TrackFate &fate);

/// What is to be told of it without being asked: a sentence for all tracks of a source that share a reason.
QStringList sentencesOf(const Receipt &receipt, Told told);

/// What a job that was asked to verify its outputs says of each: "film.m4v: proven bit for bit."
QStringList sentencesOfVerified(const Receipt &receipt);

/// One line a track for a person: "subtitle 3 (subrip) of film.mkv: left out. It was not chosen."
QStringList linesOf(const Receipt &receipt);

} // namespace media
