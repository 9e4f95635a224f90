#pragma once

#include <QHash>
#include <QString>
#include <QUrl>

#include <memory>

namespace platform {
class HolderFile;
}

namespace steps {

/// The hidden folder in which one job works, inside the folder that takes its results, so that a finished
/// file gets its name by a rename. Private (0700), and locked as long as the job lives: what nobody holds is
/// cleared by the next job that works there. Files have plain names in it, since tools read a meaning into
/// some. Owned by the job's OutputGuard; main thread only.
class WorkFolder final
{
public:
    /// Of a job with results in that folder. Nothing is made yet.
    explicit WorkFolder(const QUrl &parent);
    ~WorkFolder();
    Q_DISABLE_COPY_MOVE(WorkFolder)

    /// Makes it, unless it is there. False where that is not possible.
    bool make();
    bool isMade() const { return m_lock != nullptr; }
    QUrl parent() const { return m_parent; }
    QUrl folder() const { return m_folder; }
    /// Where a file of that final name lies in it. Names of one stem keep one: "a.idx" and "a.sub" stay a
    /// pair.
    QUrl placeOf(const QUrl &name);
    /// The text of a tool with the final names in the place of those.
    QString withFinalNames(QString text) const;
    /// It goes with all that is in it.
    void remove();

    /// How such folders are called: ".tessaray-" and six letters or digits.
    static bool isName(const QString &name);
    static QString lockName() { return QStringLiteral("lock"); }

private:
    QUrl m_parent;
    QUrl m_folder;
    std::unique_ptr<platform::HolderFile> m_lock;
    QHash<QString, QString> m_stems; ///< final stem, with its path, to the plain one
};

} // namespace steps
