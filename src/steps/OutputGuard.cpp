#include "steps/OutputGuard.h"

#include "platform/FileIdentity.h"
#include "steps/FolderProblem.h"
#include "steps/LeftOvers.h"
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

QString sentenceThatItCantBeMade(const QUrl &output)
{
    const QString why = problemWithFolderOf(output);
    return steps::sentenceThatItCantBeMade(output,
                                           why.isNull() ? u"no file can be made in its folder"_s : why);
}

} // namespace

OutputGuard::OutputGuard(OutputRegistry &registry, WhenTaken whenTaken)
    : m_registry(registry)
    , m_whenTaken(whenTaken)
    , m_files([this](const QUrl &name) { return workPlaceOf(name); },
              [this](const QUrl &name) { return madePlaceOf(name); })
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
    const bool stands = form == OutputForm::NumberedParts ? !steps::partsOf(location).isEmpty()
                                                          : platform::isTakenName(location);
    return !stands && !hasClaimed(location) && !m_registry.isTaken(location, this);
}

QUrl OutputGuard::nextFree(const QUrl &wanted, OutputForm form, const QSet<QUrl> &except) const
{
    if (isFree(wanted, form) && !isTooLong(wanted, form) && !except.contains(wanted))
        return wanted;
    for (int number = 2;; ++number) {
        const QUrl candidate = withMark(wanted, u" (%1)"_s.arg(number), numberOfPart(form).size());
        if (isFree(candidate, form) && !except.contains(candidate))
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
    for (const QUrl &part : steps::partsOf(wanted)) {
        const QString refusal = refusalFor(part);
        if (!refusal.isNull())
            return refusal;
    }
    return {};
}

QString OutputGuard::refusalOf(const QUrl &wanted, OutputForm form) const
{
    return form == OutputForm::NumberedParts ? refusalForParts(wanted) : refusalFor(wanted);
}

/// The name is looked at once more behind the claim: another program may have finished it just before.
OutputGuard::Claim OutputGuard::claimOutput(const QUrl &wanted, OutputForm form)
{
    if (isTooLong(wanted, form)) {
        const QString sentence = u"The name of the output %1 would be too long, so nothing was started."_s;
        return {wanted, sentence.arg(wanted.toLocalFile())};
    }
    clearLeftOversBeside(wanted);
    const bool mayDiffer = m_whenTaken == WhenTaken::NextFreeName;
    QSet<QUrl> others;
    for (;;) {
        Claim claim{mayDiffer ? nextFree(wanted, form, others) : wanted, {}};
        claim.refusal = refusalOf(claim.url, form);
        if (claim.refusal.isNull() && !m_isPlan)
            claim.refusal = claimOnDisk(claim.url, form);
        if (claim.refusal.isNull())
            take(claim.url);
        if (claim.refusal.isNull() && form == OutputForm::NumberedParts)
            m_inParts.append(claim.url);
        if (claim.refusal.isNull() || !mayDiffer || others.contains(claim.url) || !m_isTakenElsewhere)
            return claim;
        others.insert(claim.url);
    }
}

/// Before names are given: the renames of a job that was cut short may be finished by it.
void OutputGuard::clearLeftOversBeside(const QUrl &name)
{
    if (m_folder || m_isPlan)
        return;
    folderFor(name);
    clearLeftOvers(m_folder->parent());
}

/// Null, or why the name can't be held against other programs.
QString OutputGuard::claimOnDisk(const QUrl &name, OutputForm form)
{
    const OutputClaims::Answer answer = m_claims.take(name);
    m_isTakenElsewhere = answer == OutputClaims::Answer::Taken;
    const QString path = name.toLocalFile();
    if (m_isTakenElsewhere)
        return u"The output %1 is being made by another program, so nothing was started."_s.arg(path);
    if (answer == OutputClaims::Answer::Impossible)
        return sentenceThatItCantBeMade(name);
    const QString refusal = refusalOf(name, form);
    if (!refusal.isNull()) {
        m_claims.release(name);
        m_isTakenElsewhere = true;
    }
    return refusal;
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

WorkFolder &OutputGuard::folderFor(const QUrl &name) const
{
    if (!m_folder)
        m_folder =
            std::make_unique<WorkFolder>(QUrl::fromLocalFile(QFileInfo(name.toLocalFile()).absolutePath()));
    return *m_folder;
}

QUrl OutputGuard::workPlaceOf(const QUrl &name) const
{
    if (m_published.contains(placeKey(name)))
        return name;
    if (!hasClaimed(name) || !m_folder || !m_folder->isMade())
        return {};
    const QUrl output = outputOfPart(name);
    if (output.isEmpty())
        return m_folder->placeOf(name);
    const QString number = partPattern(output).match(QFileInfo(name.toLocalFile()).fileName()).captured(1);
    return withMark(m_folder->placeOf(output), u'-' + number);
}

QUrl OutputGuard::madePlaceOf(const QUrl &name)
{
    if (!hasClaimed(name) || m_isPlan || isInput(name) || !folderFor(name).make())
        return {};
    return workPlaceOf(name);
}

QString OutputGuard::prepare(const QUrl &output)
{
    if (!hasClaimed(output))
        return {};
    if (madePlaceOf(output).isEmpty())
        return sentenceThatItCantBeMade(output);
    for (const QUrl &part : m_inParts.contains(output) ? partsOf(output) : QList<QUrl>{output})
        m_files.remove(part);
    return {};
}

QUrl OutputGuard::fileOf(const QUrl &name) const
{
    const QUrl place = workPlaceOf(name);
    return place.isEmpty() ? name : place;
}

QUrl OutputGuard::workFolder() const
{
    return m_folder && m_folder->isMade() ? m_folder->folder() : QUrl();
}

QString OutputGuard::withFinalNames(const QString &text) const
{
    return m_folder ? m_folder->withFinalNames(text) : text;
}

QList<QUrl> OutputGuard::partsOf(const QUrl &output) const
{
    QList<QUrl> parts;
    for (const QUrl &part : steps::partsOf(fileOf(output))) {
        const auto number = partPattern(fileOf(output)).match(QFileInfo(part.toLocalFile()).fileName());
        parts.append(withMark(output, u'-' + number.captured(1)));
    }
    return parts;
}

QList<Publication> OutputGuard::publicationsOf(const QList<QUrl> &names) const
{
    QList<Publication> publications;
    for (const QUrl &name : names) {
        Publication publication{fileOf(name), name, std::nullopt};
        if (m_whenTaken == WhenTaken::Replace)
            publication.replaced = platform::fileAt(name);
        publications.append(publication);
    }
    return publications;
}

/// Somebody may have cleared the claim away meanwhile, and another one have taken it.
QString OutputGuard::problemWithPublishing(const QList<QUrl> &names) const
{
    for (const QUrl &name : names) {
        const QUrl output = outputOfPart(name);
        const QUrl claimed = output.isEmpty() ? name : output;
        if (m_claims.has(claimed) && !m_claims.isStillHeld(claimed))
            return u"The name %1 was taken by another program meanwhile."_s.arg(name.toLocalFile());
    }
    return {};
}

void OutputGuard::published(const QList<QUrl> &names)
{
    for (const QUrl &name : names)
        m_published.insert(placeKey(name));
}

/// Gives the file of a name another one, with the next number where that is taken too.
QUrl OutputGuard::moved(const QUrl &name, const QUrl &to)
{
    const QUrl file = fileOf(name);
    if (!platform::fileAt(file) || file == name)
        return {};
    constexpr int mostTries = 100;
    for (int tries = 0; tries < mostTries; ++tries) {
        const QUrl free = tries == 0 && to == name && !platform::fileAt(name) ? name : nextFree(to);
        if (platform::renameToFreeName(file, free)) {
            take(free);
            m_published.insert(placeKey(free));
            return free;
        }
        if (!platform::fileAt(free))
            return {}; // it is not the name
    }
    return {};
}

QUrl OutputGuard::renamed(const QUrl &name)
{
    if (m_whenTaken != WhenTaken::NextFreeName)
        return {};
    const Claim claim = claimOutput(name);
    return claim.refusal.isNull() ? claim.url : QUrl();
}

QUrl OutputGuard::keepIncomplete(const QUrl &name)
{
    return moved(name, withMark(name, u" (incomplete)"_s));
}

QUrl OutputGuard::keep(const QUrl &name)
{
    return moved(name, name);
}

void OutputGuard::release()
{
    m_folder.reset();
    m_claims.releaseAll();
    m_registry.release(this);
    m_claimed.clear();
    m_published.clear();
    m_inParts.clear();
}

} // namespace steps
