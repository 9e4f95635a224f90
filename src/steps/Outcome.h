#pragma once

#include <QMetaType>
#include <QString>

namespace steps {

/// How a step or a job ended, in the order in which it gets worse.
enum class Verdict { Unknown, Ok, Warnings, Failed, Stopped, Interrupted };

/// A verdict and a sentence for the user; the sentence is empty when there is nothing to say.
struct Outcome
{
    Verdict verdict = Verdict::Unknown;
    QString sentence;

    static Outcome ok() { return {Verdict::Ok, {}}; }
    static Outcome warnings(const QString &sentence) { return {Verdict::Warnings, sentence}; }
    static Outcome failed(const QString &sentence) { return {Verdict::Failed, sentence}; }
    /// The program ended while it ran.
    static Outcome interrupted(const QString &sentence) { return {Verdict::Interrupted, sentence}; }
    static Outcome stopped() { return {Verdict::Stopped, QStringLiteral("Stopped.")}; }

    /// The worse verdict of both, and both sentences.
    Outcome joinedWith(const Outcome &other) const;
    /// "ok", "warnings", "failed", "stopped" or "interrupted"; "unknown" while it runs.
    QString word() const;
};

} // namespace steps

Q_DECLARE_METATYPE(steps::Outcome)
