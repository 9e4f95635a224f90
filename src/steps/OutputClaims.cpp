#include "steps/OutputClaims.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QLockFile>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace steps {

OutputClaims::OutputClaims() = default;

OutputClaims::~OutputClaims()
{
    releaseAll();
}

QUrl OutputClaims::claimOf(const QUrl &name)
{
    const QFileInfo info(name.toLocalFile());
    const QByteArray key = info.fileName().toLower().normalized(QString::NormalizationForm_C).toUtf8();
    const QByteArray hash = QCryptographicHash::hash(key, QCryptographicHash::Sha1).toHex();
    return QUrl::fromLocalFile(info.absolutePath() + u"/.tessaray-claim-"_s + QString::fromLatin1(hash));
}

bool OutputClaims::isName(const QString &name)
{
    static const QRegularExpression pattern(u"^\\.tessaray-claim-[0-9a-f]{40}$"_s);
    return pattern.match(name).hasMatch();
}

OutputClaims::Answer OutputClaims::take(const QUrl &name)
{
    const QUrl place = claimOf(name);
    if (isStillHeld(name))
        return Answer::Held;
    auto lock = std::make_unique<QLockFile>(place.toLocalFile());
    lock->setStaleLockTime(0); // only by its process, never by its age
    if (!lock->tryLock(0))
        return lock->error() == QLockFile::LockFailedError ? Answer::Taken : Answer::Impossible;
    const auto file = platform::fileAt(place);
    if (!file)
        return Answer::Impossible;
    m_claims.insert_or_assign(place.toLocalFile(), Claim{std::move(lock), *file});
    return Answer::Held;
}

bool OutputClaims::has(const QUrl &name) const
{
    return m_claims.contains(claimOf(name).toLocalFile());
}

bool OutputClaims::isStillHeld(const QUrl &name) const
{
    const QUrl place = claimOf(name);
    const auto claim = m_claims.find(place.toLocalFile());
    const auto found = platform::fileAt(place);
    return claim != m_claims.end() && found && found->isSameAs(claim->second.file);
}

/// A claim that another program made anew is not ours to take away: the lock that would do it is given up.
void OutputClaims::letGo(const QString &path, Claim &claim)
{
    const auto found = platform::fileAt(QUrl::fromLocalFile(path));
    if (!found || found->isSameAs(claim.file))
        claim.lock.reset();
    else
        static_cast<void>(claim.lock.release());
}

void OutputClaims::release(const QUrl &name)
{
    const auto claim = m_claims.find(claimOf(name).toLocalFile());
    if (claim == m_claims.end())
        return;
    letGo(claim->first, claim->second);
    m_claims.erase(claim);
}

void OutputClaims::releaseAll()
{
    for (auto &[path, claim] : m_claims)
        letGo(path, claim);
    m_claims.clear();
}

} // namespace steps
