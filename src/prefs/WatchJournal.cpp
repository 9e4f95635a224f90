#include "prefs/WatchJournal.h"

#include "platform/HolderFile.h"
#include "platform/OrdinaryFile.h"
#include "platform/PlainFiles.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace prefs {

namespace {

constexpr int fieldsOfALine = 6;
constexpr qint64 millisecondsOfADay = 86'400'000;
constexpr int daysOfAForeignLock = 7;
constexpr int triesToLock = 40;
constexpr unsigned long millisecondsBetweenTries = 50;

const QList<QByteArray> words{"known", "output", "waiting", "refused"};

qint64 today()
{
    return QDateTime::currentMSecsSinceEpoch() / millisecondsOfADay;
}

QByteArray lineOf(WatchJournal::Why why, const WatchJournal::Film &film, qint64 day, const QString &name)
{
    return QByteArrayList{words.at(static_cast<int>(why)),  QByteArray::number(film.size),
                          QByteArray::number(film.changed), QByteArray::number(film.inode),
                          QByteArray::number(day),          name.toUtf8().toPercentEncoding("/")}
               .join('\t') +
           '\n';
}

QUrl lockOf(const QString &journal)
{
    return QUrl::fromLocalFile(journal + u"-lock"_s);
}

/// One of another machine that was switched off meanwhile would stay for ever.
void clearOldLock(const QString &journal)
{
    const QFileInfo lock(lockOf(journal).toLocalFile());
    if (lock.exists() && lock.lastModified().daysTo(QDateTime::currentDateTime()) >= daysOfAForeignLock)
        platform::removeName(lockOf(journal));
}

/// Behind what a full disk left of a line, a new one begins.
QByteArray apartFromHalfALine(const QString &journal, const QByteArray &lines)
{
    const qint64 size = QFileInfo(journal).size();
    const bool isHalf = size > 0 && platform::readPart(journal, size - 1, 1) != "\n";
    return isHalf ? '\n' + lines : lines;
}

/// In one write, so that lines of several programs do not mix.
bool append(const QString &journal, const QByteArray &lines)
{
    const QUrl place = QUrl::fromLocalFile(journal);
    const auto there = platform::fileAt(place);
    if (!there)
        return platform::createFile(place, lines).has_value();
    return there->isPlain && platform::appendToFile(place, *there, apartFromHalfALine(journal, lines));
}

QString otherPlaceFor(const QString &folder, const QString &otherFolder)
{
    const QByteArray hash = QCryptographicHash::hash(folder.toUtf8(), QCryptographicHash::Sha1).toHex();
    return QDir(otherFolder).filePath(u"watch-%1"_s.arg(QString::fromLatin1(hash)));
}

/// The journal of the folder that holds the file, or of the nearest one around it; a null text without one.
QString journalAround(const QUrl &file)
{
    QString folder = QFileInfo(QFileInfo(file.toLocalFile()).path()).canonicalFilePath();
    while (!folder.isEmpty()) {
        const QString journal = QDir(folder).filePath(WatchJournal::fileName());
        if (const auto there = platform::fileAt(QUrl::fromLocalFile(journal)); there && there->isPlain)
            return journal;
        const QString around = QFileInfo(folder).path();
        if (around == folder)
            break;
        folder = around;
    }
    return {};
}

std::optional<WatchJournal::Film> filmAt(const QString &path)
{
    struct stat status = {};
    if (::lstat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    return WatchJournal::Film{path, status.st_size, QFileInfo(path).lastModified().toMSecsSinceEpoch(),
                              status.st_ino};
}

} // namespace

void WatchJournal::open(const QString &folder, const QString &otherFolder)
{
    if (folder != m_folder) // else what could not be written is still known
        *this = {};
    m_folder = folder;
    const QString inside = QDir(folder).filePath(fileName());
    if (append(inside, {}))
        m_place = inside;
    else
        openElsewhere(inside, otherFolder);
    if (!m_place.isEmpty())
        refresh();
}

/// What the folder's own journal knows counts all the same: the folder may have been writable before.
void WatchJournal::openElsewhere(const QString &inside, const QString &otherFolder)
{
    m_place = inside;
    refresh();
    m_place.clear();
    m_bytesRead = 0;
    if (!otherFolder.isEmpty() && QDir().mkpath(otherFolder))
        m_place = otherPlaceFor(m_folder, otherFolder);
}

void WatchJournal::read(const QString &folder, const QString &otherFolder)
{
    *this = {};
    m_folder = folder;
    const QString elsewhere = otherPlaceFor(folder, otherFolder);
    m_place = QFileInfo::exists(elsewhere) ? elsewhere : QDir(folder).filePath(fileName());
    refresh();
}

QList<WatchJournal::Film> WatchJournal::films(Why why) const
{
    QList<Film> films;
    for (const Line &line : m_byPath) {
        if (line.why == why)
            films.append(line.film);
    }
    return films;
}

bool WatchJournal::isInFolder() const
{
    return !m_place.isEmpty() && QFileInfo(m_place).path() == m_folder;
}

std::optional<WatchJournal::Why> WatchJournal::find(const Film &film) const
{
    if (const auto line = m_byPath.find(film.path); line != m_byPath.end() && line->film.isSameContent(film))
        return line->why;
    const auto line = m_byInode.find(film.inode);
    if (film.inode != 0 && line != m_byInode.end() && line->film.isSameContent(film))
        return line->why;
    return std::nullopt;
}

bool WatchJournal::waits(const Film &film) const
{
    const auto isToDo = [](const Line &line) { return line.why == Why::Waiting || line.why == Why::Refused; };
    const auto byPath = m_byPath.find(film.path);
    const auto byInode = m_byInode.find(film.inode);
    return (byPath != m_byPath.end() && isToDo(*byPath)) ||
           (film.inode != 0 && byInode != m_byInode.end() && isToDo(*byInode));
}

void WatchJournal::note(Why why, const QList<Film> &films)
{
    for (const Film &film : films) {
        const Line line{why, film, today()};
        take(line);
        m_unwritten += written(line);
    }
    refresh();
}

void WatchJournal::take(const Line &line)
{
    m_byPath.insert(line.film.path, line);
    if (line.film.inode != 0)
        m_byInode.insert(line.film.inode, line);
}

QByteArray WatchJournal::written(const Line &line) const
{
    return lineOf(line.why, line.film, line.day, QDir(m_folder).relativeFilePath(line.film.path));
}

std::optional<WatchJournal::Line> WatchJournal::lineIn(const QByteArray &text) const
{
    const QByteArrayList fields = text.split('\t');
    const qsizetype why = words.indexOf(fields.value(0));
    if (fields.size() != fieldsOfALine || why < 0)
        return std::nullopt;
    const QString name = QString::fromUtf8(QByteArray::fromPercentEncoding(fields.at(5)));
    return Line{static_cast<Why>(why),
                {QDir(m_folder).filePath(name), fields.at(1).toLongLong(), fields.at(2).toLongLong(),
                 fields.at(3).toULongLong()},
                fields.at(4).toLongLong()};
}

/// The last line may be half written yet; it is read when it is whole.
void WatchJournal::takeLines(const QByteArray &bytes)
{
    const qsizetype end = bytes.lastIndexOf('\n') + 1;
    for (const QByteArray &text : bytes.first(end).split('\n')) {
        if (const auto line = lineIn(text))
            take(*line);
    }
    m_bytesRead += end;
}

void WatchJournal::refresh()
{
    if (m_place.isEmpty())
        return;
    if (const auto there = platform::fileAt(QUrl::fromLocalFile(m_place)); there && there->isPlain) {
        const qint64 size = QFileInfo(m_place).size();
        if (there->inode != m_inodeRead || size < m_bytesRead)
            m_bytesRead = 0;
        m_inodeRead = there->inode;
        if (size > m_bytesRead)
            takeLines(platform::readPart(m_place, m_bytesRead, platform::mostBytesReadWhole));
    }
    if (!m_unwritten.isEmpty() && append(m_place, m_unwritten))
        m_unwritten.clear();
}

void WatchJournal::tidy(const QSet<QString> &present)
{
    if (m_place.isEmpty())
        return;
    clearOldLock(m_place);
    platform::HolderFile lock(lockOf(m_place));
    if (lock.take() != platform::HolderFile::Answer::Held)
        return;
    refresh();
    QByteArray lines;
    m_byPath.removeIf([&](QHash<QString, Line>::iterator entry) {
        if (present.contains(entry.key()))
            entry->day = today();
        return today() - entry->day > daysKept;
    });
    m_byInode.clear();
    const QList<Line> kept = m_byPath.values();
    for (const Line &line : kept) {
        take(line);
        lines += written(line);
    }
    if (platform::replacePlainFile(QUrl::fromLocalFile(m_place), lines))
        m_unwritten.clear();
}

void WatchJournal::noteDone(const QUrl &film)
{
    const QString place = journalAround(film);
    const auto found =
        place.isEmpty() ? std::nullopt : filmAt(QFileInfo(film.toLocalFile()).canonicalFilePath());
    if (!found)
        return;
    WatchJournal journal;
    journal.m_folder = QFileInfo(place).path();
    journal.m_place = place;
    journal.refresh();
    if (journal.find(*found) == Why::Waiting)
        journal.note(Why::Known, {*found});
}

/// Before the files have their names: a watch must never see one of them that it does not know. A lock that
/// stays is no reason to let an output be taken for a film.
void WatchJournal::noteOutputs(const QList<Output> &outputs)
{
    QHash<QString, QByteArray> lines;
    for (const Output &output : outputs) {
        const QString journal = journalAround(output.name);
        const auto film = journal.isEmpty() ? std::nullopt : filmAt(output.file.toLocalFile());
        if (!film)
            continue;
        const QFileInfo name(output.name.toLocalFile());
        const QString path = QDir(QFileInfo(name.path()).canonicalFilePath()).filePath(name.fileName());
        lines[journal] +=
            lineOf(Why::Output, *film, today(), QFileInfo(journal).dir().relativeFilePath(path));
    }
    for (auto journal = lines.cbegin(); journal != lines.cend(); ++journal) {
        platform::HolderFile lock(lockOf(journal.key()));
        for (int i = 0; i < triesToLock && lock.take() == platform::HolderFile::Answer::Taken; ++i)
            QThread::msleep(millisecondsBetweenTries);
        append(journal.key(), *journal);
    }
}

} // namespace prefs
