// Whole files on the tab "Edit Files", tracks of a film, and other programs that get them.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/FakeTool.h"
#include "support/TestMain.h"
#include "window/QueueDriver.h"

using namespace Qt::StringLiterals;
using namespace driver;
using support::codecsOf;
using support::secondsOf;
using support::waitFor;

class EditingTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_fixture = std::make_unique<WindowFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void twoFilesAreJoined()
    {
        startOnFiles({support::fullMkv(), support::fullMkv()});
        m_fixture->click("JoinButton");
        QVERIFY(m_fixture->waitForJobs());
        QCOMPARE(m_fixture->rows("QueueTable", Type), QStringList{u"MKV Joining"_s});
        const QString joined = m_fixture->path(u"1.mkv.joined.mkv"_s);
        QCOMPARE(codecsOf(joined), codecsOf(m_fixture->path(u"1.mkv"_s)));
        QVERIFY(secondsOf(joined) > 15);
    }

    void oneFileCanNotBeJoined()
    {
        startOnFiles({support::fullMkv()});
        QVERIFY(!m_fixture->isEnabled("JoinButton"));
        QVERIFY(m_fixture->find<QWidget>("JoinButton")->toolTip().contains(u"at least two MKV files"_s));
        QVERIFY(m_fixture->isEnabled("RemuxButton"));
    }

    void aStretchOfAFileIsTaken()
    {
        startOnFiles({support::fullMkv()});
        choose(*m_fixture, "SplitTypeMatrix0");
        QVERIFY(!m_fixture->isEnabled("SplitButton"));
        typeTime("SplitStartTime", u"000002"_s);
        typeTime("SplitEndTime", u"000005"_s);
        QCOMPARE(m_fixture->find<QLineEdit>("SplitStartTime")->text(), u"00:00:02"_s);
        QCOMPARE(m_fixture->find<QLineEdit>("SplitEndTime")->text(), u"00:00:05"_s);
        QTRY_VERIFY(m_fixture->isEnabled("SplitButton"));
        m_fixture->click("SplitButton");
        QVERIFY(m_fixture->waitForJobs());
        const double seconds = secondsOf(m_fixture->path(u"1.mkv.split.mkv"_s));
        QVERIFY2(seconds > 2 && seconds < 6, qPrintable(QString::number(seconds)));
    }

    void aFileIsSplitByDuration()
    {
        startOnFiles({support::fullMkv()});
        choose(*m_fixture, "SplitTypeMatrix2");
        typeTime("SplitDuration", u"000004"_s);
        QTRY_VERIFY(m_fixture->isEnabled("SplitButton"));
        m_fixture->click("SplitButton");
        QVERIFY(m_fixture->waitForJobs());
        QVERIFY(QFile::exists(m_fixture->path(u"1.mkv.split-001.mkv"_s)));
        QVERIFY(QFile::exists(m_fixture->path(u"1.mkv.split-002.mkv"_s)));
        QVERIFY(secondsOf(m_fixture->path(u"1.mkv.split-002.mkv"_s)) < 6);
    }

    void aFileIsSplitBySize()
    {
        startOnFiles({support::longMkv(120)}); // some megabytes
        choose(*m_fixture, "SplitTypeMatrix1");
        m_fixture->type("SplitSize", u"1"_s);
        QTRY_VERIFY(m_fixture->isEnabled("SplitButton"));
        m_fixture->click("SplitButton");
        QVERIFY(m_fixture->waitForJobs());
        const QFileInfo first(m_fixture->path(u"1.mkv.split-001.mkv"_s));
        QVERIFY(first.exists() && first.size() < 1500000);
        QVERIFY(QFile::exists(m_fixture->path(u"1.mkv.split-002.mkv"_s)));
    }

    void eachFileIsRewritten()
    {
        startOnFiles({support::fullMkv(), support::fullMkv()});
        m_fixture->click("RemuxButton");
        QVERIFY(m_fixture->waitForJobs());
        QCOMPARE(m_fixture->rows("QueueTable", File), QStringList({u"1.mkv"_s, u"2.mkv"_s}));
        for (const QString &name : {u"1.mkv"_s, u"2.mkv"_s})
            QCOMPARE(codecsOf(rewritten(name)), codecsOf(m_fixture->path(name)));
    }

    void headerRemovalAsksOnce_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<QStringList>("queued");
        QTest::newRow("Re-Mux takes the flagged file only") << 0 << QStringList{u"2.mkv"_s};
        QTest::newRow("Cancel queues nothing") << 1 << QStringList();
    }

    void headerRemovalAsksOnce()
    {
        QFETCH(int, button);
        QFETCH(QStringList, queued);
        startOnFiles({support::fullMkv(), support::headerRemovalMkv()});
        QVERIFY(m_fixture->waitForAlert(u"Some players can't read files that use MKV header removal."_s));
        QVERIFY(m_fixture->alertText().contains(u"2.mkv"_s));
        QVERIFY(!m_fixture->alertText().contains(u"1.mkv"_s));
        m_fixture->pressAlertButton(button);
        QTest::qWait(100);
        QVERIFY(!m_fixture->hasAlert());
        QCOMPARE(m_fixture->rows("QueueTable", File), queued);
        QCOMPARE(m_fixture->rows("EditFilesTable", 0), QStringList({u"1.mkv"_s, u"2.mkv"_s}));
        QVERIFY(m_fixture->waitForJobs());
        QCOMPARE(QFile::exists(rewritten(u"2.mkv"_s)), !queued.isEmpty());
    }

    void onlyMkvFilesAreGathered()
    {
        m_fixture->start();
        m_fixture->chooseTab(1);
        QVERIFY(m_fixture->open({m_fixture->film(support::textMp4(), u"b.mp4"_s)}));
        QVERIFY(m_fixture->waitForAlert(u"Error Opening: b.mp4"_s));
        QCOMPARE(m_fixture->rows("EditFilesTable", 0), QStringList());
        QVERIFY(!m_fixture->isEnabled("RemuxButton"));
    }

    void tickedTracksAreExtracted()
    {
        openFilm();
        tick(*m_fixture, {u"ac3"_s, u"srt"_s});
        choose(*m_fixture, "EditTrackMatrix0");
        m_fixture->click("StartTrackEditButton");
        QVERIFY(m_fixture->waitForJobs());
        QCOMPARE(m_fixture->rows("QueueTable", Type), QStringList{u"MKV Track Extraction"_s});
        QCOMPARE(codecsOf(m_fixture->path(u"a.mkv.stream1.ac3"_s)), u"ac3"_s);
        QCOMPARE(codecsOf(m_fixture->path(u"a.mkv.stream3.srt"_s)), u"subrip"_s);
        QVERIFY(!QFile::exists(m_fixture->path(u"a.mkv.stream0.h264"_s)));
    }

    void tickedTracksAreRemovedButNeverTheVideo()
    {
        openFilm();
        choose(*m_fixture, "EditTrackMatrix1");
        tick(*m_fixture, {u"h264"_s, u"aac"_s});
        QTRY_VERIFY(!m_fixture->isEnabled("StartTrackEditButton"));
        QVERIFY(m_fixture->find<QWidget>("StartTrackEditButton")
                    ->toolTip()
                    .contains(u"A video track can't be removed."_s.toHtmlEscaped()));
        tick(*m_fixture, {u"h264"_s, u"dts"_s});
        QTRY_VERIFY(m_fixture->isEnabled("StartTrackEditButton"));
        const QStringList before = names();
        m_fixture->click("StartTrackEditButton");
        QVERIFY(m_fixture->waitForJobs());
        QCOMPARE(m_fixture->rows("QueueTable", Type), QStringList{u"MKV Track Removal"_s});
        QCOMPARE(codecsOf(newFilm(before)), u"h264 ac3 subrip ass"_s);
    }

    void addedTracksAreMuxedBesideAllOfTheFilmsOwn()
    {
        openFilm();
        QVERIFY(m_fixture->open({m_fixture->film(support::srtFile(), u"s.srt"_s)}));
        QTRY_COMPARE(m_fixture->rows("ConvertTrackTable", Kind).size(), 7);
        choose(*m_fixture, "EditTrackMatrix2");
        if (!isTicked(6)) {
            QVERIFY(!m_fixture->isEnabled("StartTrackEditButton"));
            tickCell(*m_fixture, 6);
        }
        pickLanguage(*m_fixture, 6, u"Italian"_s);
        writeTitle(*m_fixture, 6, u"Added"_s);
        tickCell(*m_fixture, 6, Default);
        tickCell(*m_fixture, 6, Forced);
        m_fixture->click("StartTrackEditButton");
        QVERIFY(m_fixture->waitForJobs());
        const QString muxed = m_fixture->path(u"a.muxed.mkv"_s);
        QCOMPARE(codecsOf(muxed), u"h264 ac3 aac subrip ass dts subrip"_s);
        const QString added = tracksOf(muxed).constLast();
        QVERIFY2(added.startsWith(u"subtitles:ita:Added:"_s) && added.endsWith(u":1:1"_s), qPrintable(added));
    }

    void aSubtitleIsSentWithItsFilm()
    {
        const QString application = m_fixture->path(u"Lintwick.sh"_s);
        const QString record = m_fixture->path(u"started.txt"_s);
        support::installScript(application, u"echo \"started $*\" >> '%1'"_s.arg(record));
        m_fixture->start();
        KXPreferences &preferences = m_fixture->delegate().program().preferences();
        QVariantMap panel = preferences.preferencePanelDictionary();
        panel.insert(u"lintwickPath"_s, application);
        preferences.setPreferencePanelDictionary(panel);
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv())}));
        QVERIFY(!m_fixture->isEnabled("SendButton"));
        tick(*m_fixture, {u"srt"_s});
        QTRY_VERIFY(m_fixture->isEnabled("SendButton"));
        m_fixture->click("SendButton");
        QVERIFY(m_fixture->waitForJobs());
        QTRY_COMPARE(linesOf(record).size(), 3);
        QVERIFY(linesOf(record).contains(u"started "_s + m_fixture->path(u"a.mkv.stream3.srt"_s)));
        QVERIFY(linesOf(record).contains(u"started "_s + m_fixture->path(u"a.mkv"_s)));
    }

    void theTickedTracksArePlayed()
    {
        const QString record = m_fixture->path(u"played.txt"_s);
        support::installScript(m_fixture->path(u"mplayer"_s), u"printf '%s\\n' \"$@\" > '%1'"_s.arg(record));
        m_fixture->start();
        usePlayer(m_fixture->path(u"mplayer"_s));
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv())}));
        tick(*m_fixture, {u"h264"_s, u"aac"_s});
        QTRY_VERIFY(m_fixture->isEnabled("PlayButton"));
        m_fixture->click("PlayButton");
        QTRY_COMPARE(linesOf(record).size(), 5);
        QCOMPARE(linesOf(record),
                 QStringList({m_fixture->path(u"a.mkv"_s), u"-vid"_s, u"0"_s, u"-aid"_s, u"1"_s}));
        QVERIFY(!m_fixture->hasAlert());
    }

    void withoutAPlayerTheButtonIsOffAndSaysWhy()
    {
        m_fixture->start();
        usePlayer({});
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv())}));
        QVERIFY(!m_fixture->isEnabled("PlayButton"));
        QVERIFY(m_fixture->find<QWidget>("PlayButton")->toolTip().contains(u"mplayer is not installed"_s));
    }

private:
    /// A tools folder with the tools as they are and another player; with none where its path is empty.
    void usePlayer(const QString &player)
    {
        KXPreferences &preferences = m_fixture->delegate().program().preferences();
        const QDir real(preferences.toolsLocation().toLocalFile());
        const QString tools = m_fixture->path(u"tools"_s);
        QDir().mkpath(tools + u"/mplayer"_s);
        for (const QString &name : {u"ffmpeg"_s, u"mkvtoolnix"_s, u"fonts"_s})
            QVERIFY(QFile::link(real.filePath(name), tools + u'/' + name));
        if (!player.isEmpty())
            QVERIFY(QFile::rename(player, tools + u"/mplayer/mplayer"_s));
        preferences.setToolsLocationURL(QUrl::fromLocalFile(tools));
    }

    void startOnFiles(const QStringList &clips)
    {
        m_fixture->start();
        m_fixture->chooseTab(1);
        QStringList films;
        for (const QString &clip : clips)
            films.append(m_fixture->film(clip, u"%1.mkv"_s.arg(films.size() + 1)));
        QVERIFY(m_fixture->open(films));
        QTRY_COMPARE(m_fixture->rows("EditFilesTable", 0).size(), films.size());
    }

    void openFilm()
    {
        m_fixture->start();
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv())}));
        QTRY_COMPARE(m_fixture->rows("ConvertTrackTable", Kind).size(), 6);
    }

    /// Types digits over a time from its left end.
    void typeTime(const char *field, const QString &digits)
    {
        auto *line = m_fixture->find<QLineEdit>(field);
        QTest::mouseClick(line, Qt::LeftButton);
        QTest::keyClick(line, Qt::Key_Home);
        QTest::keyClicks(line, digits);
        QTest::keyClick(line, Qt::Key_Tab);
        QTest::qWait(0);
    }

    bool isTicked(int row)
    {
        const QAbstractItemModel *model = m_fixture->find<QTreeView>("ConvertTrackTable")->model();
        return model->index(row, Kind).data(Qt::CheckStateRole).toInt() == Qt::Checked;
    }

    QStringList names() const { return QDir(m_fixture->path()).entryList(QDir::Files); }

    /// The film that has come since.
    QString newFilm(const QStringList &before) const
    {
        for (const QString &name : names()) {
            if (name.endsWith(u".mkv"_s) && !before.contains(name))
                return m_fixture->path(name);
        }
        return {};
    }

    QString rewritten(const QString &name) const { return m_fixture->path(name + u".remux.mkv"_s); }

    static QStringList linesOf(const QString &path)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    }

    std::unique_ptr<WindowFixture> m_fixture;
};

TESSARAY_TEST(EditingTest)
#include "EditingTest.moc"
