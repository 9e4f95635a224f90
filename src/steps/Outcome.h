#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>

namespace steps {

/// How a step or a job ended, in the order in which it gets worse.
enum class Verdict { Unknown, Ok, Warnings, Failed, Stopped, Interrupted };

/// A verdict and a sentence for the user; the sentence is empty when there is nothing to say.
struct Outcome
{
    Verdict verdict = Verdict::Unknown;
    QString sentence;
    /// Those parts of it by which a tool told that its source is damaged, without where it ends.
    QStringList damage = {};

    static Outcome ok() { return {Verdict::Ok, {}, {}}; }
    static Outcome warnings(const QString &sentence) { return {Verdict::Warnings, sentence, {}}; }
    /// Warnings because of a damaged source.
    static Outcome damaged(const QString &sentence) { return {Verdict::Warnings, sentence, {sentence}}; }
    static Outcome failed(const QString &sentence) { return {Verdict::Failed, sentence, {}}; }
    /// The program ended while it ran.
    static Outcome interrupted(const QString &sentence) { return {Verdict::Interrupted, sentence, {}}; }
    static Outcome stopped() { return {Verdict::Stopped, QStringLiteral("Stopped."), {}}; }

    /// The worse verdict of both, and both sentences.
    Outcome joinedWith(const Outcome &other) const;
    /// Without what a tool told of damage, where somebody else tells it better.
    Outcome withoutDamage() const;
    /// "ok", "warnings", "failed", "stopped" or "interrupted"; "unknown" while it runs.
    QString word() const;
};

} // namespace steps

Q_DECLARE_METATYPE(steps::Outcome)
