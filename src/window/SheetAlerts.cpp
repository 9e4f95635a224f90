#include "window/SheetAlerts.h"

#include <QKeyEvent>
#include <QMessageBox>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int second = 1000;
constexpr int noButton = -1;

QMessageBox::Icon iconOf(platform::AlertStyle style)
{
    switch (style) {
    case platform::AlertStyle::Informational:
        return QMessageBox::Information;
    case platform::AlertStyle::Warning:
        return QMessageBox::Warning;
    case platform::AlertStyle::Plain:
        break;
    }
    return QMessageBox::Question;
}

bool closesItself(const platform::AlertPointer &alert)
{
    return alert && alert->closesAfter.count() > 0;
}

} // namespace

SheetAlerts::SheetAlerts()
{
    m_countDown.setInterval(second);
    connect(&m_countDown, &QTimer::timeout, this, &SheetAlerts::countDown);
}

SheetAlerts::~SheetAlerts()
{
    delete m_box;
}

bool SheetAlerts::showAsBar(const platform::AlertPointer &alert)
{
    if (!m_bar || alert->buttons.size() > 1)
        return false;
    m_bars.append({alert, m_bar(alert)});
    return true;
}

void SheetAlerts::show(const platform::AlertPointer &alert, Answered answered)
{
    if (showAsBar(alert))
        return;
    m_waiting.append({alert, std::move(answered)});
    // From the event loop: the code that shows an alert returns first.
    QMetaObject::invokeMethod(this, &SheetAlerts::showNext, Qt::QueuedConnection);
}

void SheetAlerts::close(const platform::AlertPointer &alert)
{
    for (const auto &[shown, takeAway] : std::exchange(m_bars, {})) {
        if (shown == alert)
            takeAway();
        else
            m_bars.append({shown, takeAway});
    }
    m_waiting.removeIf([&](const Entry &entry) { return entry.alert == alert; });
    if (m_shown.alert == alert)
        finish(noButton);
}

void SheetAlerts::showNext()
{
    if (m_box || m_waiting.isEmpty())
        return;
    m_shown = m_waiting.takeFirst();
    m_left = m_shown.alert->closesAfter;
    showBox();
    if (closesItself(m_shown.alert))
        m_countDown.start();
}

void SheetAlerts::showBox()
{
    m_box = new QMessageBox(m_window);
    m_box->setObjectName(u"Alert"_s);
    m_box->setTextFormat(Qt::PlainText); // names of files are no markup
    m_box->setIcon(iconOf(m_shown.alert->style));
    m_box->setText(m_shown.alert->message);
    m_box->setInformativeText(informativeText());
    for (qsizetype i = 0; i < m_shown.alert->buttons.size(); ++i) {
        const bool cancels = i > 0 && i + 1 == m_shown.alert->buttons.size();
        QPushButton *button = m_box->addButton(m_shown.alert->buttons.at(i),
                                               cancels ? QMessageBox::RejectRole : QMessageBox::AcceptRole);
        button->setObjectName(u"AlertButton%1"_s.arg(i));
        connect(button, &QPushButton::clicked, this, [this, i] { finish(static_cast<int>(i)); });
    }
    m_box->installEventFilter(this);
    m_box->setAttribute(Qt::WA_DeleteOnClose, false);
    m_box->setWindowModality(Qt::WindowModal);
    m_box->show();
}

QString SheetAlerts::informativeText() const
{
    QString text = m_shown.alert->informativeText;
    if (closesItself(m_shown.alert)) {
        const auto seconds = (m_left.count() + second - 1) / second;
        text += u"\n\n"_s + tr("Closes by itself in %n second(s).", nullptr, static_cast<int>(seconds));
    }
    if (!m_waiting.isEmpty())
        text += u'\n' + tr("Escape closes this and all that wait.");
    return text;
}

void SheetAlerts::countDown()
{
    m_left -= std::chrono::milliseconds(second);
    if (m_left.count() <= 0)
        return finish(noButton);
    if (m_box)
        m_box->setInformativeText(informativeText());
}

/// The box goes first: an answer may show the next alert.
void SheetAlerts::finish(int button)
{
    m_countDown.stop();
    const Entry entry = std::exchange(m_shown, {});
    if (m_box) {
        m_box->removeEventFilter(this);
        m_box->hide();
        m_box->deleteLater();
        m_box = nullptr;
    }
    if (button != noButton && entry.answered)
        entry.answered(platform::firstButtonReturn + button);
    QMetaObject::invokeMethod(this, &SheetAlerts::showNext, Qt::QueuedConnection);
}

void SheetAlerts::closeAllTimed()
{
    m_waiting.removeIf([](const Entry &entry) { return closesItself(entry.alert); });
    finish(noButton);
}

/// A question that is closed without a button was answered with its last one.
bool SheetAlerts::eventFilter(QObject *watched, QEvent *event)
{
    const bool escapes = event->type() == QEvent::KeyPress &&
                         static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape; // NOLINT
    // The event first: a box that is being destroyed with its window still sends some.
    if ((!escapes && event->type() != QEvent::Close) || watched != m_box)
        return QObject::eventFilter(watched, event);
    if (closesItself(m_shown.alert))
        closeAllTimed();
    else
        finish(static_cast<int>(m_shown.alert->buttons.size()) - 1);
    return true;
}

} // namespace window
