#pragma once

#include "engines/join/JoinFile.h"
#include "tools/ToolProcess.h"

#include <QObject>

#include <vector>

class KXPreferences;

namespace engines {

/// Looks at the files of a join, each once and so many at a time, and waits for none of them. Owned by the
/// job; main thread only. Nothing is left running when it is ended or goes.
class JoinLook final : public QObject
{
    Q_OBJECT

public:
    JoinLook(const KXPreferences &preferences, int atOnce);
    ~JoinLook() override;

    /// answered() comes from the event loop once all of them were looked at.
    void begin(const QList<QUrl> &files);
    /// Ends what runs. Nobody is told any more.
    void end();
    const QList<JoinFile> &files() const { return m_files; }

    static constexpr int mostMilliseconds = 30000; ///< for one file

Q_SIGNALS:
    void answered();

private:
    struct Look
    {
        qsizetype position = 0;
        tools::ToolProcessPointer task;
        QByteArray json;
        QByteArray words;
        int openChannels = 2;
    };

    void startMore();
    void start(qsizetype position);
    void hear(qsizetype position, tools::ToolProcess::Channel channel, const QByteArray &bytes);
    void channelEnded(qsizetype position);
    void finish(qsizetype position, bool inTime);
    std::vector<Look>::iterator lookAt(qsizetype position);

    const KXPreferences &m_preferences;
    int m_atOnce = 1;
    QList<JoinFile> m_files;
    std::vector<Look> m_looks; ///< those that run
    qsizetype m_next = 0;
    bool m_isLooking = false;
};

} // namespace engines
