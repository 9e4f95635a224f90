#include "support/WatchedCli.h"

#include "support/FakeTool.h"
#include "support/StartedShapes.h"
#include "support/Waiting.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <csignal>

using namespace Qt::StringLiterals;

namespace support {

namespace {

/// Links to the recorder, and what is written while it records.
const QStringList notLooked{u"path"_s, u"recorded"_s, u"answers"_s};

/// Results and logs lie beside their films, with a number where the film has the name; a watched folder keeps
/// what is known of its films. The settings are the user's own; a cache of fonts is made by the library that
/// draws them.
const QRegularExpression &results()
{
    static const QRegularExpression expression(
        uR"(^(new media/(in/)?(film|other|extra)( \(2\))?\.[^/]*|new media/in/\.tessaray-watch|(new|changed) (defaults\.json(\.journal)?|media|media/in|home)|)"
        R"((new|changed) home/\.(fontconfig|cache|config)(/.*)?|gone media/late\.mkv|changed (tmp|app|app/Resources/docs|\.))$)"_s);
    return expression;
}

} // namespace

WatchedCli::WatchedCli()
{
    m_cli.useOwnTools();
    m_cli.recordEverything();
    const QString recorded = u"record "_s + path(u"recorded"_s);
    FakeTool::install(m_cli.resources() + u"/mplayer/mplayer"_s,
                      {u"when -noconfig"_s, u"out MPlayer 1.5"_s, u"exit 0"_s, u"end"_s, recorded});
    FakeTool::install(path(u"app/lintwick"_s), {recorded});
    QDir().mkpath(m_cli.resources() + u"/real"_s);
    QFile::rename(m_cli.resources() + u"/ffmpeg/ffprobe"_s, m_cli.resources() + u"/real/ffprobe"_s);
    QDir().mkpath(path(u"answers"_s));
    m_cli.setTool(u"ffmpeg/ffprobe"_s,
                  answeringScript() + u"exec \"%1/real/ffprobe\" \"$@\""_s.arg(m_cli.resources()));
    m_canaries = std::make_unique<Canaries>(path(u"canaries"_s));
}

QString WatchedCli::answeringScript() const
{
    return u"case \" $* \" in *' -show_streams '*)\n"
           "for word in \"$@\"; do\n"
           "    answer=\"%1/${word##*/}.json\"\n"
           "    [ -f \"$answer\" ] && exec /bin/cat \"$answer\"\n"
           "done;; esac\n"_s.arg(path(u"answers"_s));
}

bool WatchedCli::hasStarted(const QString &program) const
{
    const QList<QByteArrayList> runs = m_cli.recorded();
    return std::any_of(runs.begin(), runs.end(), [&](const QByteArrayList &run) {
        return QString::fromUtf8(run.constFirst()).section(u'/', -1) == program;
    });
}

void WatchedCli::answerProbesOf(const QString &name, const QByteArray &text)
{
    m_cli.scratch().write(u"answers/%1.json"_s.arg(name), text);
}

void WatchedCli::begin()
{
    m_cli.forgetRecorded();
    m_before = std::make_unique<Listing>(path(), notLooked);
    m_canaries->arm();
}

QString WatchedCli::offence()
{
    const QString left = processOffence(); // first: what runs may yet do something
    const QStringList touched = m_canaries->seen();
    if (!touched.isEmpty())
        return u"touched: "_s + touched.join(u", "_s);
    const QString started = startedOffence();
    if (!started.isNull())
        return started;
    const QString changed = changesOffence();
    return changed.isNull() ? left : changed;
}

QString WatchedCli::processOffence() const
{
    if (waitFor([this] { return m_cli.processes().isEmpty(); }))
        return {};
    const QString left = u"left running: "_s + m_cli.commandLines().join(u"; "_s);
    for (const qint64 pid : m_cli.processes())
        ::kill(static_cast<pid_t>(pid), SIGKILL);
    return left;
}

QString WatchedCli::startedOffence() const
{
    for (const QByteArrayList &run : m_cli.recorded()) {
        const QString offence = started::offenceOf(run, path());
        if (!offence.isNull())
            return u"started: %1\n    %2"_s.arg(offence, QString::fromUtf8(run.join('|')));
    }
    return {};
}

QString WatchedCli::changesOffence() const
{
    QStringList changes = m_before->changesTo(Listing(path(), notLooked));
    changes.removeIf([](const QString &change) { return results().match(change).hasMatch(); });
    const QString outside = QFileInfo(path()).path() + u"/escaped"_s;
    if (QFileInfo::exists(outside))
        changes.append(u"new "_s + outside);
    return changes.isEmpty() ? QString() : u"changed: "_s + changes.join(u", "_s);
}

void WatchedCli::clean()
{
    for (const auto &name : {u"media"_s, u"tmp"_s, u"answers"_s}) {
        QDir(path(name)).removeRecursively();
        QDir().mkpath(path(name));
    }
    for (const auto &name : {u"app/X"_s, u"defaults.json"_s, u"canaries/written"_s, u"../escaped"_s})
        QFile::remove(path(name));
}

} // namespace support
