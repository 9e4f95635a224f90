#include "steps/FilmReads.h"

#include "media/FileNames.h"
#include "prefs/KXPreferences.h"
#include "tools/ToolEnvironment.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using tools::ToolProcess;

namespace steps {

namespace {

constexpr qsizetype mostErrorBytes = 64 * 1024;

} // namespace

/// One film that is being read, by one run of ffprobe after the other.
struct FilmReads::Reading
{
    explicit Reading(const media::FilmWish &wish)
        : film(wish.film)
        , reader(wish)
    {
    }

    QUrl film;
    media::FilmReader reader;
    tools::ToolProcessPointer task;
    QByteArray errors;
    QTimer silence;
    int openChannels = 0;
    QStringList next; ///< of the run that is to be started once it is resumed
};

FilmReads::FilmReads(const KXPreferences &preferences, int toolsAtOnce)
    : m_preferences(preferences)
    , m_toolsAtOnce(std::max(toolsAtOnce, 1))
{
}

FilmReads::~FilmReads()
{
    end();
}

bool FilmReads::isAsked(const QUrl &film) const
{
    return m_facts.contains(film) ||
           std::any_of(m_waiting.begin(), m_waiting.end(),
                       [&](const auto &one) { return one.film == film; }) ||
           std::any_of(m_running.begin(), m_running.end(),
                       [&](const auto &one) { return one->film == film; });
}

void FilmReads::ask(const QList<media::FilmWish> &wishes)
{
    for (const media::FilmWish &wish : wishes) {
        if (isAsked(wish.film))
            continue;
        if (media::isRegularFile(wish.film))
            m_waiting.append(wish);
        else
            m_facts.insert(wish.film, {});
    }
    startWaiting();
}

bool FilmReads::hasCore() const
{
    return static_cast<int>(m_running.size()) + m_otherTools() < m_toolsAtOnce;
}

void FilmReads::startWaiting()
{
    while (!m_waiting.isEmpty() && !m_isPaused && hasCore()) {
        auto reading = std::make_unique<Reading>(m_waiting.takeFirst());
        const QStringList arguments = reading->reader.next();
        m_running.push_back(std::move(reading));
        startNext(*m_running.back(), arguments);
    }
}

void FilmReads::startNext(Reading &reading, const QStringList &arguments)
{
    const QUrl tool = m_preferences.urlOfApp(u"ffprobe"_s);
    ToolProcess::Request request;
    request.program = tool.toLocalFile();
    request.arguments = arguments;
    request.environment = tools::processEnvironment(tool, arguments, m_preferences);
    request.workingFolder = m_preferences.workingFolder();
    reading.errors.clear();
    reading.openChannels = 2;
    reading.task = ToolProcess::start(request);
    reading.silence.setSingleShot(true);
    reading.silence.start(mostSilentMilliseconds);
    connect(&reading.silence, &QTimer::timeout, reading.task.get(), &ToolProcess::terminate);
    connect(reading.task.get(), &ToolProcess::chunkRead, this,
            [this, &reading](ToolProcess::Channel channel, const QByteArray &bytes) {
                readFrom(reading, channel, bytes);
            });
    connect(reading.task.get(), &ToolProcess::channelEnded, this, [this, &reading] {
        if (--reading.openChannels == 0)
            finish(reading);
    });
}

void FilmReads::readFrom(Reading &reading, ToolProcess::Channel channel, const QByteArray &bytes)
{
    if (!m_isPaused)
        reading.silence.start();
    if (channel == ToolProcess::Channel::Output)
        reading.reader.feed(bytes);
    else if (reading.errors.size() < mostErrorBytes)
        reading.errors += bytes;
    if (reading.reader.isCut())
        reading.task->terminate();
}

void FilmReads::finish(Reading &reading)
{
    disconnect(reading.task.get(), nullptr, this, nullptr);
    reading.silence.disconnect();
    reading.reader.finish(reading.errors);
    const QStringList arguments = reading.reader.next();
    if (arguments.isEmpty())
        conclude(reading);
    else if (m_isPaused)
        reading.next = arguments;
    else
        startNext(reading, arguments);
}

void FilmReads::conclude(const Reading &reading)
{
    m_facts.insert(reading.film, reading.reader.facts());
    const auto place = std::find_if(m_running.begin(), m_running.end(),
                                    [&](const auto &one) { return one.get() == &reading; });
    m_running.erase(place);
    startWaiting();
    if (!isBusy())
        Q_EMIT answered();
}

void FilmReads::pause()
{
    m_isPaused = true;
    for (const auto &reading : m_running) {
        reading->silence.stop();
        reading->task->suspend();
    }
}

void FilmReads::resume()
{
    m_isPaused = false;
    for (const auto &reading : m_running) {
        if (!reading->next.isEmpty()) {
            startNext(*reading, std::exchange(reading->next, {}));
        } else {
            reading->task->resume();
            reading->silence.start();
        }
    }
    startWaiting();
}

void FilmReads::end()
{
    m_waiting.clear();
    for (const auto &reading : m_running)
        disconnect(reading->task.get(), nullptr, this, nullptr);
    m_running.clear(); // with the tools, which end
}

} // namespace steps
