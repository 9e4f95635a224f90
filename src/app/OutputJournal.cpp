#include "app/OutputJournal.h"

#include "platform/OrdinaryFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <csignal>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace app {

namespace {

bool isAlive(qint64 pid)
{
    return ::kill(static_cast<pid_t>(pid), 0) == 0 || errno == EPERM;
}

/// Names may hold line feeds, so each stands between zero bytes.
QStringList readJournal(const QString &path)
{
    QStringList outputs;
    for (const QByteArray &name : platform::readWhole(path).bytes.split('\0')) {
        if (!name.isEmpty())
            outputs.append(QString::fromUtf8(name));
    }
    return outputs;
}

} // namespace

OutputJournal::OutputJournal(const QString &folder)
    : m_folder(folder)
{
}

OutputJournal::~OutputJournal()
{
    finished();
}

QString OutputJournal::ownPath() const
{
    return QDir(m_folder).filePath(u"started-%1.journal"_s.arg(QCoreApplication::applicationPid()));
}

QStringList OutputJournal::takeLeftOver() const
{
    static const QRegularExpression name(u"^started-(\\d+)\\.journal$"_s);
    QStringList outputs;
    for (const QString &entry : QDir(m_folder).entryList({u"started-*.journal"_s}, QDir::Files)) {
        const QRegularExpressionMatch match = name.match(entry);
        if (!match.hasMatch() || isAlive(match.captured(1).toLongLong()))
            continue;
        const QString path = QDir(m_folder).filePath(entry);
        outputs += readJournal(path);
        QFile::remove(path);
    }
    return outputs;
}

/// On the disk before the tool writes its first byte.
void OutputJournal::started(const QString &output)
{
    QDir().mkpath(m_folder);
    QFile file(ownPath());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
        return;
    file.write(output.toUtf8() + '\0');
    file.flush();
    ::fsync(file.handle());
}

void OutputJournal::finished()
{
    QFile::remove(ownPath());
}

} // namespace app
