// What a job tells of every track, held against what ffprobe reads of its sources and of what it wrote.
#include "media/SourceStreams.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/TrackClips.h"
#include "support/engines/MkvRuns.h"
#include "support/media/Fates.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using media::Became;
using media::TrackFate;
using steps::Verdict;

namespace {

QByteArray probed(const QUrl &file)
{
    QProcess probe;
    probe.start(u"ffprobe"_s, {u"-v"_s, u"quiet"_s, u"-show_streams"_s, u"-show_chapters"_s, u"-of"_s,
                               u"json"_s, file.toLocalFile()});
    probe.waitForFinished(60000);
    return probe.readAllStandardOutput();
}

/// A file as ffprobe has it. A text of chapters counts as what it is for.
struct Film
{
    explicit Film(const QUrl &file)
    {
        const QJsonObject document = QJsonDocument::fromJson(probed(file)).object();
        hasChapters = !document[u"chapters"_s].toArray().isEmpty();
        for (const QJsonValue &stream : document[u"streams"_s].toArray())
            streams.append(stream.toObject());
    }

    static bool isChapterText(const QJsonObject &stream)
    {
        return stream[u"codec_tag_string"_s].toString() == u"text"_s;
    }
    static QString codecOf(const QJsonObject &stream)
    {
        const QString type = stream[u"codec_type"_s].toString();
        const bool isCover = stream[u"disposition"_s][u"attached_pic"_s].toInt() == 1;
        return (isCover ? u"cover"_s : type) + u' ' + stream[u"codec_name"_s].toString();
    }
    QStringList codecs() const
    {
        QStringList all;
        for (const QJsonObject &stream : streams) {
            if (!isChapterText(stream))
                all.append(codecOf(stream));
        }
        return all;
    }

    QList<QJsonObject> streams;
    bool hasChapters = false;
};

QString wordsOf(const media::Receipt &receipt)
{
    return told(receipt.tracks).join(u'\n');
}

/// What the receipt says that an output holds of one source, in kind and codec.
QStringList promisedCodecs(const media::Receipt &receipt, const QUrl &output, const QList<QUrl> &sources)
{
    QStringList codecs;
    for (const TrackFate &fate : receipt.tracks) {
        const bool isStream = fate.became == Became::Copied || fate.became == Became::Reencoded;
        if (isStream && fate.output == output && fate.kind != u"chapters"_s && sources.contains(fate.source))
            codecs.append(fate.kind + u' ' + (fate.to.isNull() ? fate.codec : fate.to));
    }
    codecs.sort();
    return codecs;
}

bool promisesChapters(const media::Receipt &receipt, const QUrl &output)
{
    return std::any_of(receipt.tracks.begin(), receipt.tracks.end(), [&](const TrackFate &fate) {
        return fate.kind == u"chapters"_s && fate.became == Became::Copied && fate.output == output;
    });
}

/// Every stream that ffprobe counts in a source, and its chapters.
void compareWithSource(const media::Receipt &receipt, const QUrl &source)
{
    const Film film(source);
    QVERIFY(!film.streams.isEmpty());
    for (const QJsonObject &stream : film.streams) {
        const auto tells = [&](const TrackFate &fate) {
            return fate.source == source && fate.index == stream[u"index"_s].toInt(-2) &&
                   (Film::isChapterText(stream) || fate.kind + u' ' + fate.codec == Film::codecOf(stream));
        };
        QVERIFY2(std::any_of(receipt.tracks.begin(), receipt.tracks.end(), tells),
                 qPrintable(Film::codecOf(stream) + u"\n"_s + wordsOf(receipt)));
    }
    const auto isChapters = [&](const TrackFate &fate) {
        return fate.source == source && fate.kind == u"chapters"_s;
    };
    QCOMPARE(std::any_of(receipt.tracks.begin(), receipt.tracks.end(), isChapters), film.hasChapters);
}

void compareWithOutput(const media::Receipt &receipt, const QUrl &output, const QList<QUrl> &sources)
{
    const Film film(output);
    QStringList written = film.codecs();
    for (const TrackFate &fate : receipt.tracks) {
        if (fate.output == output && fate.outputIndex >= 0)
            QCOMPARE(Film::codecOf(film.streams.value(fate.outputIndex)),
                     fate.kind + u' ' + (fate.to.isNull() ? fate.codec : fate.to));
    }
    written.sort();
    QCOMPARE(promisedCodecs(receipt, output, sources), written);
    QCOMPARE(promisesChapters(receipt, output), film.hasChapters);
}

/// A finished job; of one that joins, what it holds is that of its first source.
void compare(KXJob &job, const QList<QUrl> &sources, const QList<QUrl> &heldOf)
{
    QVERIFY2(job.outcome().verdict == Verdict::Ok || job.outcome().verdict == Verdict::Warnings,
             qPrintable(job.outcome().sentence));
    for (const QUrl &source : sources)
        job.takeStreamsOf(source, media::sourceStreamsIn(probed(source)));
    const media::Receipt receipt = job.receipt();
    for (const QUrl &source : sources)
        compareWithSource(receipt, source);
    QVERIFY(!job.outputs().isEmpty());
    for (const QUrl &output : job.outputs())
        compareWithOutput(receipt, output, heldOf);
    for (const TrackFate &fate : receipt.tracks) {
        QCOMPARE(fate.output.isEmpty(), fate.became == Became::LeftOut);
        QCOMPARE(fate.reason.isEmpty(), fate.became != Became::LeftOut);
    }
}

void compare(KXJob &job, const QList<QUrl> &sources)
{
    compare(job, sources, sources);
}

bool tells(const KXJob &job, const QString &line)
{
    return told(job.receipt().tracks).contains(line);
}

/// What is no track to mkvmerge.
QString lostBy(const QString &source)
{
    if (source.endsWith(u".mp4"_s))
        return u"The subtitle 2 (mov_text) of a.mp4 was left out. mkvmerge can't read it."_s;
    return source.endsWith(u".vob"_s)
               ? u"The subtitle 2 (dvd_subtitle) of a.vob was left out. mkvmerge can't read it."_s
               : u""_s;
}

QVariantMap output(const QString &codec)
{
    return {{u"userCodec"_s, codec}, {u"userBitRate"_s, u"96"_s}, {u"userNumberOfChannels"_s, u"2"_s}};
}

} // namespace

class TrackFatesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void conversions_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::addColumn<QString>("device");
        QTest::addColumn<bool>("isReencoded");
        QTest::addColumn<QString>("line");
        const auto row = [](const char *name, const QString &clip, const QString &device, bool isReencoded,
                            const QString &line) {
            QTest::newRow(name) << clip << device << isReencoded << line;
        };
        row("MKV to MP4", richMkv(), u"General"_s, false,
            u"film:4 subtitle hdmv_pgs_subtitle left: The output can't hold it."_s);
        row("MKV to MKV", richMkv(), u"MKV"_s, false,
            u"film:5 attachment ttf left: A conversion carries no attachments."_s);
        row("MKV to AVI", richMkv(), u"AVI"_s, true, u"film:- chapters left: An AVI carries no chapters."_s);
        row("MKV to MP4, re-encoded", richMkv(), u"PS3"_s, true, u"film:0 video h264 > h264 #0"_s);
        row("MP4 to MP4", richMp4(), u"General"_s, false, u"film:3 chapters bin_data copied"_s);
        row("MP4 to MKV", richMp4(), u"MKV"_s, false, u"film:2 subtitle mov_text > subrip #2"_s);
        row("transport stream to MKV", transportStream(), u"MKV"_s, false,
            u"film:0 video mpeg2video copied #0"_s);
    }

    void conversions()
    {
        QFETCH(QString, clip);
        QFETCH(QString, device);
        QFETCH(bool, isReencoded);
        QFETCH(QString, line);
        RealRuns runs;
        const QString source = runs.film(clip, u"film."_s + QFileInfo(clip).suffix());
        const auto selection =
            isReencoded ? runs.reencoded(source, device, u"1"_s) : runs.probed(source, device);
        takeNoCover(*selection);
        const auto job = runs.convert(selection);
        QVERIFY(runs.run(job));
        compare(*job, {QUrl::fromLocalFile(source)});
        line.replace(u"film:"_s, QFileInfo(source).fileName() + u':');
        QVERIFY2(tells(*job, line), qPrintable(wordsOf(job->receipt())));
    }

    void twoOutputsOfATrackAndAnAddedOne()
    {
        RealRuns runs;
        const QString source = runs.film(richMkv());
        const QString added = runs.film(attachmentMks(), u"s.mks"_s);
        const auto selection = runs.probed(source, u"MKV"_s, {added});
        takeNoCover(*selection);
        streamOf(*selection, u"1"_s)
            ->setUserAudioSettingsDictionaryArray({output(u"aac"_s), output(u"passthru"_s)});
        const auto job = runs.convert(selection);
        QVERIFY(runs.run(job));
        compare(*job, {QUrl::fromLocalFile(source), QUrl::fromLocalFile(added)});
        QVERIFY2(tells(*job, u"a.mkv:1 audio ac3 > aac #1"_s), qPrintable(wordsOf(job->receipt())));
        QVERIFY(tells(*job, u"a.mkv:1 audio ac3 copied #3"_s));
        QVERIFY(tells(*job, u"s.mks:0 subtitle subrip copied #6"_s));
        QVERIFY(tells(*job, u"s.mks:1 attachment left: A conversion carries no attachments."_s) ||
                tells(*job, u"s.mks:1 attachment text left: A conversion carries no attachments."_s));
    }

    void aSubtitleThatIsDrawn_data()
    {
        QTest::addColumn<QString>("stream");
        QTest::addColumn<QString>("codec");
        QTest::newRow("text") << u"3"_s << u"subrip"_s;
        QTest::newRow("picture") << u"4"_s << u"hdmv_pgs_subtitle"_s;
    }

    void aSubtitleThatIsDrawn()
    {
        QFETCH(QString, stream);
        QFETCH(QString, codec);
        RealRuns runs;
        const QString source = runs.film(richMkv());
        const auto selection = runs.reencoded(source, u"MKV"_s, u"1"_s);
        keepStreams(*selection, {u"0"_s, u"2"_s, stream});
        streamOf(*selection, stream)->setUserCodec(u"burn"_s);
        const auto job = runs.convert(selection);
        QVERIFY(runs.run(job));
        compare(*job, {QUrl::fromLocalFile(source)});
        QVERIFY2(tells(*job, u"a.mkv:%1 subtitle %2 burned"_s.arg(stream, codec)),
                 qPrintable(wordsOf(job->receipt())));
    }

    void fontsThatAStyledTextWillMissAreANote()
    {
        RealRuns runs;
        const QUrl source = QUrl::fromLocalFile(runs.film(richMkv()));
        const QString added = runs.film(assFile(), u"s.ass"_s);
        const auto selection = runs.probed(source.toLocalFile(), u"MKV"_s, {added});
        takeNoCover(*selection);
        const auto job = runs.convert(selection);
        job->takeStreamsOf(source, media::sourceStreamsIn(probed(source)));
        QVERIFY(runs.run(job));
        QVERIFY(job->outcome().verdict == Verdict::Ok);
        QCOMPARE(job->outcome().sentence,
                 u"The attachment 5 (ttf) of a.mkv was left out. A conversion carries no fonts, so styled "
                 "subtitles may look different."_s);
    }

    void aSubtitleThatGetsAFileOfItsOwn()
    {
        RealRuns runs;
        const QUrl source = QUrl::fromLocalFile(runs.film(richMkv()));
        const auto selection = runs.probed(source.toLocalFile(), u"MKV"_s);
        keepStreams(*selection, {u"0"_s, u"3"_s});
        streamOf(*selection, u"3"_s)->setUserCodec(u"extract"_s);
        const auto job = runs.convert(selection);
        QVERIFY(runs.run(job));
        QVERIFY2(tells(*job, u"a.mkv:3 subtitle subrip > subrip #0"_s), qPrintable(wordsOf(job->receipt())));
        qsizetype carried = 0;
        for (const TrackFate &fate : job->receipt().tracks) {
            const bool isThere = QFile::exists(fate.output.toLocalFile());
            QVERIFY2(isThere == (fate.became != Became::LeftOut), qPrintable(wordsOf(job->receipt())));
            carried += isThere;
        }
        QCOMPARE(carried, 3); // the picture, the text, and the chapters
    }

    void anExtraction_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::newRow("MKV") << richMkv();
        QTest::newRow("MP4") << richMp4();
    }

    void anExtraction()
    {
        QFETCH(QString, clip);
        RealRuns runs;
        const QString source = runs.film(clip, u"a."_s + QFileInfo(clip).suffix());
        const auto selection = runs.probed(source);
        keepStreams(*selection, {u"0"_s, u"1"_s, u"2"_s, u"3"_s});
        const auto job = runs.extract(selection);
        QVERIFY(runs.run(job));
        compare(*job, {QUrl::fromLocalFile(source)});
        QCOMPARE(job->outputs().size(), selection->trackList().size());
    }

    void operationsOnMatroska_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("clip");
        for (const QString &operation : {mkv::remux, mkv::remove, mkv::split, mkv::join, mkv::editSplit})
            QTest::newRow(qPrintable(operation)) << operation << richMkv();
        QTest::newRow("remux of an MP4") << mkv::remux << richMp4();
        QTest::newRow("split of an MP4") << mkv::split << richMp4();
        QTest::newRow("remux of a DVD's stream") << mkv::remux << dvdStream();
    }

    void operationsOnMatroska()
    {
        QFETCH(QString, operation);
        QFETCH(QString, clip);
        MkvRuns mkvRuns;
        mkvRuns.splitSeconds = u"4"_s;
        mkvRuns.partnerClip = clip;
        const QString source = mkvRuns.runs.film(clip, u"a."_s + QFileInfo(clip).suffix());
        const JobPointer job = mkvRuns.add(operation, source);
        const QUrl first = QUrl::fromLocalFile(source);
        job->takeStreamsOf(first, media::sourceStreamsIn(probed(first)));
        QVERIFY(mkvRuns.run());
        QCOMPARE(job->outcome().sentence, lostBy(source));
        QVERIFY(job->outcome().verdict == (lostBy(source).isEmpty() ? Verdict::Ok : Verdict::Warnings));
        const QUrl second = QUrl::fromLocalFile(mkvRuns.path(u"b.mkv"_s));
        const bool isJoin = operation == mkv::join;
        compare(*job, isJoin ? QList<QUrl>{first, second} : QList<QUrl>{first}, {first});
        QCOMPARE(job->outputs().size(), operation.endsWith(mkv::split) ? 2 : 1);
    }

    void aStretch()
    {
        MkvRuns mkvRuns;
        const QString source = mkvRuns.runs.film(richMkv());
        const auto selection = mkvRuns.selectionFor(mkv::split, source);
        selection->setSplitType(u"time"_s);
        selection->initializeSplitForStartTimeAndEndTime(u"00:00:02"_s, u"00:00:06"_s);
        const JobPointer job = mkvRuns.add(selection);
        QVERIFY(mkvRuns.run());
        compare(*job, {QUrl::fromLocalFile(source)});
    }

    void aMuxOfARawStream()
    {
        MkvRuns mkvRuns;
        const QString source = mkvRuns.runs.film(rawH264(), u"a.h264"_s);
        const JobPointer job = mkvRuns.add(mkv::mux, source);
        QVERIFY(mkvRuns.run());
        compare(*job, {QUrl::fromLocalFile(source), QUrl::fromLocalFile(mkvRuns.path(u"sound.ac3"_s)),
                       QUrl::fromLocalFile(mkvRuns.path(u"s.srt"_s))});
        QCOMPARE(job->receipt().tracks.size(), 3);
    }

    void aJoinByFfmpegSaysThatChaptersAreLost()
    {
        MkvRuns mkvRuns;
        const QString one = mkvRuns.runs.film(richMp4(), u"a.mp4"_s);
        const QString two = mkvRuns.runs.film(richMp4(), u"b.mp4"_s);
        const JobPointer job = mkvRuns.add(MkvRuns::filesSelection({one, two}, u"MKV Joining"_s));
        QVERIFY(mkvRuns.run());
        for (const QString &path : {one, two}) {
            const QUrl source = QUrl::fromLocalFile(path);
            job->takeStreamsOf(source, media::sourceStreamsIn(probed(source)));
            compareWithSource(job->receipt(), source);
        }
        QVERIFY2(tells(*job, u"b.mp4:3 chapters bin_data left: ffmpeg joins no chapters."_s),
                 qPrintable(wordsOf(job->receipt())));
        QVERIFY2(!job->outputs().isEmpty(), qPrintable(job->outcome().sentence));
        QVERIFY(!Film(job->outputs().constFirst()).hasChapters);
        QCOMPARE(Film(job->outputs().constFirst()).streams.size(), 4);
    }

    void aFailedJobTellsThatNothingWasWritten()
    {
        RealRuns runs;
        const QString source = runs.film(richMkv());
        const auto selection = runs.probed(source);
        takeNoCover(*selection);
        selection->setTheDevice(u"General"_s);
        streamOf(*selection, u"1"_s)->setTrackFfmpegID(u"9"_s); // there is no such stream
        const auto job = runs.convert(selection);
        QVERIFY(runs.run(job));
        QVERIFY(job->outcome().verdict == Verdict::Failed);
        QVERIFY2(tells(*job, u"a.mkv:0 video h264 left: The output was not written."_s),
                 qPrintable(wordsOf(job->receipt())));
        for (const TrackFate &fate : job->receipt().tracks)
            QVERIFY(fate.became == Became::LeftOut);
    }

private:
    /// One picture is converted.
    static void takeNoCover(KXSelection &selection)
    {
        TrackList tracks = selection.trackList();
        TrackList covers;
        tracks.removeIf([&](const TrackPointer &track) {
            if (track->isCover())
                covers.append(track);
            return track->isCover();
        });
        selection.setTrackList(tracks);
        selection.setKeepTracksList(covers);
    }
};

TESSARAY_TEST(TrackFatesTest)
#include "TrackFatesTest.moc"
