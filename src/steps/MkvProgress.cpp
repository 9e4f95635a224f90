#include "steps/MkvProgress.h"

#include "tools/Numbers.h"

using namespace Qt::StringLiterals;

namespace steps {

namespace {

/// The whole number in front of the percent sign that ends the line; null when it ends otherwise.
QString percentageOf(const QString &line)
{
    const QString piece = line.section(u": "_s, -1).trimmed();
    if (!piece.endsWith(u'%') || !tools::isAllDigits(piece.chopped(1)))
        return {};
    return QString::number(tools::leadingInteger(piece));
}

} // namespace

QString MkvProgressReader::feed(const QByteArray &chunk)
{
    QStringList lines = m_lines.feed(chunk);
    lines.append(m_lines.rest());
    QString last;
    for (const QString &line : std::as_const(lines)) {
        const QString percentage = percentageOf(line);
        if (!percentage.isNull())
            last = percentage;
    }
    return last;
}

} // namespace steps
