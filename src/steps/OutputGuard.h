#pragma once

#include "steps/FreeNames.h"
#include "steps/OutputClaims.h"
#include "steps/OwnFiles.h"
#include "steps/PublishList.h"
#include "steps/WorkFolder.h"

#include <QList>
#include <QSet>
#include <QUrl>

#include <memory>

namespace steps {

class OutputRegistry;

/// What happens when an output's name is taken.
enum class WhenTaken {
    NextFreeName, ///< "a (2).m4v": the window and watch mode
    Refuse,       ///< the step does not start
    Replace       ///< the old file stays until the new one takes its place
};

/// Whether a tool writes its output under that name, or numbers it in parts: "a-001.mkv", "a-002.mkv".
enum class OutputForm { OneFile, NumberedParts };

/// Keeps one job from ever harming a file: it gives names that are free, holds them against other jobs and
/// programs, refuses outputs that are inputs, and says where a file lies until it gets its name. Owned by its
/// job; main thread only.
class OutputGuard final
{
public:
    struct Claim
    {
        QUrl url;
        QString refusal; ///< null when the name may be written, else a sentence
    };

    OutputGuard(OutputRegistry &registry, WhenTaken whenTaken);
    ~OutputGuard();
    OutputGuard(const OutputGuard &) = delete;
    OutputGuard &operator=(const OutputGuard &) = delete;

    /// Whether a taken name is no obstacle.
    bool takesNextFree() const { return m_whenTaken == WhenTaken::NextFreeName; }
    /// Names are given and nothing is made: for a job that is not started.
    void planOnly() { m_isPlan = true; }
    bool isPlan() const { return m_isPlan; }
    void setInputs(const QList<QUrl> &inputs);
    bool isInput(const QUrl &location) const;
    const QList<QUrl> &inputs() const { return m_inputs; }
    /// A name for an output of the job, by the rule for taken names.
    Claim claimOutput(const QUrl &wanted, OutputForm form = OutputForm::OneFile);
    /// A name for a log or an intermediate file: always one where nothing stands.
    QUrl claimFree(const QUrl &wanted);
    /// True when that name is an output, log or intermediate file of this job.
    bool hasClaimed(const QUrl &location) const;

    /// What of it the job has made: all its writing, renaming and deleting goes through there.
    OwnFiles &files() { return m_files; }
    const OwnFiles &files() const { return m_files; }

    /// Right before the tool starts: makes what the file will lie in, and removes a try before this one. A
    /// null text, or why the tool must not be started. A name that was not claimed is left alone.
    QString prepare(const QUrl &output);
    /// Where the file of a claimed name lies now: in the work folder, until it gets its name. Any other
    /// location is answered as it is.
    QUrl fileOf(const QUrl &name) const;
    /// The folder in which the job's tools work; empty until it is made.
    QUrl workFolder() const;
    /// The text of a tool with the final names in the place of those in the work folder.
    QString withFinalNames(const QString &text) const;
    /// The parts that are there of an output that comes in parts, by their final names.
    QList<QUrl> partsOf(const QUrl &output) const;

    // The end of a job.
    /// What has to be done to give those finished files their names.
    QList<Publication> publicationsOf(const QList<QUrl> &names) const;
    /// Why they must not get them; a null text when they may.
    QString problemWithPublishing(const QList<QUrl> &names) const;
    /// Another name for a file whose own was taken meanwhile; empty where that is not wanted.
    QUrl renamed(const QUrl &name);
    /// They have them.
    void published(const QList<QUrl> &names);
    /// Moves a file that is not whole to a name that says so, which is answered; empty where that was not
    /// possible.
    QUrl keepIncomplete(const QUrl &name);
    /// Gives a file its name, or the next one that is free, which is answered; empty where that was not
    /// possible.
    QUrl keep(const QUrl &name);
    /// All that has not got its name goes, and names are free for others.
    void release();

private:
    QUrl workPlaceOf(const QUrl &name) const;
    QUrl madePlaceOf(const QUrl &name);
    WorkFolder &folderFor(const QUrl &name) const;
    bool isFree(const QUrl &location, OutputForm form) const;
    QUrl nextFree(const QUrl &wanted, OutputForm form = OutputForm::OneFile,
                  const QSet<QUrl> &except = {}) const;
    QString refusalFor(const QUrl &wanted) const;
    QString refusalForTaken(const QString &path) const;
    QString refusalForParts(const QUrl &wanted) const;
    QString refusalOf(const QUrl &wanted, OutputForm form) const;
    void clearLeftOversBeside(const QUrl &name);
    QString claimOnDisk(const QUrl &name, OutputForm form);
    QUrl outputOfPart(const QUrl &location) const;
    QUrl moved(const QUrl &name, const QUrl &to);
    void take(const QUrl &location);

    OutputRegistry &m_registry;
    WhenTaken m_whenTaken;
    bool m_isPlan = false;
    bool m_isTakenElsewhere = false; ///< why the last claim failed
    QList<QUrl> m_inputs;
    QSet<QString> m_claimed;   // by canonical folder and name
    QSet<QString> m_published; // the same
    QList<QUrl> m_inParts;     // outputs that come in numbered parts
    OutputClaims m_claims;
    mutable std::unique_ptr<WorkFolder> m_folder; ///< beside the first output; made when it is needed
    OwnFiles m_files;
};

} // namespace steps
