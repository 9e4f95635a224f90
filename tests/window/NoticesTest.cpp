// What the window says by itself, and that nothing a person chose is lost without a way back.
#include "support/Clips.h"
#include "support/TestMain.h"
#include "window/QueueDriver.h"

#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QStandardPaths>

using namespace Qt::StringLiterals;
using namespace driver;
using support::waitFor;

class NoticesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<WindowFixture>();
        m_fixture->start();
    }
    void cleanup() { m_fixture.reset(); }

    void clearedRowsComeBack()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv())}));
        tick(*m_fixture, {u"h264"_s});
        m_fixture->click("ConvertButton");
        QVERIFY(m_fixture->waitForJobs());
        const QStringList before = m_fixture->rows("QueueTable", Status);
        m_fixture->click("QueueClearButton");
        QCOMPARE(m_fixture->rows("QueueTable", File), QStringList());
        QTRY_COMPARE(m_fixture->alertHeads(), QStringList{u"1 row cleared"_s});
        press(u"Alert"_s, u"Undo"_s);
        QTRY_COMPARE(m_fixture->rows("QueueTable", File), QStringList{u"a.mkv"_s});
        QCOMPARE(m_fixture->rows("QueueTable", Status), before);
        QVERIFY(!m_fixture->hasAlert());
    }

    void filmsThatWereReplacedComeBackWithTheirChoices()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv(), u"1.mkv"_s),
                                 m_fixture->film(support::fullMkv(), u"2.mkv"_s)}));
        m_fixture->delegate().openQueue().select(1);
        QTest::qWait(0);
        tick(*m_fixture, {u"h264"_s, u"ac3"_s});
        writeTitle(*m_fixture, 1, u"by hand"_s);
        QVERIFY(m_fixture->open({m_fixture->film(support::textMp4(), u"3.mp4"_s)}));
        QTRY_COMPARE(m_fixture->alertHeads(),
                     QStringList{u"2 open films were replaced, and what was chosen for them"_s});
        QCOMPARE(m_fixture->delegate().openQueue().openFileCount(), 1);
        press(u"Alert"_s, u"Undo"_s);
        QTRY_COMPARE(m_fixture->delegate().openQueue().openFileCount(), 2);
        QTRY_VERIFY(m_fixture->find<QLabel>("ConvertFileField")->text().endsWith(u"/2.mkv"_s));
        QCOMPARE(m_fixture->rows("ConvertTrackTable", Title).at(1), u"by hand"_s);
        QCOMPARE(m_fixture->controller().currentSelection()->trackList().size(), 2);
    }

    void filmsWithoutChoicesAreReplacedWithoutAWord()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv(), u"1.mkv"_s),
                                 m_fixture->film(support::fullMkv(), u"2.mkv"_s)}));
        m_fixture->delegate().openQueue().select(1);
        QTest::qWait(0);
        QVERIFY(m_fixture->open({m_fixture->film(support::textMp4(), u"3.mp4"_s)}));
        QTest::qWait(50);
        QVERIFY(!m_fixture->hasAlert());
    }

    void aTabThatResetsNumbersSaysSo()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv())}));
        tick(*m_fixture, {u"h264"_s});
        choose(*m_fixture, "TheVideoMatrix1");
        m_fixture->type("VidBitRateField", u"321"_s);
        m_fixture->chooseTab(1);
        QTRY_COMPARE(m_fixture->alertHeads(),
                     QStringList{u"The tab “Edit Files” has reset the bit rate 321"_s});
        press(u"Alert"_s, u"Undo"_s);
        QTRY_COMPARE(m_fixture->controller().currentTab(), u"MKV"_s);
        QTRY_COMPARE(m_fixture->find<QLineEdit>("VidBitRateField")->text(), u"321"_s);
        QVERIFY(!m_fixture->hasAlert());
        m_fixture->type("VidBitRateField", m_fixture->controller().currentSelection()->videoTrackBitRate());
        m_fixture->chooseTab(1);
        QTest::qWait(50);
        QVERIFY(!m_fixture->hasAlert()); // nothing is lost
    }

    void filesThatCanNotBeOpenedStayInAListWithTheReason()
    {
        QFile notes(m_fixture->path(u"notes.mkv"_s));
        QVERIFY(notes.open(QIODevice::WriteOnly) && notes.write("not a film") > 0);
        notes.close();
        QVERIFY(m_fixture->drop("ConvertTrackTable", {m_fixture->film(support::fullMkv()), notes.fileName(),
                                                      m_fixture->film(support::vp9Mkv(), u"new.mkv"_s),
                                                      m_fixture->film(support::srtFile(), u"words.srt"_s)}));
        QVERIFY(m_fixture->waitForFiles());
        QTRY_COMPARE(head(u"RefusedFiles"_s), u"3 files could not be opened"_s);
        QCOMPARE(text(u"RefusedFiles"_s),
                 u"notes.mkv: it is not a film\nnew.mkv: its codec vp9 is one of the newer ones\n"
                 "words.srt: it is a track: open it alone to add it"_s);
        QCOMPARE(m_fixture->delegate().openQueue().openFileCount(), 1);
        QTRY_VERIFY(!m_fixture->hasAlert()); // those that count down are gone, the list is not
        QVERIFY(bar(u"RefusedFiles"_s) != nullptr);
        press(u"RefusedFiles"_s, {});
        QTRY_VERIFY(bar(u"RefusedFiles"_s) == nullptr);
        QVERIFY(m_fixture->drop("ConvertTrackTable", {notes.fileName()}));
        QVERIFY(m_fixture->waitForFiles());
        QTRY_COMPARE(head(u"RefusedFiles"_s), u"1 file could not be opened"_s); // what was dismissed is gone
    }

    void aFilmOfANewerCodecIsOpenedByOneClick()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv())}));
        const QString film = m_fixture->film(support::vp9Mkv(), u"new.mkv"_s);
        QVERIFY(m_fixture->drop("ConvertTrackTable", {film}));
        QVERIFY(m_fixture->waitForAlert(u"Error Opening: new.mkv"_s));
        QVERIFY(m_fixture->alertText().startsWith(u"The application could not identify one or more"_s));
        press(u"Alert"_s, u"Open Anyway"_s);
        QTRY_COMPARE(m_fixture->delegate().openQueue().openFileCount(), 2); // what was open stays
        QTRY_COMPARE(m_fixture->find<QLabel>("ConvertFileField")->text(), film);
        QVERIFY(!m_fixture->rows("ConvertTrackTable", Kind).isEmpty());
        QTRY_VERIFY(bar(u"RefusedFiles"_s) == nullptr); // it is open now
    }

    void thePreferenceOpensNewerCodecsFromThenOn()
    {
        m_fixture->command(u"File"_s, u"Preferences…"_s);
        auto *box = m_fixture->window().findChild<QCheckBox *>(u"PrefNewerCodecsButton"_s);
        QVERIFY(box != nullptr && !box->isChecked());
        m_fixture->find<QListWidget>("PreferencesPanes")->setCurrentRow(1);
        QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, QPoint(10, box->height() / 2));
        QVERIFY(box->isChecked());
        m_fixture->click("OkPreferencesButton");
        m_fixture->restart();
        QVERIFY(m_fixture->open({m_fixture->film(support::vp9Mkv(), u"new.mkv"_s)}));
        QTRY_VERIFY(m_fixture->find<QLabel>("ConvertFileField")->text().endsWith(u"/new.mkv"_s));
        QVERIFY(!m_fixture->hasAlert());
        QVERIFY(bar(u"RefusedFiles"_s) == nullptr);
    }

    void filmsThatStayBehindAreNamedAndOneClickAway()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::textMp4(), u"1.mp4"_s),
                                 m_fixture->film(support::textMp4(), u"2.mp4"_s),
                                 m_fixture->film(support::textMp4(), u"3.mp4"_s)}));
        choose(*m_fixture, "OpenFilesQueuePanelMatrix1");
        tickCell(*m_fixture, 0);
        QTRY_VERIFY(m_fixture->find<QWidget>("ShowFilmThatStays")->isVisible());
        m_fixture->click("ShowFilmThatStays");
        QTRY_COMPARE(m_fixture->delegate().openQueue().selectedRow(), 1);
        m_fixture->delegate().openQueue().select(0);
        QTest::qWait(0);
        m_fixture->click("ConvertButton");
        QTRY_COMPARE(head(u"FilmsLeft"_s), u"2 films stay open"_s);
        QCOMPARE(text(u"FilmsLeft"_s), u"2.mp4: no video ticked\n3.mp4: no video ticked"_s);
        m_fixture->delegate().openQueue().select(1);
        QTest::qWait(0);
        press(u"FilmsLeft"_s, u"Show the First"_s);
        QTRY_VERIFY(m_fixture->find<QLabel>("ConvertFileField")->text().endsWith(u"/2.mp4"_s));
        QVERIFY(m_fixture->waitForJobs());
    }

    void whatCountsForAllFilmsIsSaidWhereItIsChosen()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::textMp4(), u"1.mp4"_s)}));
        auto *reach = m_fixture->find<QLabel>("SettingsReach");
        QTRY_VERIFY(!reach->isVisible());
        QVERIFY(
            m_fixture->open({m_fixture->path(u"1.mp4"_s), m_fixture->film(support::textMp4(), u"2.mp4"_s)}));
        QTRY_COMPARE(reach->text(), u"Target and picture count for all 2 open films."_s);
        QVERIFY(reach->isVisible());
        choose(*m_fixture, "OpenFilesQueuePanelMatrix1");
        QTRY_COMPARE(reach->text(), u"What is chosen here counts for this film alone."_s);
    }

    void missingToolsAreToldOnceWithWhatTheySwitchOff()
    {
        for (const auto &[program, told] :
             {std::pair(u"MP4Box"_s, u"mp4box: Without it ffmpeg joins MP4 files."_s),
              std::pair(u"AtomicParsley"_s, u"atomicparsley: Padding can't be added to MP4 files."_s),
              std::pair(u"ffmpeg"_s, u"ffmpeg: Without it nothing can be converted"_s)})
            QCOMPARE(m_fixture->missingTools().contains(told),
                     QStandardPaths::findExecutable(program).isEmpty());
        m_fixture->restart();
        QCOMPARE(m_fixture->missingTools(), QString()); // nothing has changed
    }

private:
    QWidget *bar(const QString &word)
    {
        for (QWidget *shown : m_fixture->window().findChildren<QWidget *>(word)) {
            if (shown->isVisible())
                return shown;
        }
        return nullptr;
    }
    QString label(const QString &word, const QString &name)
    {
        const QWidget *shown = bar(word);
        return shown == nullptr ? QString() : shown->findChild<QLabel *>(name)->text();
    }
    QString head(const QString &word) { return label(word, u"AlertHead"_s); }
    QString text(const QString &word) { return label(word, u"AlertText"_s); }

    /// The button with that title; without one the cross.
    void press(const QString &word, const QString &title)
    {
        QWidget *shown = bar(word);
        QVERIFY(shown != nullptr);
        auto *button =
            shown->findChild<QAbstractButton *>(title.isEmpty() ? u"AlertButton0"_s : u"AlertAction"_s);
        QVERIFY(button != nullptr);
        QCOMPARE(button->text(), title);
        QTest::mouseClick(button, Qt::LeftButton);
        QTest::qWait(0);
    }

    std::unique_ptr<WindowFixture> m_fixture;
};

TESSARAY_TEST(NoticesTest)
#include "NoticesTest.moc"
