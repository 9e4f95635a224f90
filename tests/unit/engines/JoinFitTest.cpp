// Which files can follow one another in one film.
#include "engines/join/JoinFit.h"
#include "support/TestMain.h"

#include <QTest>

#include <functional>

using namespace Qt::StringLiterals;
using engines::JoinFile;
using engines::JoinStream;

namespace {

JoinStream picture()
{
    JoinStream stream;
    stream.type = u"video"_s;
    stream.codec = u"h264"_s;
    stream.size = u"320x240"_s;
    stream.pixelFormat = u"yuv420p"_s;
    stream.frameRate = u"25/1"_s;
    stream.extradata = u"MD5:11"_s;
    stream.timeBase = u"1/12800"_s;
    return stream;
}

JoinStream sound()
{
    JoinStream stream;
    stream.type = u"audio"_s;
    stream.codec = u"aac"_s;
    stream.frameRate = u"0/0"_s;
    stream.sampleRate = u"48000"_s;
    stream.channels = u"2"_s;
    stream.extradata = u"MD5:22"_s;
    stream.timeBase = u"1/48000"_s;
    return stream;
}

JoinStream ofType(const QString &type, const QString &codec)
{
    JoinStream stream;
    stream.type = type;
    stream.codec = codec;
    stream.timeBase = u"1/1000"_s;
    return stream;
}

JoinStream cover()
{
    JoinStream stream = ofType(u"video"_s, u"mjpeg"_s);
    stream.isCover = true;
    return stream;
}

JoinFile film(const QString &path, const QList<JoinStream> &streams = {picture(), sound()})
{
    JoinFile file;
    file.url = QUrl::fromLocalFile(path);
    file.format = path.endsWith(u".ts"_s) ? u"mpegts"_s : u"mov,mp4,m4a,3gp,3g2,mj2"_s;
    file.streams = streams;
    return file;
}

using Change = std::function<void(QList<JoinStream> &)>;

JoinFile changed(const QString &path, const Change &change)
{
    QList<JoinStream> streams{picture(), sound()};
    change(streams);
    return film(path, streams);
}

QString refusal(const QList<JoinFile> &files, const QString &joiner = u"ffmpeg"_s)
{
    return engines::joinFitOf(files, joiner).refusal;
}

} // namespace

class JoinFitTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filesThatAreAlikeFit()
    {
        for (const QString &joiner : {u"ffmpeg"_s, u"mkvmerge"_s, u"mp4box"_s}) {
            const auto fit =
                engines::joinFitOf({film(u"/v/a.mp4"_s), film(u"/v/b.mp4"_s), film(u"/v/c.mp4"_s)}, joiner);
            QVERIFY2(fit.refusal.isNull(), qPrintable(fit.refusal));
            QVERIFY(fit.toRetime.isEmpty());
        }
        QVERIFY(refusal({}).isNull());
        QVERIFY(refusal({film(u"/v/a.mp4"_s)}).isNull());
    }

    void whatDiffersIsNamed_data()
    {
        QTest::addColumn<Change>("change");
        QTest::addColumn<QString>("words");
        const auto row = [](const char *name, const Change &change, const char *words) {
            QTest::newRow(name) << change << QString::fromLatin1(words);
        };
        row(
            "picture codec", [](auto &s) { s[0].codec = u"hevc"_s; },
            "track 1 has the codec hevc and not h264");
        row(
            "size", [](auto &s) { s[0].size = u"160x120"_s; },
            "track 1 has the size 160x120 and not 320x240");
        row(
            "pixel format", [](auto &s) { s[0].pixelFormat = u"yuv444p"_s; },
            "track 1 has the pixel format yuv444p and not yuv420p");
        row(
            "frame rate", [](auto &s) { s[0].frameRate = u"30000/1001"_s; },
            "track 1 has the frame rate 29.97 and not 25");
        row(
            "settings", [](auto &s) { s[0].extradata = u"MD5:33"_s; },
            "track 1 (h264) was encoded with other settings");
        row(
            "sound codec", [](auto &s) { s[1].codec = u"ac3"_s; }, "track 2 has the codec ac3 and not aac");
        row(
            "sample rate", [](auto &s) { s[1].sampleRate = u"44100"_s; },
            "track 2 has the sample rate 44100 and not 48000");
        row(
            "channels", [](auto &s) { s[1].channels = u"6"_s; },
            "track 2 has the number of channels 6 and not 2");
        row(
            "settings of the sound", [](auto &s) { s[1].extradata = QString(); },
            "track 2 (aac) was encoded with other settings");
        row(
            "no sound", [](auto &s) { s.removeLast(); }, "the number of its tracks is 1 and not 2");
        row(
            "another sound", [](auto &s) { s.append(sound()); }, "the number of its tracks is 3 and not 2");
        row(
            "subtitles only here", [](auto &s) { s.append(ofType(u"subtitle"_s, u"mov_text"_s)); },
            "the number of its tracks is 3 and not 2");
        row(
            "order", [](auto &s) { s.swapItemsAt(0, 1); },
            "track 1 is audio and not video, track 2 is video and not audio");
        row(
            "two things",
            [](auto &s) {
                s[0].size = u"2x2"_s;
                s[1].channels = u"1"_s;
            },
            "track 1 has the size 2x2 and not 320x240, track 2 has the number of channels 1 and not 2");
    }

    void whatDiffersIsNamed()
    {
        QFETCH(Change, change);
        QFETCH(QString, words);
        const JoinFile other = changed(u"/v/b.mp4"_s, change);
        const QString sentence = u"b.mp4 can't be joined to a.mp4, so nothing was started: "_s + words;
        for (const QString &joiner : {u"ffmpeg"_s, u"mkvmerge"_s, u"mp4box"_s})
            QCOMPARE(refusal({film(u"/v/a.mp4"_s), other}, joiner), sentence + u'.');
        QCOMPARE(refusal({film(u"/v/a.mp4"_s), film(u"/v/c.mp4"_s), other, other}),
                 sentence + u"; 1 more file differs."_s);
        QCOMPARE(refusal({film(u"/v/a.mp4"_s), other, other, other}), sentence + u"; 2 more files differ."_s);
    }

    void whatAJoinCanDoWithoutIsNoDifference_data()
    {
        QTest::addColumn<QList<JoinStream>>("first");
        QTest::addColumn<QList<JoinStream>>("other");
        const QList<JoinStream> usual{picture(), sound()};
        const auto with = [&](const JoinStream &more) { return usual + QList<JoinStream>{more}; };
        const JoinStream text = ofType(u"subtitle"_s, u"mov_text"_s);
        QTest::newRow("subtitles only in the first") << with(text) << usual;
        JoinStream styled = text;
        styled.extradata = u"MD5:44"_s;
        QTest::newRow("styles of subtitles") << with(text) << with(styled);
        QTest::newRow("a cover only in the first") << with(cover()) << usual;
        QTest::newRow("a cover only in the second") << usual << with(cover());
        QTest::newRow("a time code only in the second") << usual << with(ofType(u"data"_s, {}));
        JoinStream nearly = picture();
        nearly.frameRate = u"2503/100"_s;
        QTest::newRow("a camera's rate") << usual << QList<JoinStream>{nearly, sound()};
        nearly.frameRate = u"0/0"_s;
        QTest::newRow("a rate that is not told") << usual << QList<JoinStream>{nearly, sound()};
    }

    void whatAJoinCanDoWithoutIsNoDifference()
    {
        QFETCH(QList<JoinStream>, first);
        QFETCH(QList<JoinStream>, other);
        for (const QString &joiner : {u"ffmpeg"_s, u"mkvmerge"_s, u"mp4box"_s})
            QCOMPARE(refusal({film(u"/v/a.mp4"_s, first), film(u"/v/b.mp4"_s, other)}, joiner), QString());
    }

    /// Only ffmpeg goes by the places of all streams.
    void whatStandsBetweenTheTracksCountsForFfmpegAlone()
    {
        const JoinFile other = film(u"/v/b.mp4"_s, {cover(), picture(), sound()});
        QCOMPARE(refusal({film(u"/v/a.mp4"_s), other}, u"mkvmerge"_s), QString());
        QVERIFY(refusal({film(u"/v/a.mp4"_s), other}, u"ffmpeg"_s)
                    .contains(u"track 1 is a cover and not video"_s));
    }

    void headersThatComeWithThePicturesMayDiffer()
    {
        const auto other = [](const QString &name) {
            return changed(name, [](auto &s) { s[0].extradata = u"MD5:33"_s; });
        };
        QCOMPARE(refusal({film(u"/v/a.ts"_s), other(u"/v/b.ts"_s)}), QString());
        QVERIFY(!refusal({film(u"/v/a.ts"_s), other(u"/v/b.mp4"_s)}).isNull());
    }

    void aFileThatWasNotReadRefusesTheJoinAndOneOfWhichNothingIsKnownDoesNot()
    {
        JoinFile broken = film(u"/v/b.mp4"_s, {});
        QCOMPARE(refusal({film(u"/v/a.mp4"_s), broken}), QString());
        broken.problem = u"b.mp4 can't be read as a film, so nothing was started."_s;
        QCOMPARE(refusal({film(u"/v/a.mp4"_s), broken}), broken.problem);
    }

    // Units of time.

    void pictureUnitsOfOddFilesAreCured()
    {
        const JoinFile odd = changed(u"/v/b.mp4"_s, [](auto &s) { s[0].timeBase = u"1/90000"_s; });
        const auto fit =
            engines::joinFitOf({film(u"/v/a.mp4"_s), odd, film(u"/v/c.mp4"_s), odd}, u"ffmpeg"_s);
        QVERIFY(fit.refusal.isNull());
        QCOMPARE(fit.toRetime, QList<qsizetype>({1, 3}));
        QCOMPARE(fit.timescale, u"12800"_s);
        for (const QString &joiner : {u"mkvmerge"_s, u"mp4box"_s}) // these count anew themselves
            QVERIFY(engines::joinFitOf({film(u"/v/a.mp4"_s), odd}, joiner).toRetime.isEmpty());
    }

    /// Those of the sound can't be chosen, so all files get the same.
    void otherUnitsAreCuredInAllFiles()
    {
        const JoinFile odd = changed(u"/v/b.mp4"_s, [](auto &s) { s[1].timeBase = u"1/90000"_s; });
        const auto fit = engines::joinFitOf({film(u"/v/a.mp4"_s), film(u"/v/c.mp4"_s), odd}, u"ffmpeg"_s);
        QVERIFY(fit.refusal.isNull());
        QList<qsizetype> all = fit.toRetime;
        std::sort(all.begin(), all.end());
        QCOMPARE(all, QList<qsizetype>({0, 1, 2}));
    }

    void unitsThatCantBeCuredRefuseTheJoin()
    {
        const JoinFile odd = changed(u"/v/b.avi"_s, [](auto &s) { s[0].timeBase = u"1/90000"_s; });
        QCOMPARE(refusal({film(u"/v/a.avi"_s), odd}),
                 u"b.avi can't be joined to a.avi, so nothing was started: it counts time in other units."_s);
    }
};

TESSARAY_TEST(JoinFitTest)
#include "JoinFitTest.moc"
