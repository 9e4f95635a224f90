#include "engines/join/JoinLook.h"

#include "media/FileNames.h"
#include "media/Playlists.h"
#include "prefs/KXPreferences.h"
#include "tools/ToolEnvironment.h"

#include <QTimer>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using tools::ToolProcess;

namespace engines {

namespace {

QString problemOf(const QString &name, const QString &why)
{
    return u"%1 %2, so nothing was started."_s.arg(name, why);
}

} // namespace

JoinLook::JoinLook(const KXPreferences &preferences, int atOnce)
    : m_preferences(preferences)
    , m_atOnce(qMax(atOnce, 1))
{
}

JoinLook::~JoinLook()
{
    end();
}

void JoinLook::begin(const QList<QUrl> &files)
{
    end();
    m_files.clear();
    for (const QUrl &file : files) {
        JoinFile found;
        found.url = file;
        m_files.append(found);
    }
    m_next = 0;
    m_isLooking = true;
    QTimer::singleShot(0, this, &JoinLook::startMore);
}

void JoinLook::end()
{
    m_isLooking = false;
    for (Look &look : m_looks)
        disconnect(look.task.get(), nullptr, this, nullptr);
    m_looks.clear(); // ends them
}

/// A list of other files is told when the tool is to be started.
void JoinLook::startMore()
{
    while (m_isLooking && m_next < m_files.size() && std::ssize(m_looks) < m_atOnce) {
        const qsizetype position = m_next++;
        const QUrl file = m_files.at(position).url;
        if (!media::isRegularFile(file))
            m_files[position].problem = problemOf(file.toLocalFile(), u"is no file that can be read"_s);
        else if (!media::namesOtherFiles(file))
            start(position);
    }
    const bool isDone = m_next >= m_files.size() && m_looks.empty();
    if (isDone && std::exchange(m_isLooking, false))
        Q_EMIT answered();
}

void JoinLook::start(qsizetype position)
{
    const QUrl tool = m_preferences.urlOfApp(u"ffprobe"_s);
    ToolProcess::Request request;
    request.program = tool.toLocalFile();
    request.arguments = QStringList{u"-i"_s,
                                    m_files.at(position).url.toLocalFile(),
                                    u"-show_streams"_s,
                                    u"-show_data_hash"_s,
                                    u"md5"_s,
                                    u"-print_format"_s,
                                    u"json"_s};
    request.environment = tools::processEnvironment(tool, request.arguments, m_preferences);
    request.workingFolder = m_preferences.workingFolder();
    Look look;
    look.position = position;
    look.task = ToolProcess::start(request);
    const ToolProcess *task = look.task.get();
    m_looks.push_back(std::move(look));
    connect(task, &ToolProcess::chunkRead, this,
            [this, position](ToolProcess::Channel channel, const QByteArray &bytes) {
                hear(position, channel, bytes);
            });
    connect(task, &ToolProcess::channelEnded, this, [this, position] { channelEnded(position); });
    QTimer::singleShot(mostMilliseconds, task, [this, position] { finish(position, false); });
}

std::vector<JoinLook::Look>::iterator JoinLook::lookAt(qsizetype position)
{
    return std::find_if(m_looks.begin(), m_looks.end(),
                        [&](const Look &look) { return look.position == position; });
}

void JoinLook::hear(qsizetype position, ToolProcess::Channel channel, const QByteArray &bytes)
{
    const auto look = lookAt(position);
    if (look == m_looks.end())
        return;
    (channel == ToolProcess::Channel::Output ? look->json : look->words) += bytes;
}

void JoinLook::channelEnded(qsizetype position)
{
    const auto look = lookAt(position);
    if (look != m_looks.end() && --look->openChannels == 0)
        finish(position, true);
}

void JoinLook::finish(qsizetype position, bool inTime)
{
    const auto found = lookAt(position);
    if (found == m_looks.end())
        return;
    const Look look = std::move(*found);
    m_looks.erase(found);
    disconnect(look.task.get(), nullptr, this, nullptr);
    const QUrl url = m_files.at(position).url;
    m_files[position] =
        joinFileOf(url, {QString::fromUtf8(look.json), QString::fromUtf8(look.words)}, &m_preferences);
    if (!inTime)
        m_files[position].problem = problemOf(url.fileName(), u"did not answer in time"_s);
    else if (look.task->exitStatus() != 0)
        m_files[position].problem = problemOf(url.fileName(), u"can't be read as a film"_s);
    startMore();
}

} // namespace engines
