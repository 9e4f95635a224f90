#pragma once

#include "tools/ToolProcess.h"

#include <QHash>
#include <QList>
#include <QMutex>
#include <QTimer>
#include <QUrl>

#include <optional>

class KXPreferences;

namespace steps {

/// Asks ffprobe how long the sources of a job are, each once, one after the other, and never waits for the
/// answer. A source that is no plain file any more is not asked. Owned by its job; asked and ended on the
/// main thread, while answers may be read and kept from any.
class DurationLooks final : public QObject
{
    Q_OBJECT

public:
    explicit DurationLooks(const KXPreferences &preferences);
    ~DurationLooks() override;

    /// What ffprobe printed of a source; nothing while that is not known.
    std::optional<QString> answerFor(const QUrl &source) const;
    /// An answer that somebody else got.
    void keep(const QUrl &source, const QString &answer);
    /// Asks for what is not known yet; false when that is nothing.
    bool ask(const QList<QUrl> &sources);
    /// Ends the look that runs. Nobody is told any more.
    void end();

    static constexpr int mostMilliseconds = 10000;

Q_SIGNALS:
    /// All that was asked for is known.
    void answered();

private:
    void startNext();
    void look(const QUrl &source);
    void finish(const tools::ToolProcess *task);

    const KXPreferences &m_preferences;
    mutable QMutex m_mutex;
    QHash<QUrl, QString> m_answers;
    QList<QUrl> m_wanted; ///< the first one is looked at
    tools::ToolProcessPointer m_task;
    QByteArray m_printed;
    QTimer m_limit;
    int m_openChannels = 0;
};

} // namespace steps
