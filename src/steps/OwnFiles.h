#pragma once

#include <QUrl>

#include <functional>

namespace steps {

/// The files that one job made itself, and the only place that writes, appends to, renames or deletes any of
/// them. They lie in folders that are the job's alone until they get their final names; a name that the job
/// has not claimed, and whatever stands outside those folders, is never touched. Owned by the job's
/// OutputGuard; main thread only.
class OwnFiles final
{
public:
    /// Where the file of a claimed name lies now; empty for a name that is not claimed, or has nothing to lie
    /// in.
    using PlaceOf = std::function<QUrl(const QUrl &)>;
    /// The same, after making what it lies in.
    explicit OwnFiles(const PlaceOf &placeOf, const PlaceOf &madePlaceOf);

    /// Names in that folder, which is the job's alone, are taken as they stand.
    void setPrivateFolder(const QString &path);
    /// Whether a plain file of the job stands there.
    bool isOwn(const QUrl &name) const;

    /// Writes a new file; false where anything stands.
    bool create(const QUrl &name, const QByteArray &content = {});
    /// The same; a file that the job made there before is replaced.
    bool write(const QUrl &name, const QByteArray &content);
    /// Copies a plain file, which may be another one of the job, by its name.
    bool copy(const QUrl &from, const QUrl &name);
    /// Makes a link to a file.
    bool link(const QUrl &to, const QUrl &name);
    bool append(const QUrl &name, const QByteArray &bytes) const;
    bool remove(const QUrl &name);
    /// A file of the job takes the place of another one of it.
    bool renameOver(const QUrl &from, const QUrl &to);

private:
    bool isPrivate(const QUrl &name) const;
    QUrl placeOf(const QUrl &name) const;
    QUrl madePlaceOf(const QUrl &name);

    PlaceOf m_placeOf;
    PlaceOf m_madePlaceOf;
    QString m_privateFolder; // canonical; ends in "/"
};

} // namespace steps
