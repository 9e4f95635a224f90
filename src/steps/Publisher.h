#pragma once

#include "steps/PublishList.h"

#include <QHash>
#include <QObject>

#include <future>
#include <memory>

namespace steps {

/// What became of an attempt to give finished files their names.
struct PublishResult
{
    enum class End {
        Done,
        NameTaken,  ///< something stands at the name by now
        NotFlushed, ///< the disk did not take all of it
        Failed      ///< a rename was not possible
    };
    End end = End::Done;
    QUrl name; ///< of the file that it failed for
};

/// Gives finished files of one work folder their names, all or none: they are brought to the disk, the list
/// of renames is written, then they move. It works beside the main thread, as a disk can take its time. Owned
/// by a job.
class Publisher final : public QObject
{
    Q_OBJECT

public:
    Publisher();
    ~Publisher() override;

    /// Begins to bring files to the disk that nobody writes to any more, so that it goes on while they are
    /// checked. An attempt to publish them waits for that and heeds what came of it.
    void flushAhead(const QList<QUrl> &files);
    /// One attempt at a time; ended() follows.
    void start(const QUrl &workFolder, const QList<Publication> &publications);
    /// Ends the attempt: ended() does not follow any more. False when all files have their names; renames
    /// that had begun are waited for.
    bool cancel();

Q_SIGNALS:
    void ended(const steps::PublishResult &result);

private:
    void tell();

    struct Attempt;
    std::shared_ptr<Attempt> m_attempt;
    QHash<QUrl, std::shared_future<bool>> m_flushes; ///< whether the disk took all of a file
};

/// The same, here and now.
PublishResult publishNow(const QUrl &workFolder, const QList<Publication> &publications);

} // namespace steps
