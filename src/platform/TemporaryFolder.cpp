#include "platform/TemporaryFolder.h"

#include "platform/PlainFiles.h"

#include <QDateTime>
#include <QDir>
#include <QRandomGenerator>
#include <QRegularExpression>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

constexpr int triesOfATemporaryName = 20;
constexpr int lettersOfAName = 6;
constexpr qint64 secondsOfMaking = 60;
constexpr qint64 daysOfFoldersOfNobody = 7;
const QString temporaryLock = u"lock"_s;

/// A folder without a lock is one that is being made, or whose making or removal was cut short.
bool isLeft(const QFileInfo &folder)
{
    const QUrl lock = QUrl::fromLocalFile(folder.filePath() + u'/' + temporaryLock);
    const qint64 age = folder.lastModified().secsTo(QDateTime::currentDateTime());
    if (!fileAt(lock))
        return age > secondsOfMaking;
    const bool isOld = age > daysOfFoldersOfNobody * 24 * 3600; // of another machine
    return HolderFile::isHolderGone(lock) || (isOld && !HolderFile::isHolderRunning(lock));
}

} // namespace

QString randomLetters(int count)
{
    constexpr QStringView alphabet = u"abcdefghijklmnopqrstuvwxyz0123456789";
    QString letters;
    for (int i = 0; i < count; ++i)
        letters += alphabet.at(QRandomGenerator::system()->bounded(static_cast<int>(alphabet.size())));
    return letters;
}

TemporaryFolder::TemporaryFolder(const QString &parent)
{
    for (int i = 0; i < triesOfATemporaryName && !isValid(); ++i) {
        if (!makeAt(parent + u"/tessaray-"_s + randomLetters(lettersOfAName)))
            return;
    }
}

TemporaryFolder::~TemporaryFolder()
{
    if (isValid())
        removeFolder(QUrl::fromLocalFile(m_path), temporaryLock);
}

/// False where another name would not help.
bool TemporaryFolder::makeAt(const QString &path)
{
    const QUrl folder = QUrl::fromLocalFile(path);
    if (!makePrivateFolder(folder))
        return fileAt(folder).has_value();
    auto lock = std::make_unique<HolderFile>(QUrl::fromLocalFile(path + u'/' + temporaryLock),
                                             keeper::Leaving{true, {}});
    if (lock->take() == HolderFile::Answer::Held) {
        m_path = path;
        m_lock = std::move(lock);
    } else {
        removeFolder(folder);
    }
    return true;
}

void TemporaryFolder::clearLeft(const QString &parent)
{
    static const QRegularExpression name(u"^tessaray-[A-Za-z0-9]{6}$"_s);
    const QDir::Filters folders = QDir::Dirs | QDir::NoSymLinks | QDir::NoDotAndDotDot;
    for (const QFileInfo &folder : QDir(parent).entryInfoList({u"tessaray-??????"_s}, folders)) {
        const bool isOurs = folder.ownerId() == ::getuid() && name.match(folder.fileName()).hasMatch();
        if (isOurs && isLeft(folder))
            removeFolder(QUrl::fromLocalFile(folder.filePath()), temporaryLock);
    }
}

} // namespace platform
