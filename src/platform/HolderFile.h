#pragma once

#include "platform/Keeper.h"

#include <QByteArray>
#include <QString>
#include <QUrl>

namespace platform {

/// A file that says which process holds something, made exclusively and gone with its holder's object, or
/// by our keeper where we are gone without a word. It needs no lock of the system, which some volumes grant
/// to all and others to none. One of a process of this machine that is gone is taken over, by one of those
/// who try; one of another machine never is.
class HolderFile final
{
public:
    enum class Answer { Held, Taken, Impossible };

    explicit HolderFile(const QUrl &location, const keeper::Leaving &leaving = {});
    ~HolderFile();
    Q_DISABLE_COPY_MOVE(HolderFile)

    Answer take();
    /// Whether what stands there is still what take() made: somebody may have cleared it away.
    bool isHeld() const;
    /// Whether the process that is named there is one of this machine and gone. False where nothing stands.
    static bool isHolderGone(const QUrl &location);
    /// "process 123 on HOST"; a null text where nothing that can be read stands.
    static QString holderAt(const QUrl &location);
    /// Whether that process is one of this machine and runs: then nothing is abandoned, however old it looks,
    /// as a machine may have slept for weeks.
    static bool isHolderRunning(const QUrl &location);
    /// Takes the file of such a process away.
    static void clearIfGone(const QUrl &location);
    /// What such processes left beside it when they were killed while they took it: files of its name and a
    /// number.
    static void clearBeside(const QUrl &location);

private:
    bool make();
    bool clearAway(const QByteArray &judged) const;

    QUrl m_location;
    keeper::Leaving m_leaving;
    QByteArray m_lines; ///< what was written; empty where nothing is held
};

} // namespace platform
