// Which files that come in become the current video, a track of it, files to edit, or are refused.
#include "app/FileIntake.h"

#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/app/AppFixture.h"

#include <QSignalSpy>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using app::FileIntake;
using support::AppFixture;

namespace {

const QString cannotIdentify =
    u"The application could not identify one or more of the tracks in this file.  Check the text file that "
    "should have been created in the video's directory for more information."_s;
const QString onlyMkv =
    u"The application can only edit MKV files.  If you are trying to convert the file, make sure that you "
    "are using the MKV tab."_s;

/// Lets the probe answer for one file what no real file makes it say.
void answerFor(const AppFixture &fixture, const QString &name, const QString &answer)
{
    fixture.prepend(u"ffmpeg/ffprobe"_s,
                    u"case \"$*\" in *%1*) echo '%2'; exit 0;; esac"_s.arg(name, answer));
}

} // namespace

class FileIntakeTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_fixture = std::make_unique<AppFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void droppingThreeVideosFillsTheOpenQueueAndMakesTheFirstCurrent()
    {
        m_fixture->drop({mkv(u"a.mkv"_s), mp4(u"b.mp4"_s), mkv(u"c.mkv"_s)});
        QCOMPARE(m_fixture->openNames(), (QStringList{u"a.mkv"_s, u"b.mp4"_s, u"c.mkv"_s}));
        QCOMPARE(m_fixture->openQueue().selectedRow(), 0);
        QCOMPARE(m_fixture->file().theFileName(), u"a.mkv"_s);
        QCOMPARE(m_fixture->selection().videoTrackFileName(), u"a.mkv"_s);
        QCOMPARE(m_fixture->delegate().fileTextField(), m_fixture->path(u"a.mkv"_s));
        QVERIFY(m_fixture->openQueue().canOpenQueuePopover());
        QVERIFY(m_fixture->alerts().shown().isEmpty());
    }

    void oneVideoNeedsNoPopover()
    {
        m_fixture->drop({mkv(u"a.mkv"_s), mkv(u"b.mkv"_s)});
        QSignalSpy popover(&m_fixture->openQueue(), &app::OpenQueue::popoverWanted);
        m_fixture->drop({mp4(u"c.mp4"_s)});
        QCOMPARE(m_fixture->openNames(), QStringList{u"c.mp4"_s}); // replaced, not appended to
        QVERIFY(!m_fixture->openQueue().canOpenQueuePopover());
        QVERIFY(!popover.isEmpty() && !popover.constLast().constFirst().toBool());
    }

    void presetsAreAppliedToEachFile()
    {
        m_fixture->presets().setSelectionMethodIndex(2); // "All Tracks"
        m_fixture->drop({mkv(u"a.mkv"_s), mp4(u"b.mp4"_s)});
        const QList<OpenedFile> &entries = m_fixture->openQueue().entries();
        QCOMPARE(entries.at(0).videoSelection->trackList().size(), 6);
        QCOMPARE(entries.at(1).videoSelection->trackList().size(), 3);
        QCOMPARE(entries.at(1).videoSelection->vidCount(), u"1"_s);
    }

    void aDroppedSubtitleIsAddedAndDoesNotTouchTheQueue_data()
    {
        QTest::addColumn<QString>("clip");
        QTest::newRow("srt") << support::srtFile();
        QTest::newRow("ass") << support::assFile();
        QTest::newRow("a single sound") << support::surroundAc3();
    }

    void aDroppedSubtitleIsAddedAndDoesNotTouchTheQueue()
    {
        QFETCH(QString, clip);
        m_fixture->drop({mkv(u"a.mkv"_s), mp4(u"b.mp4"_s)});
        QSignalSpy tracks(&m_fixture->intake(), &FileIntake::tracksChanged);
        m_fixture->drop({m_fixture->film(clip, u"added."_s + QFileInfo(clip).suffix())});
        QCOMPARE(m_fixture->openNames(), (QStringList{u"a.mkv"_s, u"b.mp4"_s}));
        QCOMPARE(m_fixture->file().theFileName(), u"a.mkv"_s);
        QCOMPARE(m_fixture->file().trackList().size(), 7);
        QVERIFY(m_fixture->file().trackList().constLast()->externalTrackFlag());
        QVERIFY(!tracks.isEmpty());
    }

    void aSubtitleFileWithoutStreamsGoesTheWayOfATrackToo()
    {
        m_fixture->drop({mkv(u"a.mkv"_s), mp4(u"b.mp4"_s)});
        answerFor(*m_fixture, u"silent.srt"_s, u"{\"streams\": []}"_s);
        const QStringList before = m_fixture->everything();
        m_fixture->drop({m_fixture->text(u"silent.srt"_s)});
        QCOMPARE(m_fixture->everything(), before);
        QCOMPARE(m_fixture->shownAlerts(), alert(u"silent.srt"_s, cannotAdd()));
    }

    void onTheEditingTabOnlyMkvFilesAreTaken_data()
    {
        QTest::addColumn<QString>("mode");
        for (const char *mode : {"open", "drag", "add"})
            QTest::newRow(mode) << QString::fromLatin1(mode);
    }

    void onTheEditingTabOnlyMkvFilesAreTaken()
    {
        QFETCH(QString, mode);
        m_fixture->drop({mp4(u"film.mp4"_s)});
        m_fixture->controller().setCurrentTab(u"Edit Files"_s);
        const QStringList gathered{mkv(u"a.mkv"_s), mkv(u"B.MKV"_s)};
        m_fixture->take(mode, {gathered.at(0), mp4(u"c.mp4"_s), gathered.at(1), m_fixture->text(u"d.txt"_s)});
        QCOMPARE(m_fixture->intake().editFilesURLsArray(), support::urlsOf(gathered));
        QCOMPARE(m_fixture->intake().editFilesPathsArray(), gathered);
        QCOMPARE(m_fixture->selection().editFilesURLsList(), support::urlsOf(gathered));
        QVERIFY(m_fixture->controller().canJoin()); // the rules were asked anew
        QCOMPARE(m_fixture->shownAlerts(), alert(u"c.mp4"_s, onlyMkv) + alert(u"d.txt"_s, onlyMkv));
        QCOMPARE(m_fixture->openNames(), QStringList{u"film.mp4"_s});
        QCOMPARE(m_fixture->file().theFileName(), u"film.mp4"_s);
    }

    void onTheEditingTabOnlyOrdinaryFilesAreTaken()
    {
        m_fixture->controller().setCurrentTab(u"Edit Files"_s);
        const QString pipe = m_fixture->path(u"pipe.mkv"_s);
        const QString memory = m_fixture->path(u"memory.mkv"_s);
        QCOMPARE(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
        QVERIFY(QFile::link(u"/proc/self/mem"_s, memory));
        m_fixture->drop({pipe, memory, mkv(u"a.mkv"_s)});
        QCOMPARE(m_fixture->selection().editFilesURLsList(), support::urlsOf({m_fixture->path(u"a.mkv"_s)}));
        const QString sentence = u"It is no ordinary file."_s;
        QCOMPARE(m_fixture->shownAlerts(), alert(u"pipe.mkv"_s, sentence) + alert(u"memory.mkv"_s, sentence));
    }

    void eachGatheringStartsAnew()
    {
        m_fixture->controller().setCurrentTab(u"Edit Files"_s);
        m_fixture->drop({mkv(u"a.mkv"_s), mkv(u"b.mkv"_s)});
        m_fixture->drop({mkv(u"c.mkv"_s)});
        QCOMPARE(m_fixture->selection().editFilesURLsList(), support::urlsOf({m_fixture->path(u"c.mkv"_s)}));
    }

    /// The intake compares the tab in lower case: meant, other places compare it as it stands.
    void theTabIsComparedInLowerCase_data()
    {
        QTest::addColumn<QString>("tab");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<int>("gathered");
        QTest::newRow("MKV") << u"MKV"_s << u"new file added"_s << 0;
        QTest::newRow("mkv") << u"mkv"_s << u"new file added"_s << 0;
        QTest::newRow("Edit Files") << u"Edit Files"_s << u""_s << 1;
        QTest::newRow("EDIT FILES") << u"EDIT FILES"_s << u""_s << 1;
        QTest::newRow("Edit Tracks is none of them") << u"Edit Tracks"_s << u""_s << 0;
    }

    void theTabIsComparedInLowerCase()
    {
        QFETCH(QString, tab);
        QFETCH(QString, answer);
        QFETCH(int, gathered);
        m_fixture->drop({mkv(u"a.mkv"_s)});
        m_fixture->controller().setCurrentTab(tab);
        const QUrl url = m_fixture->scratch().url(u"a.mkv"_s);
        QCOMPARE(m_fixture->intake().testNewFileURLWithAlerts(url, FileIntake::Alerts::Shown), answer);
        QCOMPARE(m_fixture->intake().editFilesURLsArray().size(), gathered);
    }

    void everyRefusalSaysItsSentenceForFiveSeconds_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("clip");
        QTest::addColumn<QString>("sentence");
        QTest::newRow("no video") << u"open"_s << u"TEXT"_s << cannotIdentify;
        QTest::newRow("an unknown codec") << u"drag"_s << support::vp9Mkv() << cannotIdentify;
        QTest::newRow("a video that is to be added")
            << u"add"_s << support::textMp4() << u"The application can't add the track from this file."_s;
        QTest::newRow("streams of no use")
            << u"open"_s << u"DATA"_s << u"The application can't open this file."_s;
        QTest::newRow("a subtitle without a stream") << u"add"_s << u"SILENT"_s << cannotAdd();
    }

    void everyRefusalSaysItsSentenceForFiveSeconds()
    {
        QFETCH(QString, mode);
        QFETCH(QString, clip);
        QFETCH(QString, sentence);
        m_fixture->drop({mkv(u"a.mkv"_s), mp4(u"b.mp4"_s)});
        answerFor(*m_fixture, u"DATA.bin"_s, u"{\"streams\": [{\"codec_type\": \"data\"}]}"_s);
        answerFor(*m_fixture, u"SILENT.srt"_s, u"{\"streams\": []}"_s);
        QString bad = u"TEXT.txt"_s;
        if (clip.startsWith(u'/'))
            bad = QFileInfo(m_fixture->film(clip, u"bad.mkv"_s)).fileName();
        else
            bad = QFileInfo(m_fixture->text(QMap<QString, QString>{{u"TEXT"_s, u"TEXT.txt"_s},
                                                                   {u"DATA"_s, u"DATA.bin"_s},
                                                                   {u"SILENT"_s, u"SILENT.srt"_s}}
                                                .value(clip)))
                      .fileName();
        const QStringList before = m_fixture->everything();
        m_fixture->take(mode, {m_fixture->path(bad)});
        QCOMPARE(m_fixture->shownAlerts(), alert(bad, sentence));
        QCOMPARE(m_fixture->alerts().shown().constFirst()->style, platform::AlertStyle::Informational);
        QCOMPARE(m_fixture->everything(), before); // current file, selection, open files
    }

    void severalRefusedFilesGiveOneAlertEachAndChangeNothing()
    {
        m_fixture->drop({mkv(u"a.mkv"_s)});
        const QStringList before = m_fixture->everything();
        m_fixture->drop({m_fixture->text(u"1.txt"_s), m_fixture->film(support::vp9Mkv(), u"2.mkv"_s),
                         m_fixture->text(u"3.txt"_s)});
        QCOMPARE(m_fixture->shownAlerts(), alert(u"1.txt"_s, cannotIdentify) +
                                               alert(u"2.mkv"_s, cannotIdentify) +
                                               alert(u"3.txt"_s, cannotIdentify));
        QCOMPARE(m_fixture->everything(), before);
    }

    void onlyFilesThatWereLoadedJoinTheOpenQueue()
    {
        m_fixture->drop(
            {m_fixture->text(u"1.txt"_s), mkv(u"2.mkv"_s), m_fixture->film(support::vp9Mkv(), u"3.mkv"_s)});
        QCOMPARE(m_fixture->openNames(), QStringList{u"2.mkv"_s});
        QCOMPARE(m_fixture->file().theFileName(), u"2.mkv"_s);
        QCOMPARE(m_fixture->file().trackList().size(), 6);
        QCOMPARE(m_fixture->alerts().shown().size(), 2);
    }

    void aTrackThatComesFirstDecidesAndTheVideoBehindItIsPassedOver()
    {
        m_fixture->drop({mkv(u"a.mkv"_s)});
        m_fixture->drop({srt(u"s.srt"_s), mp4(u"b.mp4"_s)});
        QCOMPARE(m_fixture->openNames(), QStringList{u"a.mkv"_s});
        QCOMPARE(m_fixture->file().trackList().size(), 7);
    }

    void aLaterTrackOrUselessFileIsPassedOverInSilence()
    {
        answerFor(*m_fixture, u"DATA.bin"_s, u"{\"streams\": [{\"codec_type\": \"data\"}]}"_s);
        m_fixture->drop({mp4(u"a.mp4"_s), srt(u"s.srt"_s), m_fixture->text(u"DATA.bin"_s), mp4(u"b.mp4"_s)});
        QCOMPARE(m_fixture->openNames(), (QStringList{u"a.mp4"_s, u"b.mp4"_s}));
        QCOMPARE(m_fixture->file().trackList().size(), 3);
        QVERIFY(m_fixture->alerts().shown().isEmpty());
    }

    void theProgressNamesEachFile()
    {
        QSignalSpy probing(&m_fixture->intake(), &FileIntake::probing);
        m_fixture->drop({mp4(u"a.mp4"_s), mp4(u"b.mp4"_s)});
        QCOMPARE(probing.size(), 2);
        QCOMPARE(probing.at(0), (QVariantList{0, 2, u"a.mp4"_s}));
        QCOMPARE(probing.at(1), (QVariantList{1, 2, u"b.mp4"_s}));
        QVERIFY(!m_fixture->intake().isBusy());
    }

    void whatComesInMeanwhileWaitsAndKeepsItsMode()
    {
        const QString later = mp4(u"later.mp4"_s);
        whileProbing(0, [&] {
            QVERIFY(m_fixture->intake().isBusy());
            m_fixture->take(u"add"_s, {later});
            QCOMPARE(m_fixture->openNames(), QStringList()); // not yet
        });
        m_fixture->drop({mkv(u"a.mkv"_s), mkv(u"b.mkv"_s)});
        // Those in front of it were still dropped, and this one was to be added.
        QCOMPARE(m_fixture->openNames(), (QStringList{u"a.mkv"_s, u"b.mkv"_s}));
        QCOMPARE(m_fixture->shownAlerts(),
                 alert(u"later.mp4"_s, u"The application can't add the track from this file."_s));
        QCOMPARE(m_fixture->intake().openedURLsArray(), support::urlsOf({later}));
        QCOMPARE(m_fixture->intake().openingFileMode(), u"add"_s);
    }

    void aStopKeepsWhatIsProbedAndForgetsWhatWaits()
    {
        const QString waiting = mp4(u"waiting.mp4"_s);
        whileProbing(2, [&] {
            m_fixture->drop({waiting});
            m_fixture->intake().stopProbing();
        });
        m_fixture->drop({mp4(u"1.mp4"_s), mp4(u"2.mp4"_s), mp4(u"3.mp4"_s), mp4(u"4.mp4"_s)});
        QCOMPARE(m_fixture->openNames(), (QStringList{u"1.mp4"_s, u"2.mp4"_s}));
        QCOMPARE(m_fixture->file().theFileName(), u"1.mp4"_s);
        QVERIFY(m_fixture->alerts().shown().isEmpty());
        QVERIFY(!m_fixture->intake().isBusy());
        m_fixture->drop({waiting}); // the stop is over
        QCOMPARE(m_fixture->openNames(), QStringList{u"waiting.mp4"_s});
    }

    void aStopInTheMiddleOfAProbeLeavesTheCurrentFile()
    {
        m_fixture->drop({mkv(u"a.mkv"_s)});
        const QStringList before = m_fixture->everything();
        m_fixture->prepend(u"ffmpeg/ffprobe"_s, u"case \"$*\" in *slow*) sleep 60;; esac"_s);
        QTimer::singleShot(100, this, [this] { m_fixture->intake().stopProbing(); });
        m_fixture->drop({mp4(u"slow.mp4"_s)});
        QCOMPARE(m_fixture->everything(), before);
        QVERIFY(m_fixture->alerts().shown().isEmpty());
    }

    void answersOfTestingAFile_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("answer");
        for (const char *mode : {"open", "drag", "watch"})
            QTest::addRow("a video, %s", mode) << mode << u"b.mp4"_s << u"new file added"_s;
        QTest::newRow("a video that is to be added") << u"add"_s << u"b.mp4"_s << u""_s;
        // The answer tells the way the file went, not whether it could be loaded: meant.
        QTest::newRow("a refused one") << u"open"_s << u"t.txt"_s << u"new file added"_s;
        QTest::newRow("a track") << u"open"_s << u"s.srt"_s << u""_s;
        QTest::newRow("a track, add") << u"add"_s << u"s.srt"_s << u""_s;
    }

    void answersOfTestingAFile()
    {
        QFETCH(QString, mode);
        QFETCH(QString, file);
        QFETCH(QString, answer);
        m_fixture->drop({mkv(u"a.mkv"_s)});
        mp4(u"b.mp4"_s);
        srt(u"s.srt"_s);
        m_fixture->text(u"t.txt"_s);
        m_fixture->intake().setOpeningFileMode(mode);
        const QUrl url = m_fixture->scratch().url(file);
        QCOMPARE(m_fixture->intake().testNewFileURLWithAlerts(url, FileIntake::Alerts::Shown), answer);
        QCOMPARE(m_fixture->intake().openingFileMode(), mode);
    }

    void withoutAlertsNothingIsSaidAndNoTrackIsAdded_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("file");
        QTest::newRow("no video") << u"watch"_s << u"t.txt"_s;
        QTest::newRow("a video that is to be added") << u"add"_s << u"b.mp4"_s;
        QTest::newRow("a track") << u"watch"_s << u"s.srt"_s;
        QTest::newRow("streams of no use") << u"watch"_s << u"DATA.bin"_s;
    }

    void withoutAlertsNothingIsSaidAndNoTrackIsAdded()
    {
        QFETCH(QString, mode);
        QFETCH(QString, file);
        m_fixture->drop({mkv(u"a.mkv"_s)});
        mp4(u"b.mp4"_s);
        srt(u"s.srt"_s);
        m_fixture->text(u"t.txt"_s);
        m_fixture->text(u"DATA.bin"_s);
        answerFor(*m_fixture, u"DATA.bin"_s, u"{\"streams\": [{\"codec_type\": \"data\"}]}"_s);
        const QStringList before = m_fixture->everything();
        m_fixture->intake().setOpeningFileMode(mode);
        m_fixture->intake().testNewFileURLWithAlerts(m_fixture->scratch().url(file), FileIntake::Alerts::Off);
        QVERIFY(m_fixture->alerts().shown().isEmpty());
        QCOMPARE(m_fixture->everything(), before);
    }

    void watchedFilesComeInSilenceAndPresetsChoose()
    {
        m_fixture->controller().setOpenQueueMatrixIndex(1);
        QSignalSpy refused(&m_fixture->intake(), &FileIntake::watchedFileRefused);
        QSignalSpy opened(&m_fixture->intake(), &FileIntake::watchedFilesOpened);
        m_fixture->take(u"watch"_s,
                        {mkv(u"a.mkv"_s), srt(u"s.srt"_s), m_fixture->text(u"t.txt"_s), mp4(u"b.mp4"_s)});
        QCOMPARE(m_fixture->openNames(), (QStringList{u"a.mkv"_s, u"b.mp4"_s}));
        QCOMPARE(m_fixture->openQueue().selectedRow(), 0);
        QCOMPARE(m_fixture->file().theFileName(), u"a.mkv"_s);
        QCOMPARE(m_fixture->file().trackList().size(), 6); // the subtitle was passed over
        QCOMPARE(m_fixture->controller().openQueueMatrixIndex(), 0);
        QVERIFY(m_fixture->alerts().shown().isEmpty());
        QCOMPARE(refused.size(), 2);
        QCOMPARE(opened.size(), 1); // the watch session starts them then
        QVERIFY(m_fixture->jobs().isEmpty());
    }

    void refusedWatchedFilesChangeNothing()
    {
        m_fixture->drop({mkv(u"a.mkv"_s)});
        const QStringList before = m_fixture->everything();
        QSignalSpy opened(&m_fixture->intake(), &FileIntake::watchedFilesOpened);
        m_fixture->take(u"watch"_s, {m_fixture->text(u"t.txt"_s), srt(u"s.srt"_s)});
        QCOMPARE(m_fixture->everything(), before);
        QVERIFY(opened.isEmpty());
    }

private:
    QString mkv(const QString &name) const { return m_fixture->film(support::fullMkv(), name); }
    QString mp4(const QString &name) const { return m_fixture->film(support::textMp4(), name); }
    QString srt(const QString &name) const { return m_fixture->film(support::srtFile(), name); }
    static QString cannotAdd() { return u"The application can't add this track to the current video."_s; }
    static QStringList alert(const QString &name, const QString &sentence)
    {
        return {u"Error Opening: %1|%2|5000"_s.arg(name, sentence)};
    }
    /// Does something while that file of an intake is being looked at; once.
    void whileProbing(int file, const std::function<void()> &action)
    {
        auto *once = new QObject(&m_fixture->intake());
        connect(&m_fixture->intake(), &FileIntake::probing, once, [this, once, file, action](int done) {
            if (done != file)
                return;
            once->deleteLater();
            QObject::disconnect(&m_fixture->intake(), nullptr, once, nullptr);
            action();
        });
    }

    std::unique_ptr<AppFixture> m_fixture;
};

TESSARAY_TEST(FileIntakeTest)
#include "FileIntakeTest.moc"
