#include "steps/WorkFolder.h"

#include "platform/HolderFile.h"
#include "platform/PlainFiles.h"
#include "platform/TemporaryFolder.h"
#include "steps/PublishList.h"

#include <QFileInfo>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace steps {

namespace {

constexpr int triesOfAName = 20;
constexpr qsizetype longestPlainSuffix = 8;

/// With its full stop. Tools choose a format by it; anything else than a short word says nothing to them.
QString plainSuffix(const QFileInfo &name)
{
    static const QRegularExpression word(u"^[A-Za-z0-9]+$"_s);
    const QString suffix = name.suffix();
    const bool isPlain = suffix.size() <= longestPlainSuffix && word.match(suffix).hasMatch();
    return isPlain ? u'.' + suffix : QString();
}

} // namespace

WorkFolder::WorkFolder(const QUrl &parent)
    : m_parent(parent)
{
}

WorkFolder::~WorkFolder()
{
    remove();
}

bool WorkFolder::isName(const QString &name)
{
    static const QRegularExpression pattern(u"^\\.tessaray-[a-z0-9]{6}$"_s);
    return pattern.match(name).hasMatch();
}

/// The lock comes at once: a folder without one is taken for left over once it is old.
bool WorkFolder::make()
{
    for (int i = 0; i < triesOfAName && !isMade(); ++i) {
        m_folder =
            QUrl::fromLocalFile(m_parent.toLocalFile() + u"/.tessaray-"_s + platform::randomLetters(6));
        if (!platform::makePrivateFolder(m_folder)) {
            if (platform::fileAt(m_folder))
                continue;
            return false;
        }
        m_lock = std::make_unique<platform::HolderFile>(
            QUrl::fromLocalFile(m_folder.toLocalFile() + u'/' + lockName()),
            platform::keeper::Leaving{true, recordIn(m_folder).toLocalFile()});
        if (m_lock->take() != platform::HolderFile::Answer::Held)
            remove();
    }
    return isMade();
}

QUrl WorkFolder::placeOf(const QUrl &name)
{
    const QFileInfo info(name.toLocalFile());
    const QString suffix = plainSuffix(info);
    const QString stem = info.absoluteFilePath().chopped(suffix.size());
    auto plain = m_stems.find(stem);
    if (plain == m_stems.end())
        plain = m_stems.insert(stem, QString::number(m_stems.size() + 1));
    // mkvmerge puts the numbers of parts in front of the last full stop, wherever in the path that is.
    return QUrl::fromLocalFile(m_folder.toLocalFile() + u'/' + *plain + (suffix.isEmpty() ? u"."_s : suffix));
}

QString WorkFolder::withFinalNames(QString text) const
{
    const QString start = m_folder.toLocalFile() + u'/';
    if (!isMade() || !text.contains(start))
        return text;
    for (auto stem = m_stems.constBegin(); stem != m_stems.constEnd(); ++stem) {
        for (const QChar behind : u".-'\""_s)
            text.replace(start + stem.value() + behind, stem.key() + behind);
    }
    return text;
}

void WorkFolder::remove()
{
    if (!isMade())
        return;
    platform::removeFolder(m_folder, lockName());
    m_lock.reset();
    m_stems.clear();
}

} // namespace steps
