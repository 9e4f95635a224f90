#pragma once

#include "media/FilmReader.h"
#include "tools/ToolProcess.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QTimer>
#include <QUrl>

#include <functional>
#include <memory>
#include <vector>

class KXPreferences;

namespace steps {

/// Asks ffprobe what the films of a job hold and where they end, each film once, several at a time but never
/// more tools than a core each, and never waits for an answer. A location that is no plain file is not asked:
/// its facts say that it is not open. Owned by its job; lives on the main thread.
class FilmReads final : public QObject
{
    Q_OBJECT

public:
    /// So many tools at most run at once.
    FilmReads(const KXPreferences &preferences, int toolsAtOnce);
    ~FilmReads() override;

    /// Asks for what is not known, and not asked for, yet.
    void ask(const QList<media::FilmWish> &wishes);
    bool isBusy() const { return !m_running.empty() || !m_waiting.isEmpty(); }
    /// What is known so far; a film that is still read is not among it.
    const QHash<QUrl, media::FilmFacts> &facts() const { return m_facts; }
    /// Forgets a film, which may have changed since.
    void forget(const QUrl &film) { m_facts.remove(film); }
    /// Other tools that take a core each; to be asked at any time. Without it there are none.
    void setOtherTools(const std::function<int()> &count) { m_otherTools = count; }
    /// Starts what waits, as far as there are cores for it.
    void startWaiting();
    /// Suspends its tools, and starts no other until it is resumed.
    void pause();
    void resume();
    /// Ends what runs and drops what waits. Nobody is told any more.
    void end();

    /// A run of ffprobe that says nothing for so long is given up.
    static constexpr int mostSilentMilliseconds = 60000;

Q_SIGNALS:
    /// All that was asked for is known.
    void answered();

private:
    struct Reading;

    bool isAsked(const QUrl &film) const;
    bool hasCore() const;
    void startNext(Reading &reading, const QStringList &arguments);
    void readFrom(Reading &reading, tools::ToolProcess::Channel channel, const QByteArray &bytes);
    void finish(Reading &reading);
    void conclude(const Reading &reading);

    const KXPreferences &m_preferences;
    const int m_toolsAtOnce;
    std::function<int()> m_otherTools = [] { return 0; };
    bool m_isPaused = false;
    QHash<QUrl, media::FilmFacts> m_facts;
    QList<media::FilmWish> m_waiting;
    std::vector<std::unique_ptr<Reading>> m_running;
};

} // namespace steps
