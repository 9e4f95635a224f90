#include "support/Verdicts.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace support {

namespace {

QJsonArray countedStreams(const QString &path)
{
    QProcess ffprobe;
    ffprobe.start(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-count_packets"_s, u"-show_entries"_s,
                                 u"stream=index,codec_type,codec_name,nb_read_packets"_s, u"-of"_s, u"json"_s,
                                 u"-i"_s, path});
    ffprobe.waitForFinished(60000);
    return QJsonDocument::fromJson(ffprobe.readAllStandardOutput()).object().value(u"streams"_s).toArray();
}

int packetsIn(const QJsonObject &stream)
{
    return stream.value(u"nb_read_packets"_s).toString().toInt();
}

/// The kinds of streams that hold nothing, in order.
QStringList emptyKinds(const QJsonArray &streams)
{
    QStringList kinds;
    for (const QJsonValue &stream : streams) {
        if (packetsIn(stream.toObject()) < 1)
            kinds.append(stream[u"codec_type"_s].toString());
    }
    return kinds;
}

/// What is wrong with an output that is said to be well; null when nothing is.
QString outputOffence(const QString &path, const QString &source)
{
    if (QFileInfo(path).size() == 0)
        return path + u" is not there or empty"_s;
    if (path.endsWith(u".idx"_s)) // its packets are in the file beside it
        return {};
    const QJsonArray streams = countedStreams(path);
    const QStringList empty = emptyKinds(streams);
    if (empty.size() == streams.size())
        return path + u" holds no packet"_s;
    if (path.contains(u".split-"_s) || empty.isEmpty())
        return {};
    const QStringList emptyBefore = emptyKinds(countedStreams(source));
    for (const QString &kind : empty) {
        if (!emptyBefore.contains(kind))
            return u"%1 has no packet in its %2 stream"_s.arg(path, kind);
    }
    return {};
}

/// Lines that are no objects are told by their text, not by the end of the test.
QString offenceOfLine(const QByteArray &line)
{
    const QJsonDocument document = QJsonDocument::fromJson(line);
    if (!document.isObject())
        return u"no JSON: "_s + QString::fromUtf8(line);
    const QJsonObject event = document.object();
    if (event.value(u"event"_s) != u"done"_s || event.value(u"outcome"_s) != u"ok"_s)
        return {};
    const QJsonArray outputs = event.value(u"outputs"_s).toArray();
    if (outputs.isEmpty())
        return u"\"ok\" without an output"_s;
    for (const QJsonValue &output : outputs) {
        const QString path = output.toString();
        const QString source = QFileInfo(path).path() + u'/' + event.value(u"fileName"_s).toString();
        const QString offence = outputOffence(path, source);
        if (!offence.isNull())
            return u"\"ok\", but "_s + offence;
    }
    return {};
}

} // namespace

QString untruthOf(const CliFixture::Run &run)
{
    static const QList<int> known{0, 1, 2, 64};
    if (!known.contains(run.status))
        return u"it ended with %1: %2"_s.arg(run.status).arg(run.said());
    for (const char *sign : {"AddressSanitizer", "runtime error:", "ASSERT", "QFATAL"}) {
        if (run.error.contains(sign))
            return run.said();
    }
    if (run.status != 0 && run.error.trimmed().isEmpty())
        return u"it ended with %1 and gave no reason"_s.arg(run.status);
    if (!run.output.isEmpty() && !run.output.endsWith('\n'))
        return u"the last line has no end"_s;
    for (const QByteArray &line : run.output.split('\n')) {
        const QString offence = line.isEmpty() ? QString() : offenceOfLine(line);
        if (!offence.isNull())
            return offence;
    }
    return {};
}

} // namespace support
