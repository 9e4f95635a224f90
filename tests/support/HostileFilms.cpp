#include "support/HostileFilms.h"

#include <QMap>

using namespace Qt::StringLiterals;

namespace support {

QList<Film> hostileFilms()
{
    const QString fill = QString(255 - 4, u'x');
    QList<Film> all{
        {u"plain"_s, u"plain"_s},
        {u"it's"_s, u"it's"_s},
        {u"it's;touch X;#"_s, u"it's;touch X;#"_s},
        {u"';touch X;#"_s, u"';touch X;#"_s},
        {u"\";touch X;#"_s, u"a\";touch X;#"_s},
        {u"\\\";touch X;#"_s, u"a\\\";touch X;#"_s},
        {u"$(touch X)"_s, u"$(touch X)"_s},
        {u"\\$(touch X)"_s, u"\\$(touch X)"_s},
        {u"`touch X`"_s, u"`touch X`"_s},
        {u"\\`touch X\\`"_s, u"\\`touch X\\`"_s},
        {u"$HOME $$ $! $? $0"_s, u"$HOME $$ $! $? $0"_s},
        {u"a\\"_s, u"a\\"_s},
        {u"\\\\"_s, u"\\\\"_s},
        {u"a\\\nb"_s, u"a\\\nb"_s},
        {u"a\nb"_s, u"a\nb"_s},
        {u"\ntouch X\n"_s, u"\ntouch X\n"_s},
        {u"\r\n"_s, u"a\r\nb"_s},
        {u"\ttab"_s, u"a\tb"_s},
        {u" blanks  around "_s, u"two  blanks"_s},
        {u"-rf"_s, u"-rf"_s},
        {u"--help"_s, u"--help"_s},
        {u"-map"_s, u"-map"_s},
        {u"-vf"_s, u"-vf 0:0"_s},
        {u"&> X"_s, u"&> X"_s},
        {u"> X"_s, u"> X"_s},
        {u"2>&1"_s, u"2>&1"_s},
        {u"< in >> out"_s, u"< in >> out"_s},
        {u"| touch X"_s, u"| touch X"_s},
        {u"|| touch X"_s, u"|| touch X"_s},
        {u"&& touch X"_s, u"&& touch X"_s},
        {u"& echo $!"_s, u"& echo $!"_s},
        {u"; touch X"_s, u"; touch X"_s},
        {u"#comment"_s, u"#comment"_s},
        {u"a #b"_s, u"a #b"_s},
        {u"!! !$ a!b"_s, u"!! !$ a!b"_s},
        {u"*"_s, u"*"_s},
        {u"[a-z]?"_s, u"[a-z]?"_s},
        {u"{a,b}"_s, u"Series [1]"_s},
        {u"~"_s, u"~"_s},
        {u"PATH=X touch X"_s, u"PATH=X touch X"_s},
        {u"%s%n %03d %@ %1 %20"_s, u"%s%n %03d %@ %1 %20"_s},
        {u"@file"_s, u"@file"_s},
        {u":colon"_s, u":colon"_s},
        {u"concat:a|b"_s, u"concat:a|b"_s},
        {u"a, b; c: d=e [f] (g)"_s, u"a; c:d=e [f] (g)"_s},
        {u"subtitles=a"_s, u"subtitles=a"_s},
        {u"Stream #0:0: Video: h264"_s, u"Stream #0:0 Video"_s},
        {u"a\nDuration: 99:00:00.00, start: 0"_s, u"Duration: 99:00:00.00"_s},
        {u"a\nframe=1 time=88:00:00.00 bitrate=1"_s, u"frame=1 time=88:00:00.00 bitrate=1"_s},
        {u"Can't write packet with unknown timestamp"_s, u"Can't write packet with unknown timestamp"_s},
        {u"av_interleaved_write_frame(): Invalid argument"_s,
         u"av_interleaved_write_frame(): Invalid argument"_s},
        {u"Invalid data found"_s, u"No data found"_s},
        {u"Füße & 映画 🎬"_s, u"Füße & 映画 🎬"_s},
        {u"e\u0301 \u00e9"_s, u"e\u0301 \u00e9"_s},
        {u"\u2028 \u202e \u00a0"_s, u"a\u2028\u202e\u00a0b"_s},
        {u"\u0001\u0007\u001b[31m\u007f"_s, u"a\u0001\u0007\u001b[31m\u007f"_s},
        {u"a.mkv"_s, u"a.mkv"_s},
        {u".hidden"_s, u".hidden"_s},
        {u"'\"`$\\&|<>*?~!#;()[]{}"_s, u"'`$\\&|<>*?~!#;()[]"_s},
    };
    all.append({fill, QString(200, u't')});
    return all;
}

QString asRead(const QString &title)
{
    QString text;
    for (const QChar c : title) {
        static const QMap<QChar, QString> escapes{
            {u'"', u"\\\""_s}, {u'\\', u"\\\\"_s}, {u'\n', u"\\n"_s}, {u'\r', u"\\r"_s}, {u'\t', u"\\t"_s}};
        if (escapes.contains(c))
            text += escapes.value(c);
        else if (c.unicode() < 32)
            text += u"\\u%1"_s.arg(uint(c.unicode()), 4, 16, QChar(u'0'));
        else
            text += c;
    }
    text.remove(u'"').remove(u',');
    return text.section(u": "_s, 0, 0).trimmed();
}

} // namespace support
