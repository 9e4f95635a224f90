#include "support/Canaries.h"

#include "support/ClipFactory.h"
#include "support/Clips.h"

#include <QDir>
#include <QFile>

#include <sys/inotify.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace support {

namespace {

QString canaryPicture()
{
    return clip(u"canary.png"_s, [](const QString &path) {
        runProgram(u"ffmpeg"_s, u"-nostdin -y -loglevel error -f lavfi -i color=white:s=16x16 -frames:v 1 "
                                "-update 1"_s.split(u' ')
                                    << path);
    });
}

constexpr uint32_t touches = IN_OPEN | IN_ACCESS | IN_MODIFY | IN_ATTRIB | IN_CREATE | IN_DELETE | IN_MOVE |
                             IN_DELETE_SELF | IN_MOVE_SELF;

QString wordOf(uint32_t mask)
{
    if (mask & (IN_OPEN | IN_ACCESS))
        return u"opened"_s;
    if (mask & IN_CREATE)
        return u"made"_s;
    return mask & (IN_MODIFY | IN_ATTRIB) ? u"changed"_s : u"removed"_s;
}

} // namespace

Canaries::Canaries(const QString &folder)
    : m_folder(folder)
{
    if (!QDir().mkpath(folder))
        qFatal("can't make %s", qPrintable(folder));
    writeContent(text(), "canary-1f9c7b2d\n");
    writeContent(subtitle(), "1\n00:00:00,000 --> 00:00:00,900\ncanary-1f9c7b2d\n\n");
    if (!QFile::copy(canaryPicture(), picture()) || !QFile::copy(transportStream(), film()))
        qFatal("can't copy the canaries");
}

Canaries::~Canaries()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

void Canaries::arm()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (m_descriptor < 0 ||
        ::inotify_add_watch(m_descriptor, QFile::encodeName(m_folder).constData(), touches) < 0)
        qFatal("can't watch %s", qPrintable(m_folder));
}

QStringList Canaries::seen()
{
    QStringList seen;
    alignas(inotify_event) char buffer[65536];
    for (ssize_t size = 0; (size = ::read(m_descriptor, buffer, sizeof buffer)) > 0;) {
        for (ssize_t at = 0; at < size;) {
            const auto *event = reinterpret_cast<const inotify_event *>(buffer + at);
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            // Who lists the folder opens it: that is no touch.
            if (!(event->mask & IN_ISDIR) && !(event->mask & IN_IGNORED))
                seen.append(wordOf(event->mask) + u' ' + QFile::decodeName(event->len ? event->name : "."));
        }
    }
    seen.removeDuplicates();
    return seen;
}

} // namespace support
