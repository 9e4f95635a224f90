// Whole files on the tab "Edit Files", tracks of a film, and other programs that get them.
#include "support/Clips.h"
#include "support/FakeTool.h"
#include "support/Twin.h"
#include "window/QueueHand.h"

using namespace Qt::StringLiterals;
using namespace hand;
using support::codecsOf;
using support::secondsOf;
using support::waitFor;

class EditingTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_desk = std::make_unique<WindowDesk>(); }
    void cleanup() { m_desk.reset(); }

    void twoFilesAreJoined()
    {
        startOnFiles({support::fullMkv(), support::fullMkv()});
        m_desk->click("JoinButton");
        QVERIFY(m_desk->waitForJobs());
        QCOMPARE(m_desk->rows("QueueTable", Type), QStringList{u"MKV Joining"_s});
        const QString joined = m_desk->path(u"1.mkv.joined.mkv"_s);
        QCOMPARE(codecsOf(joined), codecsOf(m_desk->path(u"1.mkv"_s)));
        QVERIFY(secondsOf(joined) > 15);
    }

    void oneFileCanNotBeJoined()
    {
        startOnFiles({support::fullMkv()});
        QVERIFY(!m_desk->isEnabled("JoinButton"));
        QVERIFY(m_desk->find<QWidget>("JoinButton")->toolTip().contains(u"at least two MKV files"_s));
        QVERIFY(m_desk->isEnabled("RemuxButton"));
    }

    void aStretchOfAFileIsTaken()
    {
        startOnFiles({support::fullMkv()});
        choose(*m_desk, "SplitTypeMatrix0");
        QVERIFY(!m_desk->isEnabled("SplitButton"));
        typeTime("SplitStartTime", u"000002"_s);
        typeTime("SplitEndTime", u"000005"_s);
        QCOMPARE(m_desk->find<QLineEdit>("SplitStartTime")->text(), u"00:00:02"_s);
        QCOMPARE(m_desk->find<QLineEdit>("SplitEndTime")->text(), u"00:00:05"_s);
        QTRY_VERIFY(m_desk->isEnabled("SplitButton"));
        m_desk->click("SplitButton");
        QVERIFY(m_desk->waitForJobs());
        const double seconds = secondsOf(m_desk->path(u"1.mkv.split.mkv"_s));
        QVERIFY2(seconds > 2 && seconds < 6, qPrintable(QString::number(seconds)));
    }

    void aFileIsSplitByDuration()
    {
        startOnFiles({support::fullMkv()});
        choose(*m_desk, "SplitTypeMatrix2");
        typeTime("SplitDuration", u"000004"_s);
        QTRY_VERIFY(m_desk->isEnabled("SplitButton"));
        m_desk->click("SplitButton");
        QVERIFY(m_desk->waitForJobs());
        QVERIFY(QFile::exists(m_desk->path(u"1.mkv.split-001.mkv"_s)));
        QVERIFY(QFile::exists(m_desk->path(u"1.mkv.split-002.mkv"_s)));
        QVERIFY(secondsOf(m_desk->path(u"1.mkv.split-002.mkv"_s)) < 6);
    }

    void aFileIsSplitBySize()
    {
        startOnFiles({support::longMkv(120)}); // some megabytes
        choose(*m_desk, "SplitTypeMatrix1");
        m_desk->type("SplitSize", u"1"_s);
        QTRY_VERIFY(m_desk->isEnabled("SplitButton"));
        m_desk->click("SplitButton");
        QVERIFY(m_desk->waitForJobs());
        const QFileInfo first(m_desk->path(u"1.mkv.split-001.mkv"_s));
        QVERIFY(first.exists() && first.size() < 1500000);
        QVERIFY(QFile::exists(m_desk->path(u"1.mkv.split-002.mkv"_s)));
    }

    void eachFileIsRewritten()
    {
        startOnFiles({support::fullMkv(), support::fullMkv()});
        m_desk->click("RemuxButton");
        QVERIFY(m_desk->waitForJobs());
        QCOMPARE(m_desk->rows("QueueTable", File), QStringList({u"1.mkv"_s, u"2.mkv"_s}));
        for (const QString &name : {u"1.mkv"_s, u"2.mkv"_s})
            QCOMPARE(codecsOf(rewritten(name)), codecsOf(m_desk->path(name)));
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
        QVERIFY(m_desk->waitForAlert(u"Some players can't read files that use MKV header removal."_s));
        QVERIFY(m_desk->alertText().contains(u"2.mkv"_s));
        QVERIFY(!m_desk->alertText().contains(u"1.mkv"_s));
        m_desk->pressAlertButton(button);
        QTest::qWait(100);
        QVERIFY(!m_desk->hasAlert());
        QCOMPARE(m_desk->rows("QueueTable", File), queued);
        QCOMPARE(m_desk->rows("EditFilesTable", 0), QStringList({u"1.mkv"_s, u"2.mkv"_s}));
        QVERIFY(m_desk->waitForJobs());
        QCOMPARE(QFile::exists(rewritten(u"2.mkv"_s)), !queued.isEmpty());
    }

    void onlyMkvFilesAreGathered()
    {
        m_desk->start();
        m_desk->chooseTab(1);
        QVERIFY(m_desk->open({m_desk->film(support::textMp4(), u"b.mp4"_s)}));
        QVERIFY(m_desk->waitForAlert(u"Error Opening: b.mp4"_s));
        QCOMPARE(m_desk->rows("EditFilesTable", 0), QStringList());
        QVERIFY(!m_desk->isEnabled("RemuxButton"));
    }

    void tickedTracksAreExtracted()
    {
        openFilm();
        tick(*m_desk, {u"ac3"_s, u"srt"_s});
        choose(*m_desk, "EditTrackMatrix0");
        m_desk->click("StartTrackEditButton");
        QVERIFY(m_desk->waitForJobs());
        QCOMPARE(m_desk->rows("QueueTable", Type), QStringList{u"MKV Track Extraction"_s});
        QCOMPARE(codecsOf(m_desk->path(u"a.mkv.stream1.ac3"_s)), u"ac3"_s);
        QCOMPARE(codecsOf(m_desk->path(u"a.mkv.stream3.srt"_s)), u"subrip"_s);
        QVERIFY(!QFile::exists(m_desk->path(u"a.mkv.stream0.h264"_s)));
    }

    void tickedTracksAreRemovedButNeverTheVideo()
    {
        openFilm();
        choose(*m_desk, "EditTrackMatrix1");
        tick(*m_desk, {u"h264"_s, u"aac"_s});
        QTRY_VERIFY(!m_desk->isEnabled("StartTrackEditButton"));
        QVERIFY(m_desk->find<QWidget>("StartTrackEditButton")
                    ->toolTip()
                    .contains(u"A video track can't be removed."_s.toHtmlEscaped()));
        tick(*m_desk, {u"h264"_s, u"dts"_s});
        QTRY_VERIFY(m_desk->isEnabled("StartTrackEditButton"));
        const QStringList before = names();
        m_desk->click("StartTrackEditButton");
        QVERIFY(m_desk->waitForJobs());
        QCOMPARE(m_desk->rows("QueueTable", Type), QStringList{u"MKV Track Removal"_s});
        QCOMPARE(codecsOf(newFilm(before)), u"h264 ac3 subrip ass"_s);
    }

    void addedTracksAreMuxedBesideAllOfTheFilmsOwn()
    {
        openFilm();
        QVERIFY(m_desk->open({m_desk->film(support::srtFile(), u"s.srt"_s)}));
        QTRY_COMPARE(m_desk->rows("ConvertTrackTable", Kind).size(), 7);
        choose(*m_desk, "EditTrackMatrix2");
        if (!isTicked(6)) {
            QVERIFY(!m_desk->isEnabled("StartTrackEditButton"));
            tickCell(*m_desk, 6);
        }
        pickLanguage(*m_desk, 6, u"Italian"_s);
        writeTitle(*m_desk, 6, u"Added"_s);
        tickCell(*m_desk, 6, Default);
        tickCell(*m_desk, 6, Forced);
        m_desk->click("StartTrackEditButton");
        QVERIFY(m_desk->waitForJobs());
        const QString muxed = m_desk->path(u"a.muxed.mkv"_s);
        QCOMPARE(codecsOf(muxed), u"h264 ac3 aac subrip ass dts subrip"_s);
        const QString added = tracksOf(muxed).constLast();
        QVERIFY2(added.startsWith(u"subtitles:ita:Added:"_s) && added.endsWith(u":1:1"_s), qPrintable(added));
    }

    void aSubtitleIsSentWithItsFilm()
    {
        const QString application = m_desk->path(u"Lintwick.sh"_s);
        const QString record = m_desk->path(u"started.txt"_s);
        writeScript(application, u"echo \"started $*\" >> '%1'"_s.arg(record));
        m_desk->start();
        KXPreferences &preferences = m_desk->delegate().program().preferences();
        QVariantMap panel = preferences.preferencePanelDictionary();
        panel.insert(u"lintwickPath"_s, application);
        preferences.setPreferencePanelDictionary(panel);
        QVERIFY(m_desk->open({m_desk->film(support::fullMkv())}));
        QVERIFY(!m_desk->isEnabled("SendButton"));
        tick(*m_desk, {u"srt"_s});
        QTRY_VERIFY(m_desk->isEnabled("SendButton"));
        m_desk->click("SendButton");
        QVERIFY(m_desk->waitForJobs());
        QTRY_COMPARE(linesOf(record).size(), 3);
        QVERIFY(linesOf(record).contains(u"started "_s + m_desk->path(u"a.mkv.stream3.srt"_s)));
        QVERIFY(linesOf(record).contains(u"started "_s + m_desk->path(u"a.mkv"_s)));
    }

    void theTickedTracksArePlayed()
    {
        const QString record = m_desk->path(u"played.txt"_s);
        writeScript(m_desk->path(u"mplayer"_s), u"printf '%s\\n' \"$@\" > '%1'"_s.arg(record));
        m_desk->start();
        usePlayer(m_desk->path(u"mplayer"_s));
        QVERIFY(m_desk->open({m_desk->film(support::fullMkv())}));
        tick(*m_desk, {u"h264"_s, u"aac"_s});
        QTRY_VERIFY(m_desk->isEnabled("PlayButton"));
        m_desk->click("PlayButton");
        QTRY_COMPARE(linesOf(record).size(), 5);
        QCOMPARE(linesOf(record),
                 QStringList({m_desk->path(u"a.mkv"_s), u"-vid"_s, u"0"_s, u"-aid"_s, u"1"_s}));
        QVERIFY(!m_desk->hasAlert());
    }

    void withoutAPlayerTheButtonIsOffAndSaysWhy()
    {
        m_desk->start();
        usePlayer({});
        QVERIFY(m_desk->open({m_desk->film(support::fullMkv())}));
        QVERIFY(!m_desk->isEnabled("PlayButton"));
        QVERIFY(m_desk->find<QWidget>("PlayButton")->toolTip().contains(u"mplayer is not installed"_s));
    }

private:
    /// A tools folder with the tools as they are and another player; with none where its path is empty.
    void usePlayer(const QString &player)
    {
        KXPreferences &preferences = m_desk->delegate().program().preferences();
        const QDir real(preferences.toolsLocation().toLocalFile());
        const QString tools = m_desk->path(u"tools"_s);
        QDir().mkpath(tools + u"/mplayer"_s);
        for (const QString &name : {u"ffmpeg"_s, u"mkvtoolnix"_s, u"fonts"_s})
            QVERIFY(QFile::link(real.filePath(name), tools + u'/' + name));
        if (!player.isEmpty())
            QVERIFY(QFile::rename(player, tools + u"/mplayer/mplayer"_s));
        preferences.setToolsLocationURL(QUrl::fromLocalFile(tools));
    }

    void startOnFiles(const QStringList &clips)
    {
        m_desk->start();
        m_desk->chooseTab(1);
        QStringList films;
        for (const QString &clip : clips)
            films.append(m_desk->film(clip, u"%1.mkv"_s.arg(films.size() + 1)));
        QVERIFY(m_desk->open(films));
        QTRY_COMPARE(m_desk->rows("EditFilesTable", 0).size(), films.size());
    }

    void openFilm()
    {
        m_desk->start();
        QVERIFY(m_desk->open({m_desk->film(support::fullMkv())}));
        QTRY_COMPARE(m_desk->rows("ConvertTrackTable", Kind).size(), 6);
    }

    /// Types digits over a time from its left end.
    void typeTime(const char *field, const QString &digits)
    {
        auto *line = m_desk->find<QLineEdit>(field);
        QTest::mouseClick(line, Qt::LeftButton);
        QTest::keyClick(line, Qt::Key_Home);
        QTest::keyClicks(line, digits);
        QTest::keyClick(line, Qt::Key_Tab);
        QTest::qWait(0);
    }

    bool isTicked(int row)
    {
        const QAbstractItemModel *model = m_desk->find<QTreeView>("ConvertTrackTable")->model();
        return model->index(row, Kind).data(Qt::CheckStateRole).toInt() == Qt::Checked;
    }

    QStringList names() const { return QDir(m_desk->path()).entryList(QDir::Files); }

    /// The film that has come since.
    QString newFilm(const QStringList &before) const
    {
        for (const QString &name : names()) {
            if (name.endsWith(u".mkv"_s) && !before.contains(name))
                return m_desk->path(name);
        }
        return {};
    }

    QString rewritten(const QString &name) const { return m_desk->path(name + u".remux.mkv"_s); }

    static void writeScript(const QString &path, const QString &line)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + line.toUtf8() + '\n');
        file.setPermissions(QFile::Permissions(0x7755));
    }

    static QStringList linesOf(const QString &path)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    }

    std::unique_ptr<WindowDesk> m_desk;
};

QTEST_MAIN(EditingTest)
#include "EditingTest.moc"
