#pragma once

#include "steps/FreeNames.h"
#include "steps/OwnFiles.h"

#include <QList>
#include <QSet>
#include <QUrl>

namespace steps {

class OutputRegistry;

/// What happens when an output's name is taken.
enum class WhenTaken {
    NextFreeName, ///< "a (2).m4v": the window and watch mode
    Refuse,       ///< the step does not start
    Replace       ///< the old file is set aside, and put back unless the job ends well
};

/// Whether a tool writes its output under that name, or numbers it in parts: "a-001.mkv", "a-002.mkv".
enum class OutputForm { OneFile, NumberedParts };

/// Keeps one job from ever harming a file: it gives names that are free, refuses outputs that are
/// inputs, sets replaced files aside and puts them back. Owned by its job; main thread only.
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

    /// Right before the tool starts: moves a file that is to be replaced out of the way, and takes the
    /// name for the job's own. Answers a null text, or why that was not possible. A name that was not
    /// claimed is left alone.
    QString makeWayFor(const QUrl &output);
    /// The job ended well: what was set aside goes.
    void forgetReplaced();
    /// It did not: what was set aside returns, and what stands in its place takes another name.
    /// Answers where that incomplete output is now, for each name that changed.
    QList<std::pair<QUrl, QUrl>> putBackReplaced();
    /// Gives the names free for others.
    void release();

private:
    struct Replaced
    {
        QUrl place;
        QUrl aside;
    };
    bool isFree(const QUrl &location, OutputForm form) const;
    QUrl nextFree(const QUrl &wanted, OutputForm form = OutputForm::OneFile) const;
    QString refusalFor(const QUrl &wanted) const;
    QString refusalForTaken(const QString &path) const;
    QString refusalForParts(const QUrl &wanted) const;
    QUrl outputOfPart(const QUrl &location) const;
    /// The claim that covers a name that may be written, as a key; empty where there is none.
    QString claimOf(const QUrl &location) const;
    QString setAside(const QUrl &output);
    QString beginParts(const QUrl &output);
    void take(const QUrl &location);

    OutputRegistry &m_registry;
    WhenTaken m_whenTaken;
    QList<QUrl> m_inputs;
    QSet<QString> m_claimed; // by canonical folder and name
    QList<QUrl> m_inParts;   // outputs that come in numbered parts
    QList<Replaced> m_replaced;
    OwnFiles m_files;
};

} // namespace steps
