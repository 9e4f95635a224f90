#include "support/ProbeJson.h"

namespace support {

namespace {

const QByteArray tagMark = "tags.";

QByteArray lineOf(const QByteArray &key, const QByteArray &pair, const QByteArray &indent)
{
    return indent + '"' + key + "\": \"" + pair.mid(pair.indexOf('=') + 1) + '"';
}

/// An index that is a number is the stream's own place.
QByteArray inPlace(const QByteArray &pair, qsizetype place)
{
    bool isNumber = false;
    if (pair.startsWith("index="))
        pair.mid(6).toInt(&isNumber);
    return isNumber ? "index=" + QByteArray::number(place) : pair;
}

QByteArray objectOf(const QByteArrayList &stream, qsizetype place)
{
    QByteArrayList lines;
    QByteArrayList tags;
    for (const QByteArray &given : stream) {
        const QByteArray pair = inPlace(given, place);
        const QByteArray key = pair.left(pair.indexOf('='));
        if (key.startsWith(tagMark))
            tags.append(lineOf(key.mid(tagMark.size()), pair, QByteArray(16, ' ')));
        else
            lines.append(lineOf(key, pair, QByteArray(12, ' ')));
    }
    if (!tags.isEmpty())
        lines.append("            \"tags\": {\n" + tags.join(",\n") + "\n            }");
    return "        {\n" + lines.join(",\n") + "\n        }";
}

} // namespace

QByteArray probeJson(const QList<QByteArrayList> &streams)
{
    QByteArrayList objects;
    for (const QByteArrayList &stream : streams)
        objects.append(objectOf(stream, objects.size()));
    return "{\n    \"streams\": [\n" + objects.join(",\n") + "\n    ]\n}\n";
}

} // namespace support
