#include "steps/OutputGuard.h"

#include "platform/FileIdentity.h"
#include "steps/OutputRegistry.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace steps {

namespace {

using platform::placeKey;

/// What the tool puts behind the name of a part.
QString numberOfPart(OutputForm form)
{
    return form == OutputForm::NumberedParts ? u"-001"_s : QString();
}

bool isTooLong(const QUrl &location, OutputForm form)
{
    return platform::isTooLongName(QUrl::fromLocalFile(location.toLocalFile() + numberOfPart(form)));
}

} // namespace

OutputGuard::OutputGuard(OutputRegistry &registry, WhenTaken whenTaken)
    : m_registry(registry)
    , m_whenTaken(whenTaken)
    , m_files([this](const QUrl &location) { return claimOf(location); })
{
}

OutputGuard::~OutputGuard()
{
    release();
}

void OutputGuard::setInputs(const QList<QUrl> &inputs)
{
    m_inputs.clear();
    for (const QUrl &input : inputs) {
        if (m_inputs.contains(input))
            continue; // most tracks are of one file
        m_inputs.append(input);
        m_registry.add(this, input);
    }
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
    if (isFree(wanted, form) && !isTooLong(wanted, form))
        return wanted;
    for (int number = 2;; ++number) {
        const QUrl candidate = withMark(wanted, u" (%1)"_s.arg(number), numberOfPart(form).size());
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
    if (isTooLong(wanted, form)) {
        const QString sentence = u"The name of the output %1 would be too long, so nothing was started."_s;
        return {wanted, sentence.arg(wanted.toLocalFile())};
    }
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
    const QUrl url = nextFree(platform::isTooLongName(wanted) ? withMark(wanted, {}) : wanted);
    take(url);
    return url;
}

bool OutputGuard::hasClaimed(const QUrl &location) const
{
    return m_claimed.contains(placeKey(location)) || !outputOfPart(location).isEmpty();
}

/// The output in parts to which that name would belong; nothing when there is none.
QUrl OutputGuard::outputOfPart(const QUrl &location) const
{
    const QFileInfo info(location.toLocalFile());
    const auto found = std::find_if(m_inParts.begin(), m_inParts.end(), [&](const QUrl &output) {
        return QFileInfo(output.toLocalFile()).absolutePath() == info.absolutePath() &&
               partPattern(output).match(info.fileName()).hasMatch();
    });
    return found == m_inParts.end() ? QUrl() : *found;
}

/// The plain name of an output in parts is never written.
QString OutputGuard::claimOf(const QUrl &location) const
{
    if (location.toLocalFile().isEmpty() || isInput(location) || m_inParts.contains(location))
        return {};
    if (m_claimed.contains(placeKey(location)))
        return placeKey(location);
    const QUrl output = outputOfPart(location);
    return output.isEmpty() ? QString() : placeKey(output) + u'/';
}

QString OutputGuard::makeWayFor(const QUrl &output)
{
    if (!hasClaimed(output))
        return {};
    const bool isInParts = m_inParts.contains(output);
    for (const QUrl &place : isInParts ? partsOf(output) : QList<QUrl>{output}) {
        const QString problem = setAside(place);
        if (!problem.isNull())
            return problem;
    }
    return isInParts ? beginParts(output) : m_files.begin(output);
}

/// All parts are begun by one of them.
QString OutputGuard::beginParts(const QUrl &output)
{
    for (const QUrl &part : partsOf(output)) {
        const QString problem = m_files.begin(part);
        if (!problem.isNull())
            return problem;
    }
    return m_files.begin(withMark(output, u"-001"_s));
}

QString OutputGuard::setAside(const QUrl &output)
{
    if (m_whenTaken != WhenTaken::Replace || !platform::isTakenName(output) || !hasClaimed(output))
        return {};
    if (m_files.isOwn(output))
        return {}; // a second pass, or a retry, writes over its own first try
    const QUrl aside = claimFree(withMark(output, u" (replaced)"_s));
    if (!m_files.setAside(output, aside))
        return u"The old %1 can't be set aside, so nothing was started."_s.arg(output.toLocalFile());
    m_replaced.append({output, aside});
    return {};
}

void OutputGuard::forgetReplaced()
{
    for (const Replaced &replaced : std::as_const(m_replaced)) {
        if (platform::isTakenName(replaced.place))
            m_files.remove(replaced.aside);
        else // nothing came in its place after all
            m_files.giveBack(replaced.aside, replaced.place);
    }
    m_replaced.clear();
}

QList<std::pair<QUrl, QUrl>> OutputGuard::putBackReplaced()
{
    QList<std::pair<QUrl, QUrl>> moved;
    for (const Replaced &replaced : std::as_const(m_replaced)) {
        if (platform::isTakenName(replaced.place)) {
            const QUrl incomplete = claimFree(withMark(replaced.place, u" (incomplete)"_s));
            if (!m_files.rename(replaced.place, incomplete))
                continue; // both stay where they are, so nothing is lost
            moved.append({replaced.place, incomplete});
        }
        m_files.giveBack(replaced.aside, replaced.place);
    }
    m_replaced.clear();
    return moved;
}

void OutputGuard::release()
{
    m_registry.release(this);
    m_claimed.clear();
    m_inParts.clear();
    m_files.clear();
}

} // namespace steps
