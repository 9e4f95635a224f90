#pragma once

#include <QLabel>
#include <QWidget>

class KXQueueController;

namespace window {

/// The line at the bottom: what is running and how far it is, else the last thing worth saying.
class StatusLine final : public QLabel
{
    Q_OBJECT

public:
    explicit StatusLine(KXQueueController &queue, QWidget *parent = nullptr);

    /// Shown until a job runs.
    void say(const QString &sentence);

private:
    void refresh();
    QString runningText() const;

    KXQueueController &m_queue;
    QString m_sentence;
};

} // namespace window
