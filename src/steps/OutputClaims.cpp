#include "steps/OutputClaims.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace steps {

QUrl OutputClaims::claimOf(const QUrl &name)
{
    const QFileInfo info(name.toLocalFile());
    const QByteArray key = info.fileName().toLower().normalized(QString::NormalizationForm_C).toUtf8();
    const QByteArray hash = QCryptographicHash::hash(key, QCryptographicHash::Sha1).toHex();
    return QUrl::fromLocalFile(info.absolutePath() + u"/.tessaray-claim-"_s + QString::fromLatin1(hash));
}

bool OutputClaims::isName(const QString &name)
{
    static const QRegularExpression pattern(u"^\\.tessaray-claim-[0-9a-f]{40}(\\.[0-9a-f]{32})?$"_s);
    return pattern.match(name).hasMatch();
}

OutputClaims::Answer OutputClaims::take(const QUrl &name)
{
    if (isStillHeld(name))
        return Answer::Held;
    auto claim = std::make_unique<platform::HolderFile>(claimOf(name));
    const Answer answer = claim->take();
    if (answer == Answer::Held)
        m_claims.insert_or_assign(claimOf(name).toLocalFile(), std::move(claim));
    return answer;
}

bool OutputClaims::has(const QUrl &name) const
{
    return m_claims.contains(claimOf(name).toLocalFile());
}

bool OutputClaims::isStillHeld(const QUrl &name) const
{
    const auto claim = m_claims.find(claimOf(name).toLocalFile());
    return claim != m_claims.end() && claim->second->isHeld();
}

void OutputClaims::release(const QUrl &name)
{
    m_claims.erase(claimOf(name).toLocalFile());
}

void OutputClaims::releaseAll()
{
    m_claims.clear();
}

} // namespace steps
