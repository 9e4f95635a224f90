#include "support/HostileFields.h"

#include "support/Canaries.h"

using namespace Qt::StringLiterals;

namespace support {

namespace {

QByteArray quoted(const QString &text)
{
    QByteArray json;
    for (const char c : text.toUtf8()) {
        if (c == '"' || c == '\\')
            json += '\\';
        if (c == '\n')
            json += "\\n";
        else
            json += c;
    }
    return '"' + json + '"';
}

bool isLineOf(const QByteArray &line, qsizetype indent, const QString &key)
{
    return line.startsWith(QByteArray(indent, ' ') + '"' + key.toUtf8() + "\": ") && !line.endsWith('{');
}

} // namespace

const QStringList &probedFields()
{
    static const QStringList fields{u"index"_s,
                                    u"codec_type"_s,
                                    u"codec_name"_s,
                                    u"codec_long_name"_s,
                                    u"codec_tag_string"_s,
                                    u"profile"_s,
                                    u"level"_s,
                                    u"width"_s,
                                    u"height"_s,
                                    u"channels"_s,
                                    u"sample_rate"_s,
                                    u"bit_rate"_s,
                                    u"avg_frame_rate"_s,
                                    u"r_frame_rate"_s,
                                    u"duration"_s,
                                    u"disposition.default"_s,
                                    u"tags.title"_s,
                                    u"tags.language"_s,
                                    u"tags.TITLE"_s,
                                    u"tags.LANGUAGE"_s};
    return fields;
}

QStringList hostileValues(const Canaries &canaries)
{
    const QString write = u"metadata=print:file="_s + canaries.target();
    const QString read = u"movie=%1[c];[a][c]overlay"_s.arg(canaries.picture());
    return {u"0;touch X;#"_s,
            u"0$(touch X)`touch X`"_s,
            u"0\";touch X;\"';touch X;'"_s,
            u"0\ntouch X\n|touch X&touch X"_s,
            u"64*iw/2)*2:trunc(ow/a/2)*2[a];[a]%1[b];[b]scale=trunc(1"_s.arg(write),
            u"48[a];%1[b];[b]scale=64:48,[in]null"_s.arg(read),
            u"0 -y %1 -f lavfi"_s.arg(canaries.target()),
            u"../../escaped"_s,
            u"99999999999999999999"_s,
            u"-7"_s,
            u""_s,
            u"\u0663\u0662\u0660\u2028"_s};
}

QByteArray withField(const QByteArray &printed, const QString &field, const QString &text, int stream)
{
    const bool isNested = field.contains(u'.');
    const QString key = field.section(u'.', -1);
    const QByteArray opening = isNested
                                   ? QByteArray(12, ' ') + '"' + field.section(u'.', 0, 0).toUtf8() + "\": {"
                                   : QByteArray(8, ' ') + '{';
    const qsizetype indent = isNested ? 16 : 12;
    QByteArrayList lines;
    int number = -1;
    for (const QByteArray &line : printed.split('\n')) {
        number += line == QByteArray(8, ' ') + '{';
        const bool isMeant = number >= 0 && (stream < 0 || stream == number);
        if (isMeant && isLineOf(line, indent, key))
            continue;
        lines.append(line);
        if (isMeant && line == opening)
            lines.append(QByteArray(indent, ' ') + '"' + key.toUtf8() + "\": " + quoted(text) + ',');
    }
    return lines.join('\n');
}

} // namespace support
