#include "cli/ListedFiles.h"

#include "cli/Session.h"

#include <QFile>
#include <QStringDecoder>

#include <cerrno>
#include <poll.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

constexpr qsizetype mostListBytes = 64 * 1024 * 1024;
constexpr int lookForInterruptMs = 100;

/// Everything up to the end, as far as it comes before an interrupt.
QByteArray readAll(int descriptor, const Session &session)
{
    QByteArray all;
    QByteArray part(65536, '\0');
    while (!session.isInterrupted() && all.size() <= mostListBytes) {
        pollfd some{descriptor, POLLIN, 0};
        if (::poll(&some, 1, lookForInterruptMs) <= 0)
            continue;
        const auto count = ::read(descriptor, part.data(), static_cast<std::size_t>(part.size()));
        if (count == 0 || (count < 0 && errno != EINTR && errno != EAGAIN))
            break;
        if (count > 0)
            all.append(part.constData(), count);
    }
    return all;
}

ListedFiles pathsIn(const QByteArray &bytes, const QString &name)
{
    if (bytes.size() > mostListBytes)
        return {{}, u"The list %1 is too large."_s.arg(name)};
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return {{}, u"The list %1 is not UTF-8; a file with such a name must be renamed first."_s.arg(name)};
    const QChar end = text.contains(QChar(u'\0')) ? QChar(u'\0') : QChar(u'\n');
    const QStringList paths = text.split(end, Qt::SkipEmptyParts);
    return {paths, paths.isEmpty() ? u"The list %1 names no file."_s.arg(name) : QString()};
}

} // namespace

ListedFiles readList(Session &session, const QString &path)
{
    if (path == u"-"_s)
        return pathsIn(readAll(STDIN_FILENO, session), u"on standard input"_s);
    const QString absolute = absolutePath(path);
    QFile file(absolute);
    if (!file.open(QIODevice::ReadOnly))
        return {{}, u"The list %1 can't be read: %2."_s.arg(absolute, file.errorString())};
    return pathsIn(readAll(file.handle(), session), absolute);
}

} // namespace cli
