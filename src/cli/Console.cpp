#include "cli/Console.h"

#include "cli/LiveLine.h"
#include "platform/VisibleText.h"
#include "tools/PastableText.h"

#include <QJsonDocument>

#include <cerrno>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using platform::visible;

namespace cli {

namespace {

constexpr int sparseMs = 2000;
constexpr int defaultColumns = 80;

int terminalColumns()
{
    winsize size = {};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : defaultColumns;
}

/// A dumb one can't take a line back.
bool errorIsTerminal()
{
    return ::isatty(STDERR_FILENO) != 0 && qgetenv("TERM") != "dumb";
}

} // namespace

Console::Console()
    : m_results(STDOUT_FILENO)
    , m_complaints(STDERR_FILENO)
{
    QObject::connect(&m_results, &PendingOutput::failed, &m_results, [this](int error) { lost(error); });
}

/// After a failure nothing more is written, so that what is there is whole up to its end. A reader that went
/// away wants no more, of the work either.
void Console::lost(int error)
{
    if (error == EPIPE) {
        if (m_whenUnread)
            m_whenUnread();
        return;
    }
    m_lostOutput = true;
    say(u"Standard output can't be written: %1."_s.arg(qt_error_string(error)));
}

void Console::flush(const std::function<bool()> &goesOn)
{
    endProgress();
    m_results.flush(goesOn);
    m_complaints.flush(goesOn);
}

void Console::print(const QString &text)
{
    m_results.add(platform::visibleInLines(text).toUtf8());
}

void Console::setPrint(const QString &what)
{
    m_filesOnly = !what.isNull();
    m_fileEnd = what == u"outputs0"_s ? '\0' : '\n';
}

void Console::file(const QString &path)
{
    if (!m_filesOnly)
        return;
    endProgress();
    const bool isSeen = m_fileEnd == '\n' && ::isatty(STDOUT_FILENO) != 0;
    m_results.add((isSeen ? visible(path) : path).toUtf8() + m_fileEnd);
}

void Console::pass(const QByteArray &bytes, bool areResults)
{
    endProgress();
    (areResults && !m_json && !m_filesOnly ? m_results : m_complaints).add(bytes);
}

void Console::result(const QString &line)
{
    endProgress();
    if (!m_json && !m_filesOnly)
        m_results.add(visible(line).toUtf8() + '\n');
}

void Console::command(const QString &line)
{
    endProgress();
    if (!m_json)
        m_results.add(tools::pastableLine(line).toUtf8() + '\n');
}

void Console::document(const QJsonObject &object)
{
    endProgress();
    if (!m_json)
        m_results.add(platform::visibleJson(QJsonDocument(object).toJson(QJsonDocument::Indented)));
}

void Console::object(const QJsonObject &object, PendingOutput::WhenBehind whenBehind)
{
    if (m_json)
        m_results.add(platform::visibleJson(QJsonDocument(object).toJson(QJsonDocument::Compact)) + '\n',
                      whenBehind);
}

void Console::say(const QString &sentence)
{
    endProgress();
    m_complaints.add(visible(sentence).toUtf8() + '\n');
}

void Console::explain(const QString &text)
{
    endProgress();
    m_complaints.add(platform::visibleInLines(text).toUtf8() + '\n');
}

void Console::progress(const QString &text, const QString &subject)
{
    if (m_quiet || text == m_lastProgress)
        return;
    if (errorIsTerminal())
        return showLive(text, subject);
    const bool isDue = !m_sinceLine.isValid() || m_sinceLine.elapsed() >= sparseMs;
    m_heldBack = isDue ? QString() : text;
    if (!isDue)
        return;
    m_lastProgress = text;
    m_sinceLine.start();
    m_complaints.add(visible(text).toUtf8() + '\n');
}

void Console::showLive(const QString &text, const QString &subject)
{
    m_lastProgress = text;
    m_complaints.add("\r\x1b[K" +
                     fittedLine(visible(text), visible(subject), terminalColumns() - 1).toUtf8());
    m_liveLineShown = true;
}

void Console::endProgress()
{
    if (m_liveLineShown)
        m_complaints.add("\n");
    else if (!m_heldBack.isNull())
        m_complaints.add(visible(m_heldBack).toUtf8() + '\n');
    m_liveLineShown = false;
    m_heldBack.clear();
    m_lastProgress.clear();
    m_sinceLine.invalidate();
}

} // namespace cli
