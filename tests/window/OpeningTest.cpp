// Files come in: through the panel, by dropping, from elsewhere.
#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "window/WindowFixture.h"

#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QTest>

using namespace Qt::StringLiterals;
using support::waitFor;

class OpeningTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<WindowFixture>();
        m_fixture->start();
    }
    void cleanup() { m_fixture.reset(); }

    void anEmptyWindowAsksForFiles()
    {
        QCOMPARE(m_fixture->find<QLabel>("ConvertFileField")->text(),
                 u"Drop Video File(s) in the Table Below"_s);
        QVERIFY(!m_fixture->isEnabled("ConvertButton"));
        QVERIFY(!m_fixture->isEnabled("OpenFilesQueueButton"));
        QVERIFY(!m_fixture->isEnabled("AddButton"));
    }

    void aFileIsOpenedThroughThePanel()
    {
        const QString film = m_fixture->film(support::fullMkv());
        m_fixture->click("OpenButton");
        m_fixture->answerDialog({film});
        QVERIFY(m_fixture->waitForFiles());
        QCOMPARE(m_fixture->find<QLabel>("ConvertFileField")->text(), film);
        QCOMPARE(m_fixture->rows("ConvertTrackTable", 0).size(), 6);
        QVERIFY(!m_fixture->hasAlert());
    }

    void severalFilesAreOpenedThroughThePanel()
    {
        const QStringList films{m_fixture->film(support::fullMkv(), u"a.mkv"_s),
                                m_fixture->film(support::textMp4(), u"b.mp4"_s)};
        m_fixture->click("OpenButton");
        m_fixture->answerDialog(films);
        QVERIFY(m_fixture->waitForFiles());
        QCOMPARE(m_fixture->delegate().openQueue().openFileCount(), 2);
    }

    void oneDroppedFileIsCurrent()
    {
        const QString film = m_fixture->film(support::textMp4(), u"one.mp4"_s);
        QVERIFY(m_fixture->open({film}));
        QCOMPARE(m_fixture->find<QLabel>("ConvertFileField")->text(), film);
        QVERIFY(!m_fixture->isEnabled("OpenFilesQueueButton"));
    }

    void droppingThreeVideosFillsTheOpenQueueAndTheFirstIsCurrent()
    {
        const QStringList films{m_fixture->film(support::fullMkv(), u"1.mkv"_s),
                                m_fixture->film(support::textMp4(), u"2.mp4"_s),
                                m_fixture->film(support::headerRemovalMkv(), u"3.mkv"_s)};
        QVERIFY(m_fixture->open(films));
        QCOMPARE(m_fixture->find<QLabel>("ConvertFileField")->text(), films.constFirst());
        QVERIFY(m_fixture->isEnabled("OpenFilesQueueButton"));
        auto *list = m_fixture->find<QListWidget>("OpenFilesQueuePanelTable");
        QTRY_VERIFY(list->isVisible()); // it comes by itself
        m_fixture->click("OpenFilesQueueButton");
        QTRY_VERIFY(!list->isVisible());
        m_fixture->click("OpenFilesQueueButton");
        QTRY_VERIFY(list->isVisible());
        QCOMPARE(list->count(), 3);
        QCOMPARE(list->currentRow(), 0);
        QCOMPARE(list->item(2)->text(), u"3.mkv"_s);
    }

    void theUserSwitchesBetweenOpenFilesAndTicksStay()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv(), u"1.mkv"_s),
                                 m_fixture->film(support::textMp4(), u"2.mp4"_s)}));
        m_fixture->tick(0);
        QCOMPARE(m_fixture->controller().currentSelection()->vidCount(), u"1"_s);
        auto *list = m_fixture->find<QListWidget>("OpenFilesQueuePanelTable");
        QTest::keyClick(list, Qt::Key_Down);
        QTRY_COMPARE(m_fixture->find<QLabel>("ConvertFileField")->text(), m_fixture->path(u"2.mp4"_s));
        QTest::keyClick(list, Qt::Key_Up);
        QTRY_COMPARE(m_fixture->find<QLabel>("ConvertFileField")->text(), m_fixture->path(u"1.mkv"_s));
        QCOMPARE(m_fixture->controller().currentSelection()->vidCount(), u"1"_s);
    }

    void removingAnOpenFileShowsTheOneBeforeIt()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv(), u"1.mkv"_s),
                                 m_fixture->film(support::textMp4(), u"2.mp4"_s)}));
        auto *list = m_fixture->find<QListWidget>("OpenFilesQueuePanelTable");
        QTest::keyClick(list, Qt::Key_Down);
        m_fixture->click("OpenFilesRemoveButton");
        QTRY_COMPARE(m_fixture->find<QLabel>("ConvertFileField")->text(), m_fixture->path(u"1.mkv"_s));
        QVERIFY(!m_fixture->isEnabled("OpenFilesQueueButton"));
        QTRY_VERIFY(!list->isVisible()); // one file needs no list
    }

    void aDroppedSubtitleIsAddedAndTheOpenQueueStays()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv())}));
        QVERIFY(m_fixture->open({m_fixture->film(support::srtFile(), u"s.srt"_s)}));
        QCOMPARE(m_fixture->delegate().openQueue().openFileCount(), 1);
        QCOMPARE(m_fixture->rows("ConvertTrackTable", 0).size(), 7);
        QVERIFY(m_fixture->rows("ConvertTrackTable", 0).constLast().contains(u"srt"_s));
    }

    void aTrackIsAddedThroughThePanel()
    {
        const QString sound = m_fixture->film(support::surroundAc3(), u"s.ac3"_s);
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv())}));
        m_fixture->click("AddButton");
        m_fixture->answerDialog({sound});
        QVERIFY(m_fixture->waitForFiles());
        QCOMPARE(m_fixture->rows("ConvertTrackTable", 0).size(), 7);
    }

    void aVideoThatIsToBeAddedIsRefused()
    {
        const QString film = m_fixture->film(support::fullMkv());
        const QString other = m_fixture->film(support::textMp4(), u"other.mp4"_s);
        QVERIFY(m_fixture->open({film}));
        m_fixture->click("AddButton");
        m_fixture->answerDialog({other});
        QVERIFY(m_fixture->waitForAlert(u"Error Opening: other.mp4"_s));
        QVERIFY(m_fixture->alertText().startsWith(u"The application can't add the track from this file."_s));
        QCOMPARE(m_fixture->find<QLabel>("ConvertFileField")->text(), film);
    }

    void aDragWithAFolderIsRefusedWhole()
    {
        QDir().mkpath(m_fixture->path(u"folder"_s));
        QVERIFY(!m_fixture->drop("ConvertTrackTable",
                                 {m_fixture->film(support::fullMkv()), m_fixture->path(u"folder"_s)}));
    }

    void aTextFileGivesOneAlertThatClosesItself()
    {
        const QString film = m_fixture->film(support::fullMkv());
        QVERIFY(m_fixture->open({film}));
        QFile text(m_fixture->path(u"notes.txt"_s));
        QVERIFY(text.open(QIODevice::WriteOnly) && text.write("no film\n") > 0);
        text.close();
        QVERIFY(m_fixture->drop("ConvertTrackTable", {text.fileName()}));
        QVERIFY(m_fixture->waitForAlert(u"Error Opening: notes.txt"_s));
        QVERIFY(m_fixture->alertText().startsWith(u"The application could not identify one or more"_s));
        QCOMPARE(QApplication::activeModalWidget(), nullptr); // nothing is held up
        QVERIFY(waitFor([this] { return !m_fixture->hasAlert(); }));
        QCOMPARE(m_fixture->find<QLabel>("ConvertFileField")->text(), film);
        QCOMPARE(m_fixture->rows("ConvertTrackTable", 0).size(), 6);
    }

    void escapeClosesTheNewestMessage()
    {
        QStringList texts;
        for (int i = 0; i < 3; ++i) {
            QFile text(m_fixture->path(u"%1.txt"_s.arg(i)));
            QVERIFY(text.open(QIODevice::WriteOnly) && text.write("no film\n") > 0);
            texts.append(text.fileName());
        }
        QVERIFY(m_fixture->open(texts));
        QVERIFY(m_fixture->waitForAlert(u"Error Opening: 2.txt"_s));
        QCOMPARE(m_fixture->alertHeads().size(), 3);
        QTest::keyClick(&m_fixture->window(), Qt::Key_Escape);
        QTRY_COMPARE(m_fixture->alertHeads().size(), 2);
        QVERIFY(!m_fixture->alertHeads().contains(u"Error Opening: 2.txt"_s));
    }

    void aHandedOverSubtitleNeedsAVideo()
    {
        m_fixture->delegate().filesRequested({m_fixture->film(support::srtFile(), u"s.srt"_s)});
        QVERIFY(m_fixture->waitForAlert(u"Transfer From Lintwick Failed"_s));
        QVERIFY(m_fixture->alertText().startsWith(
            u"Tessaray must have a video file opened before a subtitle can be transferred from Lintwick.  "
            "Open video file and resend the subitle."_s));
        m_fixture->pressAlertButton(0);
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv())}));
        m_fixture->delegate().filesRequested({m_fixture->path(u"s.srt"_s)});
        QTRY_COMPARE(m_fixture->rows("ConvertTrackTable", 0).size(), 7);
    }

    void fileInfoIsSavedBesideTheFile()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv())}));
        m_fixture->command(u"File"_s, u"Save File Info"_s);
        QFile info(m_fixture->path(u"a.mkv.info.txt"_s));
        QVERIFY(waitFor([&] { return info.exists(); }));
        QVERIFY(info.open(QIODevice::ReadOnly));
        QVERIFY(info.readAll().contains("\"codec_name\": \"h264\""));
    }

private:
    std::unique_ptr<WindowFixture> m_fixture;
};

TESSARAY_TEST(OpeningTest)
#include "OpeningTest.moc"
