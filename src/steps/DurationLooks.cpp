#include "steps/DurationLooks.h"

#include "media/FileNames.h"
#include "prefs/KXPreferences.h"
#include "tools/ToolEnvironment.h"

#include <QMutexLocker>

using namespace Qt::StringLiterals;
using tools::ToolProcess;

namespace steps {

DurationLooks::DurationLooks(const KXPreferences &preferences)
    : m_preferences(preferences)
{
    m_limit.setSingleShot(true);
    m_limit.setInterval(mostMilliseconds);
    connect(&m_limit, &QTimer::timeout, this, [this] { finish(m_task.get()); });
}

DurationLooks::~DurationLooks()
{
    end();
}

std::optional<QString> DurationLooks::answerFor(const QUrl &source) const
{
    const QMutexLocker lock(&m_mutex);
    const auto found = m_answers.constFind(source);
    return found == m_answers.constEnd() ? std::nullopt : std::optional(*found);
}

void DurationLooks::keep(const QUrl &source, const QString &answer)
{
    const QMutexLocker lock(&m_mutex);
    m_answers.insert(source, answer);
}

bool DurationLooks::ask(const QList<QUrl> &sources)
{
    for (const QUrl &source : sources) {
        if (answerFor(source) || m_wanted.contains(source))
            continue;
        if (media::isRegularFile(source))
            m_wanted.append(source);
        else
            keep(source, {});
    }
    if (!m_wanted.isEmpty() && !m_task)
        startNext();
    return !m_wanted.isEmpty();
}

void DurationLooks::startNext()
{
    if (m_wanted.isEmpty())
        Q_EMIT answered();
    else
        look(m_wanted.constFirst());
}

void DurationLooks::look(const QUrl &source)
{
    const QUrl tool = m_preferences.urlOfApp(u"ffprobe"_s);
    ToolProcess::Request request;
    request.program = tool.toLocalFile();
    request.arguments = QStringList{u"-i"_s, source.toLocalFile()};
    request.environment = tools::processEnvironment(tool, request.arguments, m_preferences);
    request.workingFolder = m_preferences.workingFolder();
    m_printed.clear();
    m_openChannels = 2;
    m_task = ToolProcess::start(request);
    m_limit.start();
    const ToolProcess *task = m_task.get();
    connect(task, &ToolProcess::chunkRead, this,
            [this](ToolProcess::Channel, const QByteArray &bytes) { m_printed += bytes; });
    connect(task, &ToolProcess::channelEnded, this, [this, task] {
        if (--m_openChannels == 0)
            finish(task);
    });
}

/// One that does not answer in time is given up.
void DurationLooks::finish(const ToolProcess *task)
{
    if (!m_task || m_task.get() != task)
        return;
    m_limit.stop();
    disconnect(m_task.get(), nullptr, this, nullptr);
    m_task.reset(); // ends it where it still runs
    keep(m_wanted.takeFirst(), QString::fromUtf8(m_printed));
    startNext();
}

void DurationLooks::end()
{
    m_limit.stop();
    m_wanted.clear();
    if (m_task)
        disconnect(m_task.get(), nullptr, this, nullptr);
    m_task.reset();
}

} // namespace steps
