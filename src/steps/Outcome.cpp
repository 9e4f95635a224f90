#include "steps/Outcome.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace steps {

Outcome Outcome::joinedWith(const Outcome &other) const
{
    QString both = sentence;
    if (!other.sentence.isEmpty() && !both.contains(other.sentence))
        both += (both.isEmpty() ? u""_s : u" "_s) + other.sentence;
    return {std::max(verdict, other.verdict), both, damage + other.damage};
}

Outcome Outcome::withoutDamage() const
{
    QString rest = sentence;
    for (const QString &part : damage)
        rest.remove(part);
    return {verdict, rest.simplified(), {}};
}

QString Outcome::word() const
{
    switch (verdict) {
    case Verdict::Ok:
        return u"ok"_s;
    case Verdict::Warnings:
        return u"warnings"_s;
    case Verdict::Failed:
        return u"failed"_s;
    case Verdict::Stopped:
        return u"stopped"_s;
    case Verdict::Interrupted:
        return u"interrupted"_s;
    case Verdict::Unknown:
        break;
    }
    return u"unknown"_s;
}

} // namespace steps
