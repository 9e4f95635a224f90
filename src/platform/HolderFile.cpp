#include "platform/HolderFile.h"

#include "platform/OrdinaryFile.h"
#include "platform/PlainFiles.h"
#include "platform/ProcessState.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSysInfo>
#include <QUuid>

#include <cerrno>
#include <csignal>

using namespace Qt::StringLiterals;

namespace platform {

namespace {

constexpr qint64 mostBytesOfHolder = 4096;
constexpr qint64 secondsOfWriting = 60;
constexpr qint64 secondsOfWritingBeside = 2;
constexpr int triesOfTakingOver = 3;
constexpr int numberOfLines = 7;

/// Lines: process, its start, host, machine, boot, and a word that is never the same: a volume may give the
/// number of a file that was removed to the next one at once, so numbers tell no file from another.
QByteArray ownLines()
{
    const qint64 pid = QCoreApplication::applicationPid();
    return QByteArrayList{QByteArray::number(pid),
                          startOfProcess(pid),
                          QSysInfo::machineHostName().toUtf8(),
                          QSysInfo::machineUniqueId(),
                          QSysInfo::bootUniqueId(),
                          QUuid::createUuid().toByteArray(QUuid::Id128),
                          {}}
        .join('\n');
}

bool isRunning(qint64 pid, const QByteArray &start)
{
    const bool isThere =
        (::kill(static_cast<pid_t>(pid), 0) == 0 || errno == EPERM) && stateOfProcess(pid) != 'Z';
    const QByteArray found = startOfProcess(pid);
    return isThere && (start.isEmpty() || found.isEmpty() || start == found);
}

bool isOfThisMachine(const QByteArrayList &lines)
{
    return lines.at(2) == QSysInfo::machineHostName().toUtf8() && lines.at(3) == QSysInfo::machineUniqueId();
}

bool runsHere(const QByteArrayList &lines)
{
    return lines.at(4) == QSysInfo::bootUniqueId() && isRunning(lines.at(0).toLongLong(), lines.at(1));
}

/// The ending of the name under which it is written before it is taken.
const QRegularExpression &besideEnding()
{
    static const QRegularExpression ending(u"\\.[0-9a-f]{32}$"_s);
    return ending;
}

/// Half a file is one that is being written, or was left so by a process that ended just then. Beside the
/// name it holds nothing yet: who is slow there fails to take it.
bool isAbandoned(const QUrl &location)
{
    const QFileInfo info(location.toLocalFile());
    const bool isBeside = besideEnding().match(info.fileName()).hasMatch();
    return info.exists() && info.lastModified().secsTo(QDateTime::currentDateTime()) >
                                (isBeside ? secondsOfWritingBeside : secondsOfWriting);
}

QUrl neighbourOf(const QUrl &location)
{
    return QUrl::fromLocalFile(location.toLocalFile() + u'.' + QUuid::createUuid().toString(QUuid::Id128));
}

QByteArray linesAt(const QUrl &location)
{
    return readPart(location.toLocalFile(), 0, mostBytesOfHolder);
}

} // namespace

HolderFile::HolderFile(const QUrl &location, const keeper::Leaving &leaving)
    : m_location(location)
    , m_leaving(leaving)
{
}

HolderFile::~HolderFile()
{
    if (isHeld())
        removeName(m_location);
    if (!m_lines.isEmpty())
        keeper::letGo(m_location.toLocalFile());
}

bool HolderFile::isHolderGone(const QUrl &location)
{
    const QByteArrayList lines = linesAt(location).split('\n');
    if (lines.size() < numberOfLines)
        return isAbandoned(location);
    return isOfThisMachine(lines) && !runsHere(lines);
}

bool HolderFile::isHolderRunning(const QUrl &location)
{
    const QByteArrayList lines = linesAt(location).split('\n');
    return lines.size() >= numberOfLines && isOfThisMachine(lines) && runsHere(lines);
}

QString HolderFile::holderAt(const QUrl &location)
{
    const QByteArrayList lines = linesAt(location).split('\n');
    if (lines.size() < numberOfLines)
        return {};
    return u"process %1 on %2"_s.arg(QString::fromLatin1(lines.at(0)), QString::fromUtf8(lines.at(2)));
}

void HolderFile::clearIfGone(const QUrl &location)
{
    const QByteArray judged = linesAt(location);
    if (isHolderGone(location))
        HolderFile(location).clearAway(judged);
}

/// Whole from its first moment on: a half one, of a process that was killed just then, would block for a
/// while.
bool HolderFile::make()
{
    const QByteArray lines = ownLines();
    const QUrl beside = neighbourOf(m_location);
    const bool isWhole = !fileAt(m_location) && createFile(beside, lines) && linesAt(beside) == lines;
    if (isWhole && renameToFreeName(beside, m_location))
        m_lines = lines;
    else
        removeName(beside);
    if (isHeld())
        keeper::hold(m_location.toLocalFile(), m_lines, m_leaving);
    return isHeld();
}

void HolderFile::clearBeside(const QUrl &location)
{
    const QFileInfo info(location.toLocalFile());
    for (const QString &name :
         QDir(info.absolutePath()).entryList({info.fileName() + u".*"_s}, QDir::Files | QDir::Hidden)) {
        if (name.size() == info.fileName().size() + 33 && besideEnding().match(name).hasMatch())
            clearIfGone(QUrl::fromLocalFile(info.absolutePath() + u'/' + name));
    }
}

/// By a rename, which only one of several can do; who moved another file than was judged puts it back.
bool HolderFile::clearAway(const QByteArray &judged) const
{
    const QUrl aside = neighbourOf(m_location);
    if (!renameToFreeName(m_location, aside))
        return false;
    if (linesAt(aside) == judged || !renameToFreeName(aside, m_location))
        return removeName(aside);
    return false;
}

HolderFile::Answer HolderFile::take()
{
    for (int i = 0; i < triesOfTakingOver && !isHeld(); ++i) {
        if (make())
            break;
        if (!fileAt(m_location))
            return Answer::Impossible;
        const QByteArray judged = linesAt(m_location);
        if (!isHolderGone(m_location) || !clearAway(judged))
            return Answer::Taken;
    }
    return isHeld() ? Answer::Held : Answer::Taken;
}

bool HolderFile::isHeld() const
{
    return !m_lines.isEmpty() && linesAt(m_location) == m_lines;
}

} // namespace platform
