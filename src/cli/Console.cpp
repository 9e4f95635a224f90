#include "cli/Console.h"

#include <QJsonDocument>

#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

constexpr int sparseMs = 2000;
constexpr int defaultColumns = 80;

void write(std::FILE *stream, const QByteArray &bytes)
{
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stream);
    std::fflush(stream);
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

QString printable(QString text)
{
    for (QChar &c : text) {
        if (c.category() == QChar::Other_Control && c != u'\n' && c != u'\t')
            c = u'?';
    }
    return text;
}

QString inOneLine(const QString &text)
{
    QString line = printable(text);
    for (const QChar lineBreak : u"\n\u2028\u2029"_s)
        line.replace(lineBreak, u'?');
    return line;
}

void Console::print(const QString &text)
{
    write(stdout, text.toUtf8());
}

void Console::result(const QString &line)
{
    endProgress();
    if (!m_json)
        write(stdout, line.toUtf8() + '\n');
}

void Console::object(const QJsonObject &object)
{
    if (m_json)
        write(stdout, QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n');
}

void Console::say(const QString &sentence)
{
    endProgress();
    write(stderr, printable(sentence).toUtf8() + '\n');
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
    write(stderr, printable(text).toUtf8() + '\n');
}

void Console::showLive(const QString &text)
{
    m_lastProgress = text;
    const QString line = inOneLine(text).left(terminalColumns() - 1);
    write(stderr, u"\r\x1b[K"_s.toUtf8() + line.toUtf8());
    m_liveLineShown = true;
}

void Console::endProgress()
{
    if (m_liveLineShown)
        write(stderr, "\n");
    else if (!m_heldBack.isNull())
        write(stderr, printable(m_heldBack).toUtf8() + '\n');
    m_liveLineShown = false;
    m_heldBack.clear();
    m_lastProgress.clear();
    m_sinceLine.invalidate();
}

} // namespace cli
