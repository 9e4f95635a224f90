#include "cli/NearestWord.h"

#include <QList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace cli {

namespace {

/// How many letters must be put in, taken out, changed, or exchanged with their neighbour.
qsizetype distance(const QString &from, const QString &to)
{
    QList<qsizetype> before(to.size() + 1); // the row of the letter before the last one
    QList<qsizetype> last(to.size() + 1);
    for (qsizetype j = 0; j <= to.size(); ++j)
        last[j] = j;
    for (qsizetype i = 1; i <= from.size(); ++i) {
        QList<qsizetype> row(to.size() + 1);
        row[0] = i;
        for (qsizetype j = 1; j <= to.size(); ++j) {
            const bool isSame = from.at(i - 1) == to.at(j - 1);
            row[j] = std::min({row.at(j - 1) + 1, last.at(j) + 1, last.at(j - 1) + (isSame ? 0 : 1)});
            const bool isExchanged =
                i > 1 && j > 1 && from.at(i - 1) == to.at(j - 2) && from.at(i - 2) == to.at(j - 1);
            if (isExchanged)
                row[j] = std::min(row.at(j), before.at(j - 2) + 1);
        }
        before = last;
        last = row;
    }
    return last.at(to.size());
}

constexpr qsizetype longestTyped = 40; // what is longer was never meant to be a word

} // namespace

QString nearestWord(const QString &typed, const QStringList &words)
{
    if (typed.isEmpty() || typed.size() > longestTyped)
        return {};
    QString nearest;
    qsizetype least = std::min<qsizetype>(3, typed.size() / 3 + 1) + 1;
    for (const QString &word : words) {
        // Who stopped in the middle of a word meant that.
        const qsizetype away = typed.size() > 2 && word.startsWith(typed) ? 1 : distance(typed, word);
        if (away < least) {
            least = away;
            nearest = word;
        }
    }
    return nearest;
}

QString didYouMean(const QString &typed, const QStringList &words, const QString &mark)
{
    const QString word = nearestWord(typed, words);
    return word.isNull() ? QString() : u" Did you mean %1%2?"_s.arg(mark, word);
}

} // namespace cli
