// The desktop services of macOS, through the tools that come with it.
#include "window/NativeDesktop.h"

#include <QCoreApplication>
#include <QProcess>

using namespace Qt::StringLiterals;

namespace window {

/// The machine stays awake while this process runs; it also ends when we do.
struct NativeDesktop::Hold
{
    QProcess caffeinate;
};

NativeDesktop::NativeDesktop() = default;

NativeDesktop::~NativeDesktop()
{
    allowSleep();
}

void NativeDesktop::keepAwake(const QString & /*reason*/)
{
    if (m_hold)
        return;
    m_hold = std::make_unique<Hold>();
    m_hold->caffeinate.start(u"/usr/bin/caffeinate"_s,
                             {u"-i"_s, u"-w"_s, QString::number(QCoreApplication::applicationPid())});
}

void NativeDesktop::allowSleep()
{
    if (!m_hold)
        return;
    m_hold->caffeinate.kill();
    m_hold->caffeinate.waitForFinished(1000);
    m_hold.reset();
}

void NativeDesktop::sleep()
{
    QProcess::startDetached(u"/usr/bin/pmset"_s, {u"sleepnow"_s});
}

/// The texts are arguments of the script, never part of it.
void NativeDesktop::tell(const QString &title, const QString &text)
{
    QProcess::startDetached(u"/usr/bin/osascript"_s,
                            {u"-e"_s, u"on run argv"_s, u"-e"_s,
                             u"display notification (item 2 of argv) with title (item 1 of argv)"_s, u"-e"_s,
                             u"end run"_s, title, text});
}

} // namespace window
