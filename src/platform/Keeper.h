#pragma once

#include <QByteArray>
#include <QString>

namespace platform::keeper {

// The keeper is a small process of ours that ends our tools when we are gone, however we ended: it reads a
// pipe whose other end only we hold. It runs our own file, in a session of its own, from the start of the
// first tool on, and is started again should it end. Like the signals of a process it belongs to the process
// and to no object. All of this may be called on any thread.

/// Held while a process is started, so that the pipe is the same before and after.
class Start final
{
public:
    Start();
    ~Start();
    Q_DISABLE_COPY_MOVE(Start)

    /// Between fork and exec, by the process itself once it leads its group: no tool is ever unknown.
    void tellInChild() const;
    void started(qint64 leader);

private:
    int m_pipe = -1;
};

/// The leader has ended. Where others of its group still run, they are kept until they have ended too.
void groupEnded(qint64 leader);
/// What runs now is to go on when this program ends.
void letGroupsRunOn();

/// What goes with a file that says that we hold something.
struct Leaving
{
    bool withFolder = false; ///< the folder in which the file lies
    QString unless; ///< a file that keeps all of it for the next program, while it is there; null: none
};
/// When we are gone that file is removed, if it still holds that content.
void hold(const QString &path, const QByteArray &content, const Leaving &leaving);
void letGo(const QString &path);

/// The id of the keeper; 0 where none runs.
qint64 processId();

} // namespace platform::keeper
