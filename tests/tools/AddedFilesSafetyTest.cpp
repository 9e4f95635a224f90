// Files that were added to a film are sources of its conversion: nothing is ever written over them.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/TrackClips.h"
#include "support/engines/RealRuns.h"

#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace support;

class AddedFilesSafetyTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_runs = std::make_unique<RealRuns>(); }

    void noOutputReplacesAnAddedFile_data()
    {
        QTest::addColumn<bool>("isForced");
        QTest::newRow("the next free name") << false;
        QTest::newRow("replacing is allowed") << true;
    }

    /// The film "a.mkv" would give "a.m4v", which is the name of the sound.
    void noOutputReplacesAnAddedFile()
    {
        QFETCH(bool, isForced);
        const QString sound = m_runs->film(audioOnly(), u"a.m4v"_s);
        const auto selection = m_runs->probed(m_runs->film(longMkv(8)), u"General"_s, {sound});
        const auto job =
            m_runs->convert(selection, isForced ? steps::WhenTaken::Replace : steps::WhenTaken::NextFreeName);
        QVERIFY(m_runs->run(job));
        QVERIFY2(job->outcome().verdict == steps::Verdict::Ok, qPrintable(job->outcome().sentence));
        QCOMPARE(job->outputs(), QList<QUrl>{m_runs->base.scratch.url(u"a (2).m4v"_s)});
        QCOMPARE(codecsOf(m_runs->path(u"a (2).m4v"_s)), u"h264 aac aac"_s);
        QCOMPARE(contentOf(sound), contentOf(audioOnly()));
        QCOMPARE(m_runs->names(), QStringList({u"a (2).m4v"_s, u"a.m4v"_s, u"a.mkv"_s}));
    }

    void noOutputReplacesTheSecondNameOfAnAddedFile_data()
    {
        QTest::addColumn<bool>("isHardLink");
        QTest::newRow("a link") << false;
        QTest::newRow("a hard link") << true;
    }

    void noOutputReplacesTheSecondNameOfAnAddedFile()
    {
        QFETCH(bool, isHardLink);
        const QString sound = m_runs->film(audioOnly(), u"far/sound.m4a"_s);
        const QString link = m_runs->path(u"a.m4v"_s);
        QCOMPARE(isHardLink ? ::link(qPrintable(sound), qPrintable(link))
                            : ::symlink(qPrintable(sound), qPrintable(link)),
                 0);
        const auto selection = m_runs->probed(m_runs->film(longMkv(8)), u"General"_s, {sound});
        const auto job = m_runs->convert(selection, steps::WhenTaken::Replace);
        QVERIFY(m_runs->run(job));
        QVERIFY2(job->outcome().verdict == steps::Verdict::Ok, qPrintable(job->outcome().sentence));
        QCOMPARE(codecsOf(m_runs->path(u"a (2).m4v"_s)), u"h264 aac aac"_s);
        QCOMPARE(contentOf(sound), contentOf(audioOnly()));
        QCOMPARE(contentOf(link), contentOf(audioOnly()));
        QCOMPARE(QFileInfo(link).isSymLink(), !isHardLink);
    }

    /// Both names that the output could have are sources.
    void whereEveryNameIsASourceNothingStarts()
    {
        const QString sound = m_runs->film(audioOnly(), u"a.m4v"_s);
        const QString second = m_runs->film(surroundAc3(), u"a (2).m4v"_s);
        const auto selection = m_runs->probed(m_runs->film(longMkv(8)), u"General"_s, {sound, second});
        const auto job = m_runs->convert(selection, steps::WhenTaken::Replace);
        QVERIFY(m_runs->run(job));
        QVERIFY(job->outcome().verdict == steps::Verdict::Failed);
        QVERIFY2(job->outcome().sentence.contains(u"one of the job's own sources"_s),
                 qPrintable(job->outcome().sentence));
        QCOMPARE(contentOf(sound), contentOf(audioOnly()));
        QCOMPARE(contentOf(second), contentOf(surroundAc3()));
        const auto other = m_runs->convert(selection);
        QVERIFY(m_runs->run(other));
        // The job's own name is "a (2).m4v", and what is free for that is given.
        QCOMPARE(other->outputs(), QList<QUrl>{m_runs->base.scratch.url(u"a (3).m4v"_s)});
        QCOMPARE(codecsOf(m_runs->path(u"a (3).m4v"_s)), u"h264 aac aac ac3"_s);
    }

    /// Another job's output would be the file that this one still waits to read.
    void anotherJobDoesNotReplaceAnAddedFile()
    {
        const QString sound = m_runs->film(audioOnly(), u"b.m4v"_s);
        const auto waiting = m_runs->convert(m_runs->probed(m_runs->film(longMkv(8)), u"General"_s, {sound}));
        const auto other = m_runs->convert(m_runs->probed(m_runs->film(longMkv(8), u"b.mkv"_s), u"General"_s),
                                           steps::WhenTaken::Replace);
        QVERIFY(m_runs->run(other));
        QVERIFY(other->outcome().verdict == steps::Verdict::Failed);
        QVERIFY2(other->outcome().sentence.contains(u"belongs to another job"_s),
                 qPrintable(other->outcome().sentence));
        QCOMPARE(contentOf(sound), contentOf(audioOnly()));
        waiting->stopJob();
    }

    /// An added file may have the name of what a job writes beside its output and removes in the end.
    void noIntermediateFileReplacesAnAddedFile()
    {
        const QString text = m_runs->film(frenchSrt(), u"a.mkv.stream2.srt"_s);
        const QString log = m_runs->film(srtFile(), u"a.mkv.log"_s);
        const auto selection = m_runs->reencoded(m_runs->film(blackMkv()), u"General"_s, u"1"_s, {text, log});
        streamOf(*selection, u"2"_s)->setUserCodec(u"burn"_s);
        const auto job = m_runs->convert(selection);
        QVERIFY(m_runs->run(job));
        QVERIFY2(job->outcome().verdict == steps::Verdict::Ok, qPrintable(job->outcome().sentence));
        QVERIFY(brightestAt(m_runs->path(u"a.m4v"_s), 2) > 160);
        QCOMPARE(contentOf(text), contentOf(frenchSrt()));
        QCOMPARE(contentOf(log), contentOf(srtFile()));
        QCOMPARE(m_runs->names(),
                 QStringList({u"a.m4v"_s, u"a.mkv"_s, u"a.mkv.log"_s, u"a.mkv.stream2.srt"_s}));
    }

    void aStoppedJobLeavesAddedFilesAlone()
    {
        const QString sound = m_runs->film(audioOnly(), u"sound.m4a"_s);
        const QString text = m_runs->film(srtFile(), u"text.srt"_s);
        const auto selection =
            m_runs->reencoded(m_runs->film(longMkv(60)), u"General"_s, u"2"_s, {sound, text});
        const auto job = m_runs->convert(selection);
        job->startJob();
        QVERIFY(!job->hasEnded());
        job->stopJob();
        QCOMPARE(contentOf(sound), contentOf(audioOnly()));
        QCOMPARE(contentOf(text), contentOf(srtFile()));
        QCOMPARE(m_runs->names(), QStringList({u"a.mkv"_s, u"sound.m4a"_s, u"text.srt"_s}));
    }

    /// A file that has gone since it was added makes the job fail, with a reason.
    void anAddedFileThatIsGoneIsMissed()
    {
        const QString text = m_runs->film(srtFile(), u"new.srt"_s);
        const auto selection = m_runs->probed(m_runs->film(longMkv(8)), u"MKV"_s, {text});
        QVERIFY(QFile::remove(text));
        const auto job = m_runs->convert(selection);
        QVERIFY(m_runs->run(job));
        QVERIFY(job->outcome().verdict == steps::Verdict::Failed);
        QVERIFY2(job->outcome().sentence.contains(u"new.srt"_s), qPrintable(job->outcome().sentence));
        QVERIFY(job->outputs().isEmpty());
    }

private:
    std::unique_ptr<RealRuns> m_runs;
};

TESSARAY_TEST(AddedFilesSafetyTest)
#include "AddedFilesSafetyTest.moc"
