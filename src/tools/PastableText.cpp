#include "tools/PastableText.h"

#include "platform/VisibleText.h"
#include "tools/OptionItem.h"

#include <algorithm>

using namespace Qt::StringLiterals;
using platform::steersTerminals;

namespace tools {

namespace {

/// "\302\233": every byte as printf of any shell takes it.
QString octal(const QString &text)
{
    QString codes;
    for (const char byte : text.toUtf8())
        codes += u'\\' + QString::number(static_cast<unsigned char>(byte), 8).rightJustified(3, u'0');
    return codes;
}

/// As one word that the shell builds.
QString built(const QString &text)
{
    return u"\"$(printf '"_s + octal(text) + u"')\""_s;
}

/// How many characters from there on the shell builds. A line feed at their end would be lost with the
/// command's own, so the letter behind it is built too.
qsizetype builtLength(QStringView rest)
{
    qsizetype length = 0;
    while (length < rest.size() && steersTerminals(rest.at(length)))
        ++length;
    if (length < rest.size() && rest.at(length - 1) == u'\n')
        length += rest.at(length).isHighSurrogate() ? 2 : 1;
    return length;
}

qsizetype plainLength(QStringView rest)
{
    const auto *end = std::find_if(rest.begin(), rest.end(), [](QChar c) { return steersTerminals(c); });
    return end - rest.begin();
}

QString pastableWord(const QString &word)
{
    if (!steersTerminals(word))
        return tools::pastable(word);
    QString pieces;
    for (qsizetype at = 0; at < word.size();) {
        const QStringView rest = QStringView(word).mid(at);
        const bool builds = steersTerminals(rest.front());
        const QString piece = rest.left(builds ? builtLength(rest) : plainLength(rest)).toString();
        pieces += builds ? built(piece) : tools::safelySingleQuoted(piece);
        at += piece.size();
    }
    return pieces;
}

} // namespace

QString pastableCommand(const QList<std::pair<QString, QString>> &environment, const QStringList &words)
{
    const auto endsInLineFeed = [](const QString &word) { return word.endsWith(u'\n'); };
    const bool anyEndsSo = std::any_of(words.begin(), words.end(), endsInLineFeed) ||
                           std::any_of(environment.begin(), environment.end(),
                                       [&](const auto &setting) { return endsInLineFeed(setting.second); });
    // No shell builds such a word in place, so the whole line is built.
    const auto shown = anyEndsSo ? tools::pastable : pastableWord;
    QStringList pieces;
    for (const auto &[name, value] : environment)
        pieces.append(name + u'=' + shown(value));
    for (const QString &word : words)
        pieces.append(shown(word));
    return pastableLine(pieces.join(u' '));
}

QString pastableLine(const QString &line)
{
    if (!steersTerminals(line))
        return line;
    QString format;
    for (const QChar c : line)
        format += steersTerminals(c) || u"%\\'!"_s.contains(c) ? octal(c) : QString(c);
    return u"eval \"$(printf '"_s + format + u"')\""_s;
}

} // namespace tools
