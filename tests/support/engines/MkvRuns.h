#pragma once

#include "jobs/JobFactory.h"
#include "jobs/KXQueueController.h"
#include "support/engines/RealRuns.h"

#include <memory>

namespace support {

/// Four hours of black and silence in two million packets, on which mkvmerge works for seconds. It writes
/// nothing before it has 20 MB, so some noise comes first: soon after the start there is an output, and most
/// is still to do. h264 (0), aac 1ch of 8 kHz (1), aac 1ch (2, 3, 4).
QString manyPacketsMkv();
/// Its first 20 s, which can be joined to it.
QString manyPacketsBeginMkv();
/// The noise and the larger of the two silences alone.
QString manyPacketsAac();

/// What each operation on Matroska files is called in data rows. The "edit" ones are those of the one job
/// class that does all of them: its split, remux and removal follow a line in the shell's background.
namespace mkv {
inline const QString join = QStringLiteral("join");
inline const QString split = QStringLiteral("split"); ///< by duration
inline const QString remux = QStringLiteral("remux");
inline const QString remove = QStringLiteral("remove"); ///< the first audio track
inline const QString mux = QStringLiteral("mux");       ///< a raw stream with an added sound and subtitle
inline const QString editJoin = QStringLiteral("edit join");
inline const QString editSplit = QStringLiteral("edit split");
inline const QString editRemux = QStringLiteral("edit remux");
} // namespace mkv

/// Operations on Matroska files as real jobs in a real queue, in surroundings of their own.
class MkvRuns final
{
public:
    explicit MkvRuns(steps::WhenTaken whenTaken = steps::WhenTaken::NextFreeName,
                     jobs::Checking checking = jobs::Checking::Outputs);
    Q_DISABLE_COPY_MOVE(MkvRuns)

    /// The job for that source, at the end of the queue; a join appends "b.mkv", a mux adds "sound.ac3" and
    /// "s.srt", which are made. Nothing starts yet.
    JobPointer add(const QString &operation, const QString &source);
    JobPointer add(const SelectionPointer &selection, std::optional<jobs::JobKind> kind = {});
    /// The selection that add() would queue.
    SelectionPointer selectionFor(const QString &operation, const QString &source);
    static SelectionPointer filesSelection(const QStringList &paths, const QString &jobType);
    /// Lets the queue begin; false when not every row is "Completed" after that time.
    bool run(int milliseconds = 240000);
    bool waitForEnd(int milliseconds = 240000) const;

    /// What the job of that operation writes first when its source is "a.mkv" ("a.h264" for a mux).
    static QString outputName(const QString &operation);
    /// Puts a shell script in the place of mkvmerge for what starts from now on.
    void setMkvmerge(const QString &script);
    /// The processes of the running job, with those that they started.
    QList<qint64> processes() const;
    QString path(const QString &name = {}) const { return runs.path(name); }
    /// Names in the scratch folder, without settings and own tools.
    QStringList names() const;

    KXQueueController &queue() const { return *m_queue; }

    QString splitSeconds = QStringLiteral("2");
    QString partnerClip; ///< what a join appends, when it is not fullMkv()
    QString soundClip;   ///< what a mux adds, when it is not surroundAc3()
    RealRuns runs;
    NotificationRecord record;

private:
    SelectionPointer removal(const QString &source);
    SelectionPointer muxing(const QString &source);

    jobs::JobFactory m_factory;
    std::unique_ptr<KXQueueController> m_queue;
};

} // namespace support
