#include "cli/Console.h"

#include "platform/VisibleText.h"
#include "tools/PastableText.h"

#include <QJsonDocument>

#include <cerrno>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using platform::visible;

namespace cli {

namespace {

constexpr int sparseMs = 2000;
constexpr int defaultColumns = 80;

/// 0 when all of it went out, else the error that ended it.
int writeAll(int descriptor, const QByteArray &bytes)
{
    for (qsizetype done = 0; done < bytes.size();) {
        const auto count =
            ::write(descriptor, bytes.constData() + done, static_cast<std::size_t>(bytes.size() - done));
        if (count > 0) {
            done += count;
        } else if (count < 0 && errno == EAGAIN) { // another program on this terminal has made it so
            pollfd room{descriptor, POLLOUT, 0};
            ::poll(&room, 1, -1);
        } else if (count < 0 && errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

void complain(const QByteArray &bytes)
{
    writeAll(STDERR_FILENO, bytes); // where it can't be written, that can't be reported either
}

int terminalColumns()
{
    winsize size = {};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : defaultColumns;
}

bool errorIsTerminal()
{
    return ::isatty(STDERR_FILENO) != 0;
}

} // namespace

/// After a failure nothing more is written, so that what is there is whole up to its end.
void Console::write(const QByteArray &results)
{
    if (m_lostOutput)
        return;
    const int error = writeAll(STDOUT_FILENO, results);
    if (error == 0 || error == EPIPE)
        return;
    m_lostOutput = true;
    say(u"Standard output can't be written: %1."_s.arg(qt_error_string(error)));
}

void Console::print(const QString &text)
{
    write(platform::visibleInLines(text).toUtf8());
}

void Console::result(const QString &line)
{
    endProgress();
    if (!m_json)
        write(visible(line).toUtf8() + '\n');
}

void Console::command(const QString &line)
{
    endProgress();
    if (!m_json)
        write(tools::pastableLine(line).toUtf8() + '\n');
}

void Console::document(const QJsonObject &object)
{
    endProgress();
    if (!m_json)
        write(platform::visibleJson(QJsonDocument(object).toJson(QJsonDocument::Indented)));
}

void Console::object(const QJsonObject &object)
{
    if (m_json)
        write(platform::visibleJson(QJsonDocument(object).toJson(QJsonDocument::Compact)) + '\n');
}

void Console::say(const QString &sentence)
{
    endProgress();
    complain(visible(sentence).toUtf8() + '\n');
}

void Console::explain(const QString &text)
{
    endProgress();
    complain(platform::visibleInLines(text).toUtf8() + '\n');
}

void Console::progress(const QString &text)
{
    if (m_quiet || text == m_lastProgress)
        return;
    if (errorIsTerminal())
        return showLive(text);
    const bool isDue = !m_sinceLine.isValid() || m_sinceLine.elapsed() >= sparseMs;
    m_heldBack = isDue ? QString() : text;
    if (!isDue)
        return;
    m_lastProgress = text;
    m_sinceLine.start();
    complain(visible(text).toUtf8() + '\n');
}

void Console::showLive(const QString &text)
{
    m_lastProgress = text;
    complain("\r\x1b[K" + visible(text).left(terminalColumns() - 1).toUtf8());
    m_liveLineShown = true;
}

void Console::endProgress()
{
    if (m_liveLineShown)
        complain("\n");
    else if (!m_heldBack.isNull())
        complain(visible(m_heldBack).toUtf8() + '\n');
    m_liveLineShown = false;
    m_heldBack.clear();
    m_lastProgress.clear();
    m_sinceLine.invalidate();
}

} // namespace cli
