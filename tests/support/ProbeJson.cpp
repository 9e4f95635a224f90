#include "support/ProbeJson.h"

namespace support {

namespace {

const QByteArray tagMark = "tags.";

QByteArray lineOf(const QByteArray &key, const QByteArray &pair, const QByteArray &indent)
{
    return indent + '"' + key + "\": \"" + pair.mid(pair.indexOf('=') + 1) + '"';
}

QByteArray objectOf(const QByteArrayList &stream)
{
    QByteArrayList lines;
    QByteArrayList tags;
    for (const QByteArray &pair : stream) {
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
        objects.append(objectOf(stream));
    return "{\n    \"streams\": [\n" + objects.join(",\n") + "\n    ]\n}\n";
}

} // namespace support
