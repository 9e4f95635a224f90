#pragma once

#include "platform/AlertPresenter.h"
#include "window/Controls.h"

#include <QTimer>

#include <functional>

class QProgressBar;
class QVBoxLayout;

namespace app {
class FileIntake;
}

namespace window {

/// One message of the window: what it is, what it says, at most one thing to do about it. It closes itself
/// after its time, which stands still while the pointer or the keyboard is on it.
class MessageBar final : public Ground
{
    Q_OBJECT

public:
    enum class Kind { Info, Ok, Warning, Bad };

    struct Message
    {
        Kind kind = Kind::Info;
        QString head;
        QString text;
        std::chrono::milliseconds closesAfter{0};
        QString action; ///< the title of its button; empty for none
        std::function<void()> act;
        QString word = QStringLiteral("Alert"); ///< its object name
        bool stays = false;                     ///< also after its button was pressed
    };

    explicit MessageBar(const Message &message, QWidget *parent = nullptr);
    QString head() const { return m_message.head; }
    bool stays() const { return m_message.stays; }

Q_SIGNALS:
    void closed();

protected:
    bool event(QEvent *event) override;

private:
    void countDown();
    void showCountDown();

    Message m_message;
    QTimer m_timer;
    std::chrono::milliseconds m_left;
    QLabel *m_count;
};

/// The messages above the body, the newest on top, at most three at a time, and the progress of opening. One
/// that stays stands below them and is not counted.
class MessageBars final : public QWidget
{
    Q_OBJECT

public:
    explicit MessageBars(app::FileIntake &intake, QWidget *parent = nullptr);

    /// Answers what closes it again.
    MessageBar *show(const MessageBar::Message &message);
    /// False when there is none.
    bool closeTopmost();
    qsizetype count() const { return m_bars.size(); }

private:
    QWidget *probing();
    void showProbing(int done, int total, const QString &fileName);
    void arrange();

    app::FileIntake &m_intake;
    QVBoxLayout *m_layout;
    QWidget *m_probing = nullptr;
    QLabel *m_probingText = nullptr;
    QProgressBar *m_probingBar = nullptr;
    QLabel *m_more;
    QList<MessageBar *> m_bars; ///< the newest first
};

} // namespace window
