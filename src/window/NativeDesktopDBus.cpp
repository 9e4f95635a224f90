// The desktop services of Linux and its kin, over the session and system buses.
#include "window/NativeDesktop.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>
#include <QVariantMap>

using namespace Qt::StringLiterals;

namespace window {

/// The machine stays awake while the descriptor that the login manager gave is open.
struct NativeDesktop::Hold
{
    std::unique_ptr<QDBusPendingCallWatcher> call;
    QDBusUnixFileDescriptor lock;
};

NativeDesktop::NativeDesktop() = default;

NativeDesktop::~NativeDesktop() = default;

void NativeDesktop::keepAwake(const QString &reason)
{
    if (m_hold)
        return;
    m_hold = std::make_unique<Hold>();
    QDBusMessage message =
        QDBusMessage::createMethodCall(u"org.freedesktop.login1"_s, u"/org/freedesktop/login1"_s,
                                       u"org.freedesktop.login1.Manager"_s, u"Inhibit"_s);
    message << u"sleep:idle"_s << u"Tessaray"_s << reason << u"block"_s;
    m_hold->call = std::make_unique<QDBusPendingCallWatcher>(QDBusConnection::systemBus().asyncCall(message));
    QObject::connect(m_hold->call.get(), &QDBusPendingCallWatcher::finished, m_hold->call.get(),
                     [hold = m_hold.get()](QDBusPendingCallWatcher *call) {
                         const QDBusPendingReply<QDBusUnixFileDescriptor> reply = *call;
                         if (!reply.isError())
                             hold->lock = reply.value();
                     });
}

void NativeDesktop::allowSleep()
{
    m_hold.reset();
}

void NativeDesktop::sleep()
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(u"org.freedesktop.login1"_s, u"/org/freedesktop/login1"_s,
                                       u"org.freedesktop.login1.Manager"_s, u"Suspend"_s);
    message << false; // no question of the system's
    QDBusConnection::systemBus().asyncCall(message);
}

void NativeDesktop::tell(const QString &title, const QString &text)
{
    QDBusMessage message = QDBusMessage::createMethodCall(u"org.freedesktop.Notifications"_s,
                                                          u"/org/freedesktop/Notifications"_s,
                                                          u"org.freedesktop.Notifications"_s, u"Notify"_s);
    constexpr int desktopsOwnTime = -1;
    message << u"Tessaray"_s << uint(0) << u"tessaray"_s << title << text << QStringList() << QVariantMap()
            << desktopsOwnTime;
    QDBusConnection::sessionBus().asyncCall(message);
}

} // namespace window
