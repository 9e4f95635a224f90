// Real failures of the installed tools, and the sentence that each gives.
#include "media/RunFigures.h"
#include "steps/FailureCause.h"
#include "steps/RunVerdict.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/Scratch.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/CheckClips.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

struct Failure
{
    QString name;
    QString line; ///< program and words; SCRATCH, FILM and the like stand for paths
    QString sentence;
    int status = 1;
};

QString made(const QString &name, const QString &words)
{
    return clip(name, [&](const QString &path) {
        runProgram(u"ffmpeg"_s, (u"-nostdin -y -v error "_s + words).split(u' ') << path);
    });
}

QString film()
{
    return made(u"cause-film.mkv"_s, u"-f lavfi -i testsrc2=size=160x120:rate=25:duration=4 -f lavfi -i "
                                     "sine=duration=4 -c:v libx264 -preset ultrafast -c:a aac"_s);
}

QString flacFilm()
{
    return made(u"cause-flac.mkv"_s, u"-f lavfi -i testsrc2=size=160x120:rate=25:duration=2 -f lavfi -i "
                                     "sine=duration=2 -c:v libx264 -preset ultrafast -c:a flac"_s);
}

QString withSound(const QString &codec)
{
    return made(u"cause-%1.mkv"_s.arg(codec), u"-i %1 -c:v copy -c:a %2"_s.arg(film(), codec));
}

QString silentFilm()
{
    return made(u"cause-silent.mkv"_s, u"-i %1 -c:v copy -an"_s.arg(film()));
}

QString otherFilm()
{
    return made(u"cause-ac3.mkv"_s, u"-i %1 -c:v copy -c:a ac3"_s.arg(film()));
}

const QString copies = u"ffmpeg -nostdin -y -i "_s;

QList<Failure> ofFfmpeg()
{
    return {
        {u"no index"_s, copies + u"CUTMP4 -c copy SCRATCH/o.mkv"_s,
         u"The file has no index: it is incomplete."_s},
        {u"FLAC into MP4"_s, copies + u"FLAC -c copy SCRATCH/o.mp4"_s,
         u"FLAC can't be in MP4: re-encode it or choose MKV."_s},
        {u"PCM into MP4"_s, copies + u"PCM -c copy SCRATCH/o.mp4"_s,
         u"PCM_S16LE can't be in MP4: re-encode it or choose MKV."_s},
        {u"Vorbis into M4V"_s, copies + u"VORBIS -c copy -f ipod SCRATCH/o.m4v"_s,
         u"VORBIS can't be in MP4: re-encode it or choose MKV."_s},
        {u"SRT into MP4"_s, copies + u"SCRATCH/s.srt -map 0 -c copy SCRATCH/o.mp4"_s,
         u"SUBRIP can't be in MP4: re-encode it or choose MKV."_s},
        {u"MP4 text into MKV"_s, copies + u"TEXT -map 0 -c copy SCRATCH/o.mkv"_s,
         u"MOV_TEXT can't be copied into MKV."_s},
        {u"no times"_s, copies + u"PACKED -c copy SCRATCH/o.mkv"_s, u"The frames have no times."_s},
        {u"AVI tag"_s, copies + u"FILM -c copy -vtag xvid SCRATCH/o.avi"_s,
         u"Tag xvid incompatible with output codec id '27' (H264)"_s},
        {u"encoder missing"_s, copies + u"FILM -c:v libnosuch SCRATCH/o.mkv"_s,
         u"Unknown encoder 'libnosuch'"_s},
        {u"six channels"_s, copies + u"SIX -c:a libmp3lame -ac:a:0 6 SCRATCH/o.mkv"_s,
         u"Specified channel layout '5.1' is not supported"_s},
        {u"bit rate 0, two passes"_s,
         copies + u"FILM -c:v libx264 -b:v 0k -pass 2 -passlogfile SCRATCH/p SCRATCH/o.mkv"_s,
         u"CRF/CQP is incompatible with 2pass."_s},
        {u"filter with copy"_s, copies + u"FILM -c:v copy -vf scale=80:60 SCRATCH/o.mkv"_s,
         u"Filtergraph 'scale=80:60' was defined for video output stream 0:0 but codec copy was selected."_s},
        {u"subtitle missing"_s, copies + u"FILM -vf subtitles=SCRATCH/nosuch.srt SCRATCH/o.mkv"_s,
         u"Unable to open SCRATCH/nosuch.srt"_s},
        {u"no UTF-8"_s,
         copies +
             u"FILM -i SCRATCH/latin.srt -map 0 -map 1 -c:v copy -c:a copy -c:s mov_text SCRATCH/o.mp4"_s,
         u"Invalid UTF-8 in decoded subtitles text; maybe missing -sub_charenc option"_s, 69},
        {u"folder gone"_s, copies + u"FILM -c copy SCRATCH/gone/o.mkv"_s,
         u"o.mkv: No such file or directory"_s},
        {u"no film"_s, copies + u"SCRATCH/junk.mkv -c copy SCRATCH/o.mkv"_s,
         u"junk.mkv: Invalid data found when processing input"_s},
        {u"full"_s, copies + u"FILM -f mp4 /dev/full"_s, u"There is no room left in /dev."_s},
    };
}

QList<Failure> ofMkvtoolnix()
{
    const QString joins = u"mkvmerge -o SCRATCH/o.mkv FILM + "_s;
    return {
        {u"no index, mkvmerge"_s, u"mkvmerge -o SCRATCH/o.mkv CUTMP4"_s,
         u"The file has no index: it is incomplete."_s, 2},
        {u"no film, mkvmerge"_s, u"mkvmerge -o SCRATCH/o.mkv SCRATCH/junk.mkv"_s,
         u"Error: The type of file 'junk.mkv' could not be recognized."_s, 2},
        {u"folder gone, mkvmerge"_s, u"mkvmerge -o /proc/gone/o.mkv FILM"_s,
         u"Error: The file 'o.mkv' could not be opened for writing: create_directory() failed."_s, 2},
        {u"other codec, mkvmerge"_s, joins + u"OTHER"_s,
         u"Error: The track number 1 from the file 'cause-ac3.mkv' cannot be appended to the track number 1 "
         u"from the "
         "file 'cause-film.mkv'. The formats do not match."_s,
         2},
        {u"fewer tracks, mkvmerge"_s, u"mkvmerge -o SCRATCH/o.mkv SILENT + FILM"_s,
         u"Error: The file no. 0 ('cause-silent.mkv') does not contain a track with the ID 1, or that track "
         u"is not to "
         u"be copied. Therefore no track can be appended to it. The argument for '--append-to' was invalid."_s,
         2},
        {u"no track, mkvextract"_s, u"mkvextract FILM tracks 7:SCRATCH/o.h264"_s,
         u"Error: No track with the ID 7 was found in the source file."_s, 2},
    };
}

} // namespace

class FailureCausesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_scratch = std::make_unique<Scratch>();
        m_scratch->write(u"s.srt"_s, "1\n00:00:00,500 --> 00:00:01,000\nsaid\n");
        m_scratch->write(u"latin.srt"_s, "1\n00:00:00,500 --> 00:00:01,000\nCaf\xe9 \xe4\xf6\xfc\n");
        m_scratch->write(u"junk.mkv"_s, QByteArray(5000, '\x5a'));
    }
    void cleanup() { m_scratch.reset(); }

    void aFailureGivesItsSentence_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("sentence");
        QTest::addColumn<int>("status");
        const QList<Failure> rows = drawn(ofFfmpeg(), 5) + drawn(ofMkvtoolnix(), 2);
        for (const Failure &failure : rows)
            QTest::newRow(qPrintable(failure.name)) << failure.line << failure.sentence << failure.status;
    }

    void aFailureGivesItsSentence()
    {
        QFETCH(QString, line);
        QFETCH(QString, sentence);
        QFETCH(int, status);
        QList<QUrl> files;
        const QStringList words = wordsOf(line, files);
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
        process.setProcessEnvironment(environment);
        process.start(words.constFirst(), words.mid(1));
        QVERIFY(process.waitForFinished(60000));
        const QString log = QString::fromUtf8(process.readAllStandardOutput());
        QVERIFY2(process.exitCode() == status, qPrintable(log));
        const steps::FailureCause cause(log, files, files.constLast());
        QCOMPARE(cause.sentence(), sentence.replace(u"SCRATCH"_s, m_scratch->path()));
    }

    void aCutFileGivesItsWarning()
    {
        const QByteArray whole =
            contentOf(made(u"cause-front.mp4"_s, u"-i %1 -c copy -movflags +faststart"_s.arg(film())));
        m_scratch->write(u"cut.mp4"_s, whole.first(whole.size() * 6 / 10));
        QProcess process;
        process.start(u"mkvmerge"_s, {u"-o"_s, m_scratch->path(u"o.mkv"_s), m_scratch->path(u"cut.mp4"_s)});
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.exitCode(), 1);
        const steps::FailureCause cause(QString::fromUtf8(process.readAllStandardOutput()), {}, {});
        QCOMPARE(cause.warning(), u"The source ends early."_s);
    }

    /// mkvmerge goes on behind what it can't read, and tells both ends of it.
    void aDamagedStretchGivesItsTimes()
    {
        const QString log =
            printedBy(u"mkvmerge"_s, {u"-o"_s, m_scratch->path(u"o.mkv"_s), damaged(u"mkv"_s)}, 1);
        const QString said = steps::FailureCause(log, {}, {}).warning();
        static const QRegularExpression form(u"^The source is damaged from 0:(\\d\\d) to 0:(\\d\\d)\\.$"_s);
        const auto match = form.match(said);
        QVERIFY2(match.hasMatch(), qPrintable(said + log));
        QVERIFY2(match.captured(1).toInt() <= 31 && match.captured(2).toInt() >= 29,
                 qPrintable(said)); // its middle
    }

    /// ffmpeg ends well all the same.
    void damageIsToldOfFilmsThatAreReadToTheirEnd_data()
    {
        QTest::addColumn<QString>("container");
        for (const QString &container : drawn(QList<QString>{u"mkv"_s, u"flv"_s, u"wmv"_s}, 1))
            QTest::newRow(qPrintable(container)) << container;
    }

    void damageIsToldOfFilmsThatAreReadToTheirEnd()
    {
        QFETCH(QString, container);
        const QString log = printedBy(u"ffmpeg"_s,
                                      {u"-nostdin"_s, u"-y"_s, u"-i"_s, damaged(container), u"-c"_s,
                                       u"copy"_s, m_scratch->path(u"o.mkv"_s)},
                                      0);
        const QString damage = media::runFiguresFrom(log).damage;
        QVERIFY2(!damage.isNull() && !damage.startsWith(u'['), qPrintable(log));
    }

    /// It may be played well, and it may not: the second film has other headers than the first one.
    void aJoinOfOtherSizesIsAWarning()
    {
        const QString big =
            made(u"cause-big.mkv"_s,
                 u"-i %1 -vf scale=320:240 -c:v libx264 -preset ultrafast -c:a copy"_s.arg(film()));
        const QString log =
            printedBy(u"mkvmerge"_s, {u"-o"_s, m_scratch->path(u"o.mkv"_s), film(), u"+"_s, big}, 1);
        const QString said = steps::FailureCause(log, {QUrl::fromLocalFile(big)}, {}).warning();
        QVERIFY2(said.contains(u"'cause-big.mkv'"_s) &&
                     said.contains(u"The codec's private data does not match."_s),
                 qPrintable(said));
    }

    void aToolThatIsKilledIsTold()
    {
        tools::ToolProcess::Request request;
        request.program = u"ffmpeg"_s;
        request.arguments = QStringList{u"-nostdin"_s, u"-re"_s, u"-i"_s, film(), u"-f"_s, u"null"_s, u"-"_s};
        request.environment = QProcessEnvironment::systemEnvironment();
        const auto run = tools::ToolProcess::start(request);
        QVERIFY(waitFor([&] { return run->processIdentifier() > 0; }));
        ::kill(static_cast<pid_t>(run->processIdentifier()), SIGKILL);
        QVERIFY(run->waitUntilExit(60000));
        const auto outcome = steps::outcomeOfRun(run.get(), QUrl::fromLocalFile(u"/usr/bin/ffmpeg"_s),
                                                 steps::FailureCause({}, {}, {}));
        QCOMPARE(outcome.sentence, u"ffmpeg was ended from outside or crashed: The tool was killed."_s);
    }

    void aFileThatMayNotGrowIsTold()
    {
        tools::ToolProcess::Request request;
        request.program = u"/bin/sh"_s;
        request.arguments =
            QStringList{u"-c"_s, u"ulimit -f 20; exec ffmpeg -nostdin -y -i \"$0\" -c copy \"$1\""_s, film(),
                        m_scratch->path(u"o.mkv"_s)};
        request.environment = QProcessEnvironment::systemEnvironment();
        const auto run = tools::ToolProcess::start(request);
        QVERIFY(run->waitUntilExit(60000));
        const steps::FailureCause cause({}, {}, {});
        const auto outcome = steps::outcomeOfRun(run.get(), QUrl::fromLocalFile(u"/usr/bin/ffmpeg"_s), cause);
        QCOMPARE(outcome.sentence,
                 u"ffmpeg was ended from outside or crashed: The file may not grow further."_s);
    }

private:
    /// The minute with a piece of its middle overwritten.
    QString damaged(const QString &container) const
    {
        QByteArray content = contentOf(minuteOf(container));
        for (qsizetype i = content.size() / 2; i < content.size() / 2 + 100000; ++i)
            content[i] = static_cast<char>(i * 7 % 251);
        return m_scratch->write(u"damaged."_s + container, content);
    }

    static QString printedBy(const QString &program, const QStringList &arguments, int status)
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        process.waitForFinished(60000);
        const QString printed = QString::fromUtf8(process.readAllStandardOutput());
        return process.exitCode() == status ? printed : u"another exit status: "_s + printed;
    }

    /// The words with the paths in their places; those are the files too.
    QStringList wordsOf(const QString &line, QList<QUrl> &files) const
    {
        QStringList words;
        for (QString word : line.split(u' ')) {
            const QString asked = word;
            word.replace(u"SCRATCH"_s, m_scratch->path());
            if (word == u"FILM"_s)
                word = film();
            else if (word == u"FLAC"_s)
                word = flacFilm();
            else if (word == u"PCM"_s)
                word = withSound(u"pcm_s16le"_s);
            else if (word == u"VORBIS"_s)
                word = withSound(u"libvorbis"_s);
            else if (word == u"SILENT"_s)
                word = silentFilm();
            else if (word == u"OTHER"_s)
                word = otherFilm();
            else if (word == u"TEXT"_s)
                word = textMp4();
            else if (word == u"PACKED"_s)
                word = packedAvi();
            else if (word == u"SIX"_s)
                word = surroundAc3();
            else if (word == u"CUTMP4"_s)
                word = cutMp4();
            if (word != asked && !asked.contains(u'='))
                files.append(QUrl::fromLocalFile(word.section(u':', -1)));
            words.append(word);
        }
        if (line.endsWith(u"/dev/full"_s))
            files.append(QUrl::fromLocalFile(u"/dev/full"_s));
        if (line.contains(u"/proc/gone"_s))
            files.append(QUrl::fromLocalFile(u"/proc/gone/o.mkv"_s));
        return words;
    }

    /// Its index would stand at its end.
    QString cutMp4() const
    {
        const QByteArray whole = contentOf(made(u"cause-film.mp4"_s, u"-i %1 -c copy"_s.arg(film())));
        m_scratch->write(u"cut.mp4"_s, whole.first(whole.size() * 6 / 10));
        return m_scratch->path(u"cut.mp4"_s);
    }

    std::unique_ptr<Scratch> m_scratch;
};

TESSARAY_TEST(FailureCausesTest)
#include "FailureCausesTest.moc"
