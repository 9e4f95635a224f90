#include "media/ProbeReader.h"

#include "media/ProbedFields.h"
#include "tools/Numbers.h"

using namespace Qt::StringLiterals;

namespace media {

namespace {

QString withoutBlanks(QStringView text)
{
    while (text.startsWith(u' '))
        text = text.mid(1);
    while (text.endsWith(u' '))
        text.chop(1);
    return text.toString();
}

/// Builds the list line by line. The innermost open dictionary takes the values; a closing brace always
/// leads back to the stream, however many were open.
class StreamListReader
{
public:
    void read(const QString &line);
    QList<QVariantMap> finish();

private:
    struct Open
    {
        QString key;
        QVariantMap values;
    };

    void startStream();
    void startNested(const QString &line);
    void store(const QString &line);
    void closeNested();
    void storeOwn(const QString &key, const QVariant &value);

    /// Only titles with braces nest this deep. What is deeper is dropped: it is never read, and a file
    /// with a hundred thousand of them must not cost the stack.
    static constexpr qsizetype deepest = 32;

    QList<QVariantMap> m_streams;
    QList<Open> m_open{Open{}}; ///< the stream, then its nested dictionaries
    qsizetype m_dropped = 0;    ///< how many deeper ones are open
    bool m_inStream = false;    ///< false until the first one starts: those values go nowhere
};

void StreamListReader::read(const QString &line)
{
    const bool opens = line.contains(u'{');
    const bool hasKey = line.contains(u": "_s);
    if (opens && !hasKey)
        startStream();
    else if (opens)
        startNested(line);
    else if (line.contains(u'}'))
        closeNested();
    else if (hasKey)
        store(line);
}

void StreamListReader::startStream()
{
    closeNested();
    if (m_inStream)
        m_streams.append(m_open.constFirst().values);
    m_open = {Open{}};
    m_inStream = true;
}

void StreamListReader::startNested(const QString &line)
{
    if (m_open.size() > deepest)
        ++m_dropped;
    else
        m_open.append({withoutBlanks(QStringView(line).left(line.indexOf(u": "_s))), {}});
}

void StreamListReader::store(const QString &line)
{
    const QStringList pieces = line.split(u": "_s);
    const QString key = withoutBlanks(pieces.at(0));
    const QString value = withoutBlanks(pieces.at(1));
    if (m_dropped > 0)
        return;
    if (m_open.size() > 1)
        m_open.last().values.insert(key, value);
    else
        storeOwn(key, value);
}

void StreamListReader::storeOwn(const QString &key, const QVariant &value)
{
    QVariantMap &own = m_open.first().values;
    if (own.contains(key))
        return;
    const bool isText = value.typeId() == QMetaType::QString;
    if (isText ? fitsItsField(key, value.toString()) : !isTypedField(key))
        own.insert(key, value);
    else if (key == u"index"_s)
        own.insert(key, u""_s); // a stream that doesn't tell which one it is, not one that tells nothing
}

void StreamListReader::closeNested()
{
    while (m_open.size() > 1) {
        const Open nested = m_open.takeLast();
        if (m_open.size() > 1)
            m_open.last().values.insert(nested.key, nested.values);
        else
            storeOwn(nested.key, nested.values);
    }
    m_dropped = 0;
}

QList<QVariantMap> StreamListReader::finish()
{
    startStream();
    return m_streams;
}

/// The lines between the first two (the opening brace and the list's key) and the last two.
QStringList streamLines(const QString &output)
{
    QString text = output;
    const QStringList lines = text.remove(u'"').split(u'\n');
    return lines.mid(2, qMax<qsizetype>(0, lines.size() - 4));
}

} // namespace

bool holdsStreamList(const QString &output)
{
    return !output.contains(u"Invalid data found"_s) && output.contains(u"\"streams\": ["_s);
}

QList<QVariantMap> streamsIn(const QString &output)
{
    StreamListReader reader;
    for (QString line : streamLines(output))
        reader.read(line.remove(u','));
    return reader.finish();
}

bool standInTheirPlaces(const QList<QVariantMap> &streams)
{
    qint64 place = 0;
    for (const QVariantMap &stream : streams) {
        const bool isStream = stream.contains(u"index"_s) || stream.contains(u"codec_type"_s);
        if (stream.contains(u"index"_s) && textIn(stream, u"index"_s) != QString::number(place))
            return false;
        place += isStream ? 1 : 0;
    }
    return true;
}

QStringList streamLineCodecs(const QString &output)
{
    QStringList codecs;
    for (const QString &line : output.split(u'\n')) {
        const QStringList words = line.split(u':').value(3).split(u' ');
        if (words.size() > 1)
            codecs.append(words.at(1));
    }
    return codecs;
}

std::optional<qint64> containerBitRate(const QString &output)
{
    const QStringList lines = output.split(u'\n').filter(u"Duration:"_s);
    const QString mark = u"bitrate: "_s;
    if (lines.size() != 1 || !lines.constFirst().contains(mark))
        return std::nullopt;
    const QString &line = lines.constFirst();
    return tools::leadingInteger(line.mid(line.indexOf(mark) + mark.size()));
}

double clockSeconds(const QString &text)
{
    constexpr int inAMinute = 60;
    const QStringList pieces = text.split(u':');
    if (pieces.size() != 3)
        return 0;
    const double minutes = pieces.at(0).toDouble() * inAMinute + pieces.at(1).toDouble();
    const double seconds = minutes * inAMinute + pieces.at(2).toDouble();
    return std::isfinite(seconds) && seconds > 0 ? seconds : 0;
}

double containerSeconds(const QString &output)
{
    const QStringList lines = output.split(u'\n').filter(u"Duration:"_s);
    if (lines.size() != 1)
        return 0;
    return clockSeconds(lines.constFirst().section(u"Duration:"_s, 1, 1).section(u',', 0, 0).trimmed());
}

QString textIn(const QVariantMap &dictionary, const QString &key)
{
    const QVariant value = dictionary.value(key);
    return value.typeId() == QMetaType::QString ? value.toString() : QString();
}

QString tagIn(const QVariantMap &stream, const QString &key)
{
    const QVariantMap tags = stream.value(u"tags"_s).toMap();
    const QString text = textIn(tags, key);
    return text.isEmpty() ? textIn(tags, key.toUpper()) : text;
}

} // namespace media
