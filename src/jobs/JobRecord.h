#pragma once

#include "jobs/QueuedJob.h"

#include <QByteArray>

#include <optional>

namespace jobs {

/// An output that is about to get its name, as it is in the work folder: a rename leaves size and time.
using OutputState = SourceState;

/// A job of the queue as it is stored: what it is made from, where it stands, and how far it got.
struct JobRecord
{
    enum class State {
        Waiting,
        Running,    ///< of a program that is gone: it was interrupted
        Publishing, ///< its files were about to get their names
        Interrupted ///< known as such since an earlier start
    };

    QueuedJob job;
    State state = State::Waiting;
    double place = 0;           ///< records are in the order of these
    QList<QUrl> claimed;        ///< names that its steps were to write
    QList<OutputState> outputs; ///< while publishing
};

QByteArray toBytes(const JobRecord &record);

/// What bytes that were stored are.
struct ReadRecord
{
    enum class Kind { Known, Newer, Damaged };
    Kind kind = Kind::Damaged;
    JobRecord record; ///< of a known one
};
ReadRecord recordFrom(const QByteArray &bytes);

} // namespace jobs
