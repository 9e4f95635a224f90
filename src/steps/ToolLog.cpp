#include "steps/ToolLog.h"

#include "steps/FfmpegProgress.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace steps {

namespace {

bool repeatsTheFile(const QString &line)
{
    return line.startsWith(u' ') || line.startsWith(u"Input #"_s) || line.startsWith(u"Output #"_s);
}

/// Encoders close with their figures, also when the run failed.
bool isClosingFigure(const QString &line)
{
    static const QRegularExpression figures(
        u"^video:|^\\[libx264 @ \\w+\\] (frame [IPB]:|mb [IPB] |consecutive|8x8|coded|i\\d+ |Weighted|ref [PB]|kb/s:)|\\] Qavg:"_s);
    return figures.match(line).hasMatch();
}

} // namespace

ToolLog::ToolLog(const QString &text)
{
    static const QRegularExpression lineEnds(u"[\r\n]+"_s);
    static const QRegularExpression colours(u"\x1b\\[[0-9;]*[A-Za-z]"_s);
    for (QString line : text.split(lineEnds, Qt::SkipEmptyParts)) {
        line.remove(colours); // a line of them alone is none
        if (!line.isEmpty() && !repeatsTheFile(line))
            m_lines.append(line);
    }
}

bool ToolLog::hasLineStartingWith(const QString &start) const
{
    return !firstLineStartingWith(start).isNull();
}

QString ToolLog::firstLineStartingWith(const QString &start) const
{
    const auto found = std::find_if(m_lines.begin(), m_lines.end(),
                                    [&](const QString &line) { return line.startsWith(start); });
    return found == m_lines.end() ? QString() : found->trimmed();
}

QString ToolLog::lastStatusLine() const
{
    const auto found = std::find_if(m_lines.rbegin(), m_lines.rend(),
                                    [](const QString &line) { return isStatusLine(line); });
    return found == m_lines.rend() ? QString() : *found;
}

bool ToolLog::hasLineContaining(const QString &part) const
{
    return std::any_of(m_lines.begin(), m_lines.end(),
                       [&](const QString &line) { return line.contains(part); });
}

QString ToolLog::firstLineContaining(const QStringList &parts) const
{
    for (const QString &line : m_lines) {
        if (std::any_of(parts.begin(), parts.end(), [&](const QString &part) { return line.contains(part); }))
            return line.trimmed();
    }
    return {};
}

QString ToolLog::lastMessage() const
{
    const auto saysMore = [](const QString &line) {
        return !isStatusLine(line) && !isClosingFigure(line) && !line.startsWith(u"Conversion failed"_s) &&
               !line.startsWith(u"Exiting normally"_s) && !line.startsWith(u"Stream mapping"_s) &&
               !line.startsWith(u"Press [q]"_s);
    };
    const auto found = std::find_if(m_lines.rbegin(), m_lines.rend(), saysMore);
    return found == m_lines.rend() ? QString() : found->trimmed();
}

} // namespace steps
