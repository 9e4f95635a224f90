#pragma once

#include "platform/PlainFiles.h"

#include <QHash>
#include <QSet>

#include <functional>

namespace steps {

/// The files that one job made itself, and the only place that writes, appends to, renames or deletes any.
/// Everything is refused for a name that the job has not claimed, for a file that it did not make, and
/// through a link. Owned by the job's OutputGuard, which knows the claims; main thread only.
class OwnFiles final
{
public:
    /// Answers which claim of the job covers a name (a key), or an empty text.
    using ClaimOf = std::function<QString(const QUrl &)>;

    explicit OwnFiles(const ClaimOf &claimOf);

    /// Names in that folder, which is the job's alone, are as good as claimed and begun.
    void setPrivateFolder(const QString &path);
    /// Whether what stands at that name was made by the job.
    bool isOwn(const QUrl &name) const;

    /// Right before a tool that will write there: from here on what comes at that name counts as made by the
    /// job. Null, or a sentence where something else stands there.
    QString begin(const QUrl &name);
    /// Writes a new file; false where anything stands.
    bool create(const QUrl &name, const QByteArray &content = {});
    /// The same; a file that the job made there before is replaced.
    bool write(const QUrl &name, const QByteArray &content);
    bool copy(const QUrl &from, const QUrl &name);
    /// Makes a link to a file, in the folder that is the job's alone.
    bool link(const QUrl &to, const QUrl &name) const;
    /// Appends to a file that the job created or wrote itself.
    bool append(const QUrl &name, const QByteArray &bytes) const;
    bool remove(const QUrl &name);
    /// Never over anything.
    bool rename(const QUrl &from, const QUrl &to);
    /// A file of the job takes the place of another one of it.
    bool renameOver(const QUrl &from, const QUrl &to);

    /// Moves somebody's file out of the way, to a claimed name: it may go from there later.
    bool setAside(const QUrl &place, const QUrl &aside);
    /// Moves it back. From here on neither name is the job's.
    bool giveBack(const QUrl &aside, const QUrl &place);
    void clear();

private:
    bool isPrivate(const QUrl &name) const;
    bool makeRoomAt(const QUrl &name);
    void keep(const QUrl &name, const platform::FileId &file);
    void moveRecord(const QUrl &from, const QUrl &to);

    ClaimOf m_claimOf;
    QString m_privateFolder;                 // canonical; ends in "/"
    QHash<QString, platform::FileId> m_made; // by name
    QSet<QString> m_begun;                   // claims
    QSet<QString> m_returned;                // names
};

} // namespace steps
