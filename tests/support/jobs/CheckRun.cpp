#include "support/jobs/CheckRun.h"

#include "support/ClipFactory.h"
#include "support/Waiting.h"

#include <QFile>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using media::Became;
using media::MeantOutput;
using media::TrackFate;

namespace support {

namespace {

QByteArray outputOf(const QString &program, const QStringList &words, bool merged = false)
{
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    if (merged)
        process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, words);
    if (!process.waitForFinished(patience))
        qFatal("%s does not end", qPrintable(program));
    return process.readAllStandardOutput();
}

QStringList wordsOf(const QString &line, const QStringList &files)
{
    QStringList words = line.split(u' ', Qt::SkipEmptyParts);
    for (QString &word : words) {
        for (qsizetype i = files.size() - 1; i >= 0; --i)
            word.replace(u"$%1"_s.arg(i), files.at(i));
    }
    return words;
}

} // namespace

CheckRun::CheckRun()
    : m_base(JobFixture::Tools::Real)
{
}

QString CheckRun::run(const QString &line, const QStringList &files, bool mustSucceed)
{
    QStringList words = wordsOf(line, files);
    const QString program = words.takeFirst();
    if (program == u"ffmpeg"_s)
        words = QStringList{u"-nostdin"_s, u"-y"_s} + words;
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.setProcessChannelMode(QProcess::MergedChannels);
    const auto [variable, value] = media::figuresVariable(u"figures"_s);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(variable, value);
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(path());
    QFile::remove(path(u"figures"_s));
    process.start(program, words);
    if (!process.waitForFinished(patience * 5))
        qFatal("%s does not end", qPrintable(program));
    QString printed = QString::fromUtf8(process.readAllStandardOutput());
    if (program == u"ffmpeg"_s)
        printed = QString::fromUtf8(contentOf(path(u"figures"_s)));
    const bool isWarning = program == u"mkvmerge"_s && process.exitCode() == 1;
    if (mustSucceed && process.exitCode() != 0 && !isWarning)
        qFatal("%s: %s", qPrintable(line), qPrintable(printed.right(2000)));
    return printed;
}

MeantOutput CheckRun::meant(const QStringList &sources, const QString &output, media::Extent extent)
{
    MeantOutput meant;
    meant.output = QUrl::fromLocalFile(output);
    meant.file = meant.output;
    meant.extent = extent;
    for (const QString &source : sources) {
        meant.sources.append(QUrl::fromLocalFile(source));
        int index = 0;
        for (const auto &[kind, codec] : streamsOf(source)) {
            TrackFate fate;
            fate.source = meant.sources.constLast();
            fate.index = index++;
            fate.kind = kind;
            fate.codec = codec;
            fate.output = meant.output;
            fate.became = kind == u"data"_s ? Became::LeftOut : Became::Copied;
            meant.tracks.append(fate);
        }
    }
    return meant;
}

QList<media::CheckedOutput> CheckRun::check(const QList<MeantOutput> &outputs, const QString &log)
{
    steps::OutputCheck check(m_base.preferences, 2);
    bool hasFinished = false;
    QObject::connect(&check, &steps::OutputCheck::finished, &check, [&] { hasFinished = true; });
    check.readSources(outputs);
    check.begin(outputs, log);
    if (!waitFor([&] { return hasFinished; }))
        qFatal("the check does not end");
    m_films = check.films();
    return check.results();
}

media::CheckedOutput CheckRun::check(const MeantOutput &output, const QString &log)
{
    return check(QList<MeantOutput>{output}, log).constFirst();
}

QList<std::pair<QString, QString>> CheckRun::streamsOf(const QString &film)
{
    QList<std::pair<QString, QString>> streams;
    const QByteArray lines =
        outputOf(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-show_entries"_s,
                                u"stream=codec_type,codec_name:stream_disposition=attached_pic"_s, u"-of"_s,
                                u"flat"_s, film});
    static const QRegularExpression form(u"stream\\.(\\d+)\\.([\\w.]+)=\"?([^\"]*)\"?"_s);
    for (const QString &line : QString::fromUtf8(lines).split(u'\n', Qt::SkipEmptyParts)) {
        const auto match = form.match(line);
        const qsizetype index = match.captured(1).toInt();
        if (!match.hasMatch())
            continue;
        while (streams.size() <= index)
            streams.emplaceBack();
        if (match.captured(2) == u"codec_name"_s)
            streams[index].second = match.captured(3);
        else if (match.captured(2) == u"codec_type"_s)
            streams[index].first = match.captured(3);
        else if (match.captured(3) == u"1"_s)
            streams[index].first = u"cover"_s;
    }
    return streams;
}

double CheckRun::decodedSeconds(const QString &film, const QString &kind)
{
    const QByteArray printed = outputOf(u"ffmpeg"_s,
                                        {u"-nostdin"_s, u"-i"_s, film, u"-map"_s,
                                         u"0:"_s + kind.left(1) + u":0"_s, u"-f"_s, u"null"_s, u"-"_s},
                                        true);
    static const QRegularExpression form(u"time=(\\d+):(\\d+):([\\d.]+)"_s);
    double seconds = -1;
    for (const auto &match : form.globalMatch(QString::fromUtf8(printed)))
        seconds = match.captured(1).toDouble() * 3600 + match.captured(2).toDouble() * 60 +
                  match.captured(3).toDouble();
    return seconds;
}

QString told(const media::CheckedOutput &result)
{
    const steps::Outcome outcome = steps::outcomeOf(result);
    return outcome.sentence.isEmpty() ? outcome.word() : outcome.word() + u": "_s + outcome.sentence;
}

void reencode(MeantOutput &output, const QString &kind, const QString &codec)
{
    for (TrackFate &fate : output.tracks) {
        if (codec.isEmpty() || fate.kind != kind || fate.became == Became::LeftOut)
            continue;
        fate.became = Became::Reencoded;
        fate.to = codec;
    }
}

void keepOnly(MeantOutput &output, const QList<int> &indexes)
{
    for (TrackFate &fate : output.tracks)
        fate.became = indexes.contains(fate.index) ? fate.became : Became::LeftOut;
}

void cutTo(const QString &file, const QString &cut, int percent)
{
    const QByteArray content = contentOf(file);
    writeContent(cut, content.first(content.size() * percent / 100));
}

} // namespace support
