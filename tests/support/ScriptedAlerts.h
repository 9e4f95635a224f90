#pragma once

#include "platform/AlertPresenter.h"

#include <QList>

#include <utility>

namespace support {

/// Records every alert and answers from a script: each alert takes the next answer; without one it stays
/// open until answer() is called or it is closed.
class ScriptedAlerts final : public platform::AlertPresenter
{
public:
    void show(const platform::AlertPointer &alert, Answered answered) override;
    void close(const platform::AlertPointer &alert) override;

    /// Adds return codes for the alerts to come.
    void willAnswer(const QList<int> &returnCodes) { m_script += returnCodes; }
    /// Presses a button of the oldest alert that is still open; false when there is none.
    bool answer(int returnCode);

    const QList<platform::AlertPointer> &shown() const { return m_shown; }
    const QList<platform::AlertPointer> &closed() const { return m_closed; }
    QStringList messages() const;
    qsizetype openCount() const { return m_open.size(); }

private:
    QList<int> m_script;
    QList<platform::AlertPointer> m_shown;
    QList<platform::AlertPointer> m_closed;
    QList<std::pair<platform::AlertPointer, Answered>> m_open;
};

} // namespace support
