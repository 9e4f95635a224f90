#include "tools/step/OutputGuard.h"

#include "platform/FileIdentity.h"
#include "tools/step/OutputRegistry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace step {

namespace {

/// Equal for two spellings of one name; a link that stands there is not followed.
QString placeKey(const QUrl &location)
{
    const QFileInfo info(location.toLocalFile());
    const QUrl folder = QUrl::fromLocalFile(info.absolutePath());
    return platform::canonicalKey(folder) + u'/' + info.fileName();
}

/// "a.m4v" with " (2)" gives "a (2).m4v".
QUrl withMark(const QUrl &location, const QString &mark)
{
    const QFileInfo info(location.toLocalFile());
    const QString suffix = info.suffix().isEmpty() ? QString() : u'.' + info.suffix();
    const QString stem = info.fileName().chopped(suffix.size());
    return QUrl::fromLocalFile(info.absolutePath() + u'/' + stem + mark + suffix);
}

/// Matches the names of an output's parts and captures their numbers.
QRegularExpression partPattern(const QUrl &output)
{
    const QFileInfo info(output.toLocalFile());
    const QString suffix = info.suffix().isEmpty() ? QString() : u'.' + info.suffix();
    const QString stem = info.fileName().chopped(suffix.size());
    return QRegularExpression(QRegularExpression::anchoredPattern(QRegularExpression::escape(stem) +
                                                                  u"-([0-9]+)"_s +
                                                                  QRegularExpression::escape(suffix)),
                              QRegularExpression::DotMatchesEverythingOption);
}

} // namespace

/// No QDir::filePath(): it takes a name that begins with a colon for a resource.
QList<QUrl> partsOf(const QUrl &output)
{
    const QRegularExpression pattern = partPattern(output);
    const QDir folder = QFileInfo(output.toLocalFile()).absoluteDir();
    QMap<std::pair<qint64, QString>, QUrl> parts; // "a-1" and "a-001" are two
    for (const QString &name : folder.entryList(QDir::Files | QDir::System | QDir::Hidden)) {
        const auto match = pattern.match(name);
        if (match.hasMatch())
            parts.insert({match.captured(1).toLongLong(), name},
                         QUrl::fromLocalFile(folder.path() + u'/' + name));
    }
    return parts.values();
}

OutputGuard::OutputGuard(OutputRegistry &registry, WhenTaken whenTaken)
    : m_registry(registry)
    , m_whenTaken(whenTaken)
{
}

OutputGuard::~OutputGuard()
{
    release();
}

void OutputGuard::setInputs(const QList<QUrl> &inputs)
{
    m_inputs = inputs;
    for (const QUrl &input : inputs)
        m_registry.add(this, input);
}

bool OutputGuard::isInput(const QUrl &location) const
{
    return std::any_of(m_inputs.begin(), m_inputs.end(),
                       [&](const QUrl &input) { return platform::isSameFile(input, location); });
}

bool OutputGuard::isFree(const QUrl &location, OutputForm form) const
{
    const bool stands =
        form == OutputForm::NumberedParts ? !partsOf(location).isEmpty() : platform::isTakenName(location);
    return !stands && !hasClaimed(location) && !m_registry.isTaken(location, this);
}

QUrl OutputGuard::nextFree(const QUrl &wanted, OutputForm form) const
{
    if (isFree(wanted, form))
        return wanted;
    for (int number = 2;; ++number) {
        const QUrl candidate = withMark(wanted, u" (%1)"_s.arg(number));
        if (isFree(candidate, form))
            return candidate;
    }
}

QString OutputGuard::refusalFor(const QUrl &wanted) const
{
    const QString path = wanted.toLocalFile();
    if (isInput(wanted))
        return u"The output %1 would be one of the job's own sources, so nothing was started."_s.arg(path);
    if (hasClaimed(wanted) || m_registry.isTaken(wanted, this))
        return u"The output %1 belongs to another job or open file, so nothing was started."_s.arg(path);
    return platform::isTakenName(wanted) ? refusalForTaken(path) : QString();
}

QString OutputGuard::refusalForTaken(const QString &path) const
{
    if (m_whenTaken == WhenTaken::Refuse)
        return u"The output %1 exists already, so nothing was started."_s.arg(path);
    if (!QFileInfo(path).isFile())
        return u"The output %1 exists already and is no ordinary file, so nothing was started."_s.arg(path);
    return {};
}

/// The plain name is never written, but it is the place of this job's parts.
QString OutputGuard::refusalForParts(const QUrl &wanted) const
{
    const bool isOthers = hasClaimed(wanted) || m_registry.isTaken(wanted, this);
    if (isOthers)
        return u"The output %1 belongs to another job or open file, so nothing was started."_s.arg(
            wanted.toLocalFile());
    for (const QUrl &part : partsOf(wanted)) {
        const QString refusal = refusalFor(part);
        if (!refusal.isNull())
            return refusal;
    }
    return {};
}

OutputGuard::Claim OutputGuard::claimOutput(const QUrl &wanted, OutputForm form)
{
    Claim claim;
    claim.url = m_whenTaken == WhenTaken::NextFreeName ? nextFree(wanted, form) : wanted;
    claim.refusal = form == OutputForm::NumberedParts ? refusalForParts(claim.url) : refusalFor(claim.url);
    if (!claim.refusal.isNull())
        return claim;
    take(claim.url);
    if (form == OutputForm::NumberedParts)
        m_inParts.append(claim.url);
    return claim;
}

void OutputGuard::take(const QUrl &location)
{
    m_claimed.insert(placeKey(location));
    m_registry.add(this, location);
}

QUrl OutputGuard::claimFree(const QUrl &wanted)
{
    const QUrl url = nextFree(wanted);
    take(url);
    return url;
}

bool OutputGuard::hasClaimed(const QUrl &location) const
{
    return m_claimed.contains(placeKey(location)) || isPartOfOurs(location);
}

bool OutputGuard::isPartOfOurs(const QUrl &location) const
{
    const QFileInfo info(location.toLocalFile());
    return std::any_of(m_inParts.begin(), m_inParts.end(), [&](const QUrl &output) {
        return QFileInfo(output.toLocalFile()).absolutePath() == info.absolutePath() &&
               partPattern(output).match(info.fileName()).hasMatch();
    });
}

bool OutputGuard::mayDelete(const QUrl &location) const
{
    return !location.toLocalFile().isEmpty() && !isInput(location);
}

QString OutputGuard::makeWayFor(const QUrl &output)
{
    const QList<QUrl> places = m_inParts.contains(output) ? partsOf(output) : QList<QUrl>{output};
    for (const QUrl &place : places) {
        const QString problem = setAside(place);
        if (!problem.isNull())
            return problem;
    }
    return {};
}

QString OutputGuard::setAside(const QUrl &output)
{
    if (m_whenTaken != WhenTaken::Replace || !platform::isTakenName(output) || !hasClaimed(output))
        return {};
    const bool isOurs = std::any_of(m_replaced.begin(), m_replaced.end(),
                                    [&](const Replaced &replaced) { return replaced.place == output; });
    if (isOurs)
        return {}; // a second pass, or a retry, writes over its own first try
    const QUrl aside = nextFree(withMark(output, u" (replaced)"_s));
    if (!QFile::rename(output.toLocalFile(), aside.toLocalFile()))
        return u"The old %1 can't be set aside, so nothing was started."_s.arg(output.toLocalFile());
    m_replaced.append({output, aside});
    return {};
}

void OutputGuard::forgetReplaced()
{
    for (const Replaced &replaced : std::as_const(m_replaced)) {
        if (platform::isTakenName(replaced.place))
            QFile::remove(replaced.aside.toLocalFile());
        else // nothing came in its place after all
            QFile::rename(replaced.aside.toLocalFile(), replaced.place.toLocalFile());
    }
    m_replaced.clear();
}

QList<std::pair<QUrl, QUrl>> OutputGuard::putBackReplaced()
{
    QList<std::pair<QUrl, QUrl>> moved;
    for (const Replaced &replaced : std::as_const(m_replaced)) {
        if (platform::isTakenName(replaced.place)) {
            const QUrl incomplete = nextFree(withMark(replaced.place, u" (incomplete)"_s));
            if (!QFile::rename(replaced.place.toLocalFile(), incomplete.toLocalFile()))
                continue; // both stay where they are, so nothing is lost
            moved.append({replaced.place, incomplete});
        }
        QFile::rename(replaced.aside.toLocalFile(), replaced.place.toLocalFile());
    }
    m_replaced.clear();
    return moved;
}

void OutputGuard::release()
{
    m_registry.release(this);
    m_claimed.clear();
    m_inParts.clear();
}

} // namespace step
