#pragma once

#include "platform/AlertPresenter.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QTimer>

class QMessageBox;
class QWidget;

namespace window {

/// Shows questions as sheets of a window, one after the other, and hands messages that ask nothing on to
/// bars. Alerts that close themselves say so; Escape closes such an alert and all alike that wait. Owned by
/// the program; it outlives the windows.
class SheetAlerts final : public QObject, public platform::AlertPresenter
{
    Q_OBJECT

public:
    SheetAlerts();
    ~SheetAlerts() override;

    /// The window whose sheets they are; null shows them on their own.
    void setParentWindow(QWidget *window) { m_window = window; }
    /// Where a message without a question goes instead of a sheet; answers what takes it away again. Without
    /// it everything is a sheet.
    using Bar = std::function<std::function<void()>(const platform::AlertPointer &)>;
    void setBar(const Bar &bar) { m_bar = bar; }
    void show(const platform::AlertPointer &alert, Answered answered) override;
    void close(const platform::AlertPointer &alert) override;
    /// How many alerts wait behind the one that is shown.
    qsizetype waitingCount() const { return m_waiting.size(); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Entry
    {
        platform::AlertPointer alert;
        Answered answered;
    };

    bool showAsBar(const platform::AlertPointer &alert);
    void showNext();
    void showBox();
    void countDown();
    void finish(int button);
    void closeAllTimed();
    QString informativeText() const;

    Bar m_bar;
    QList<std::pair<platform::AlertPointer, std::function<void()>>> m_bars;
    QPointer<QWidget> m_window;
    QPointer<QMessageBox> m_box;
    Entry m_shown;
    QList<Entry> m_waiting;
    QTimer m_countDown;
    std::chrono::milliseconds m_left{0};
};

} // namespace window
