#include "support/HostileTexts.h"

#include <random>

using namespace Qt::StringLiterals;

namespace support {

namespace {

QStringList classics()
{
    return {
        u"it's"_s,
        u"it's;touch X;#"_s,
        u"';touch X;#"_s,
        u"\";touch X;#"_s,
        u"\\\";touch X;#"_s,
        u"$(touch X)"_s,
        u"\\$(touch X)"_s,
        u"`touch X`"_s,
        u"\\`touch X\\`"_s,
        u"${IFS}touch${IFS}X"_s,
        u"$((1+1))"_s,
        u"$'touch X'"_s,
        u"$HOME"_s,
        u"$$"_s,
        u"$!"_s,
        u"$?"_s,
        u"$0"_s,
        u"${x:-$(touch X)}"_s,
        u"a\\"_s,
        u"a\\\\"_s,
        u"\\"_s,
        u"\\\\\\"_s,
        u"a\\\nb"_s,
        u"\n"_s,
        u"a\nb"_s,
        u"a\n"_s,
        u"\ntouch X\n"_s,
        u"a\r\nb"_s,
        u"\r"_s,
        u"\t"_s,
        u" "_s,
        u"  two  blanks  "_s,
        u" leading"_s,
        u"trailing "_s,
        u"-"_s,
        u"--"_s,
        u"-rf"_s,
        u"--help"_s,
        u"-o out"_s,
        u"&>"_s,
        u"&> X"_s,
        u"> X"_s,
        u">> X"_s,
        u"2>&1"_s,
        u"< /etc/passwd"_s,
        u"<<EOF"_s,
        u"<(touch X)"_s,
        u">(touch X)"_s,
        u"| touch X"_s,
        u"|| touch X"_s,
        u"&& touch X"_s,
        u"& touch X"_s,
        u"& echo $!"_s,
        u"; touch X"_s,
        u";"_s,
        u";;"_s,
        u"#comment"_s,
        u"a #b"_s,
        u"!"_s,
        u"!!"_s,
        u"!$"_s,
        u"a!b"_s,
        u"*"_s,
        u"?"_s,
        u"[a-z]*"_s,
        u"{a,b}"_s,
        u"{1..9}"_s,
        u"~"_s,
        u"~root"_s,
        u"a=b"_s,
        u"PATH=X touch X"_s,
        u"%s%n%x"_s,
        u"%@"_s,
        u"%1 %2"_s,
        u"%20"_s,
        u"100%"_s,
        u"\"\""_s,
        u"''"_s,
        u"'\"'\"'"_s,
        u"'\\''"_s,
        u"\"'\"'`$\\"_s,
        u"\\'"_s,
        u"\\\""_s,
        u"\\n\\t\\x41"_s,
        u"^a^b^"_s,
        u"subtitles=a"_s,
        u"Füße & 映画 🎬"_s,
        u"e\u0301"_s,
        u"\u2028"_s,
        u"\u202e"_s,
        u"\ufeffbom"_s,
        u"\u00a0"_s,
        u"\u0001\u0007\u001b[31m\u007f"_s,
        u"then\u0085fi"_s,
        u"if true; then touch X; fi"_s,
        u"$(id>&2)"_s,
        u"`id>&2`"_s,
        u"\";id>&2;\""_s,
        u"';id>&2;'"_s,
        QString(255, u'a'),
    };
}

QString randomText(std::mt19937 &engine)
{
    static const QStringList pieces{
        u"'"_s,  u"'"_s,  u"\""_s, u"\""_s, u"`"_s,  u"`"_s, u"$"_s,       u"$("_s, u")"_s, u"("_s, u"\\"_s,
        u"\\"_s, u"\\"_s, u";"_s,  u"&"_s,  u"|"_s,  u"<"_s, u">"_s,       u"*"_s,  u"?"_s, u"~"_s, u"!"_s,
        u"#"_s,  u"\n"_s, u"\t"_s, u"\r"_s, u" "_s,  u" "_s, u"{"_s,       u"}"_s,  u"["_s, u"]"_s, u"="_s,
        u"%"_s,  u"^"_s,  u"-"_s,  u"ü"_s,  u"映"_s, u"🎬"_s, u"touch X"_s, u"id"_s, u"a"_s, u"B"_s, u"0"_s};
    const auto below = [&](qsizetype limit) {
        return static_cast<qsizetype>(engine() % static_cast<unsigned>(limit));
    };
    QString text = below(8) == 0 ? u"-"_s : QString();
    for (qsizetype left = 1 + below(24); left > 0; --left)
        text += pieces.at(below(pieces.size()));
    return text;
}

} // namespace

QStringList hostileTexts(qsizetype count)
{
    QStringList texts = classics();
    std::mt19937 engine(20240229); // its numbers are the same everywhere
    while (texts.size() < count)
        texts.append(randomText(engine));
    return texts.first(count);
}

QStringList hostileNames(qsizetype count)
{
    QStringList names = hostileTexts(count);
    for (QString &name : names)
        name.replace(u'/', u'_');
    return names;
}

QStringList temptingPrograms()
{
    return {u"touch"_s, u"id"_s};
}

} // namespace support
