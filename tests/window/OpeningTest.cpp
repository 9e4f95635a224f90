// Files come in: through the panel, by dropping, from elsewhere.
#include "support/Clips.h"
#include "support/Waiting.h"
#include "window/WindowDesk.h"

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
        m_desk = std::make_unique<WindowDesk>();
        m_desk->start();
    }
    void cleanup() { m_desk.reset(); }

    void anEmptyWindowAsksForFiles()
    {
        QCOMPARE(m_desk->find<QLabel>("ConvertFileField")->text(),
                 u"Drop Video File(s) in the Table Below"_s);
        QVERIFY(!m_desk->isEnabled("ConvertButton"));
        QVERIFY(!m_desk->isEnabled("OpenFilesQueueButton"));
        QVERIFY(!m_desk->isEnabled("AddButton"));
    }

    void aFileIsOpenedThroughThePanel()
    {
        const QString film = m_desk->film(support::fullMkv());
        m_desk->click("OpenButton");
        m_desk->answerDialog({film});
        QVERIFY(m_desk->waitForFiles());
        QCOMPARE(m_desk->find<QLabel>("ConvertFileField")->text(), film);
        QCOMPARE(m_desk->rows("ConvertTrackTable", 0).size(), 6);
        QVERIFY(!m_desk->hasAlert());
    }

    void severalFilesAreOpenedThroughThePanel()
    {
        const QStringList films{m_desk->film(support::fullMkv(), u"a.mkv"_s),
                                m_desk->film(support::textMp4(), u"b.mp4"_s)};
        m_desk->click("OpenButton");
        m_desk->answerDialog(films);
        QVERIFY(m_desk->waitForFiles());
        QCOMPARE(m_desk->delegate().openQueue().openFileCount(), 2);
    }

    void oneDroppedFileIsCurrent()
    {
        const QString film = m_desk->film(support::textMp4(), u"one.mp4"_s);
        QVERIFY(m_desk->open({film}));
        QCOMPARE(m_desk->find<QLabel>("ConvertFileField")->text(), film);
        QVERIFY(!m_desk->isEnabled("OpenFilesQueueButton"));
    }

    void droppingThreeVideosFillsTheOpenQueueAndTheFirstIsCurrent()
    {
        const QStringList films{m_desk->film(support::fullMkv(), u"1.mkv"_s),
                                m_desk->film(support::textMp4(), u"2.mp4"_s),
                                m_desk->film(support::headerRemovalMkv(), u"3.mkv"_s)};
        QVERIFY(m_desk->open(films));
        QCOMPARE(m_desk->find<QLabel>("ConvertFileField")->text(), films.constFirst());
        QVERIFY(m_desk->isEnabled("OpenFilesQueueButton"));
        m_desk->click("OpenFilesQueueButton");
        auto *list = m_desk->find<QListWidget>("OpenFilesQueuePanelTable");
        QTRY_VERIFY(list->isVisible());
        QCOMPARE(list->count(), 3);
        QCOMPARE(list->currentRow(), 0);
        QCOMPARE(list->item(2)->text(), u"3.mkv"_s);
    }

    void theUserSwitchesBetweenOpenFilesAndTicksStay()
    {
        QVERIFY(m_desk->open(
            {m_desk->film(support::fullMkv(), u"1.mkv"_s), m_desk->film(support::textMp4(), u"2.mp4"_s)}));
        m_desk->tick(0);
        QCOMPARE(m_desk->controller().currentSelection()->vidCount(), u"1"_s);
        m_desk->click("OpenFilesQueueButton");
        auto *list = m_desk->find<QListWidget>("OpenFilesQueuePanelTable");
        QTest::keyClick(list, Qt::Key_Down);
        QTRY_COMPARE(m_desk->find<QLabel>("ConvertFileField")->text(), m_desk->path(u"2.mp4"_s));
        QTest::keyClick(list, Qt::Key_Up);
        QTRY_COMPARE(m_desk->find<QLabel>("ConvertFileField")->text(), m_desk->path(u"1.mkv"_s));
        QCOMPARE(m_desk->controller().currentSelection()->vidCount(), u"1"_s);
    }

    void removingAnOpenFileShowsTheOneBeforeIt()
    {
        QVERIFY(m_desk->open(
            {m_desk->film(support::fullMkv(), u"1.mkv"_s), m_desk->film(support::textMp4(), u"2.mp4"_s)}));
        m_desk->click("OpenFilesQueueButton");
        auto *list = m_desk->find<QListWidget>("OpenFilesQueuePanelTable");
        QTest::keyClick(list, Qt::Key_Down);
        m_desk->click("OpenFilesRemoveButton");
        QTRY_COMPARE(m_desk->find<QLabel>("ConvertFileField")->text(), m_desk->path(u"1.mkv"_s));
        QVERIFY(!m_desk->isEnabled("OpenFilesQueueButton"));
        QTRY_VERIFY(!list->isVisible()); // one file needs no list
    }

    void aDroppedSubtitleIsAddedAndTheOpenQueueStays()
    {
        QVERIFY(m_desk->open({m_desk->film(support::fullMkv())}));
        QVERIFY(m_desk->open({m_desk->film(support::srtFile(), u"s.srt"_s)}));
        QCOMPARE(m_desk->delegate().openQueue().openFileCount(), 1);
        QCOMPARE(m_desk->rows("ConvertTrackTable", 0).size(), 7);
        QVERIFY(m_desk->rows("ConvertTrackTable", 0).constLast().contains(u"srt"_s));
    }

    void aTrackIsAddedThroughThePanel()
    {
        const QString sound = m_desk->film(support::surroundAc3(), u"s.ac3"_s);
        QVERIFY(m_desk->open({m_desk->film(support::fullMkv())}));
        m_desk->click("AddButton");
        m_desk->answerDialog({sound});
        QVERIFY(m_desk->waitForFiles());
        QCOMPARE(m_desk->rows("ConvertTrackTable", 0).size(), 7);
    }

    void aVideoThatIsToBeAddedIsRefused()
    {
        const QString film = m_desk->film(support::fullMkv());
        const QString other = m_desk->film(support::textMp4(), u"other.mp4"_s);
        QVERIFY(m_desk->open({film}));
        m_desk->click("AddButton");
        m_desk->answerDialog({other});
        QVERIFY(m_desk->waitForAlert(u"Error Opening: other.mp4"_s));
        QVERIFY(m_desk->alertText().startsWith(u"The application can't add the track from this file."_s));
        QCOMPARE(m_desk->find<QLabel>("ConvertFileField")->text(), film);
    }

    void aDragWithAFolderIsRefusedWhole()
    {
        QDir().mkpath(m_desk->path(u"folder"_s));
        QVERIFY(!m_desk->drop("ConvertTrackTable",
                              {m_desk->film(support::fullMkv()), m_desk->path(u"folder"_s)}));
    }

    void aTextFileGivesOneAlertThatClosesItself()
    {
        const QString film = m_desk->film(support::fullMkv());
        QVERIFY(m_desk->open({film}));
        QFile text(m_desk->path(u"notes.txt"_s));
        QVERIFY(text.open(QIODevice::WriteOnly) && text.write("no film\n") > 0);
        text.close();
        QVERIFY(m_desk->drop("ConvertTrackTable", {text.fileName()}));
        QVERIFY(m_desk->waitForAlert(u"Error Opening: notes.txt"_s));
        QVERIFY(m_desk->alertText().contains(u"Closes by itself"_s));
        QVERIFY(waitFor([this] { return !m_desk->hasAlert(); }, 8000));
        QCOMPARE(m_desk->find<QLabel>("ConvertFileField")->text(), film);
        QCOMPARE(m_desk->rows("ConvertTrackTable", 0).size(), 6);
    }

    void escapeClosesAllAlertsThatWait()
    {
        QStringList texts;
        for (int i = 0; i < 3; ++i) {
            QFile text(m_desk->path(u"%1.txt"_s.arg(i)));
            QVERIFY(text.open(QIODevice::WriteOnly) && text.write("no film\n") > 0);
            texts.append(text.fileName());
        }
        QVERIFY(m_desk->open(texts));
        QVERIFY(m_desk->waitForAlert(u"Error Opening: 0.txt"_s));
        QCOMPARE(m_desk->program().alerts().waitingCount(), 2);
        QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
        QTRY_VERIFY(!m_desk->hasAlert());
        QCOMPARE(m_desk->program().alerts().waitingCount(), 0);
    }

    void aHandedOverSubtitleNeedsAVideo()
    {
        m_desk->delegate().filesRequested({m_desk->film(support::srtFile(), u"s.srt"_s)});
        QVERIFY(m_desk->waitForAlert(u"Transfer From Lintwick Failed"_s));
        QVERIFY(m_desk->alertText().startsWith(
            u"Tessaray must have a video file opened before a subtitle can be transferred from Lintwick.  "
            "Open video file and resend the subitle."_s));
        m_desk->pressAlertButton(0);
        QVERIFY(m_desk->open({m_desk->film(support::fullMkv())}));
        m_desk->delegate().filesRequested({m_desk->path(u"s.srt"_s)});
        QTRY_COMPARE(m_desk->rows("ConvertTrackTable", 0).size(), 7);
    }

    void fileInfoIsSavedBesideTheFile()
    {
        QVERIFY(m_desk->open({m_desk->film(support::fullMkv())}));
        m_desk->command(u"File"_s, u"Save File Info"_s);
        QFile info(m_desk->path(u"a.mkv.info.txt"_s));
        QVERIFY(waitFor([&] { return info.exists(); }));
        QVERIFY(info.open(QIODevice::ReadOnly));
        QVERIFY(info.readAll().contains("\"codec_name\": \"h264\""));
    }

private:
    std::unique_ptr<WindowDesk> m_desk;
};

QTEST_MAIN(OpeningTest)
#include "OpeningTest.moc"
