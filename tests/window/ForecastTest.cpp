// What the window says before and after a job is what happens.
#include "selection/SizeEstimate.h"
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "window/QueueDriver.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QDropEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>

using namespace Qt::StringLiterals;
using namespace driver;
using support::waitFor;

class ForecastTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<WindowFixture>();
        m_fixture->start();
    }
    void cleanup() { m_fixture.reset(); }

    void whatIsMissingIsSaidAndMendedByOneClick()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv())}));
        QVERIFY(!m_fixture->isEnabled("ConvertButton"));
        QCOMPARE(text("ResultSentence"), u"Tick exactly one video track."_s);
        QCOMPARE(text("InspectorNote"), u"To convert, tick exactly one video track."_s);
        m_fixture->click("TakeFirstTracks");
        QTRY_VERIFY(m_fixture->isEnabled("ConvertButton"));
        QVERIFY2(text("ResultSentence").startsWith(u"Picture copied as it is · sound "_s),
                 qPrintable(text("ResultSentence")));
    }

    void theSentenceFollowsEveryChoice()
    {
        openTicked({u"h264"_s, u"ac3"_s, u"srt"_s});
        QTRY_VERIFY(text("ResultSentence").endsWith(u"1 subtitle as a track"_s) ||
                    text("ResultSentence").endsWith(u"subtitle burned in"_s) ||
                    text("ResultSentence").startsWith(u"The subtitle"_s));
        choose(*m_fixture, "TheSubtitleMatrix1");
        choose(*m_fixture, "TheVideoMatrix2");
        QTRY_VERIFY(text("ResultSentence").startsWith(u"Picture re-encoded H.264, 2 passes"_s));
        choose(*m_fixture, "TheVideoMatrix0");
        QTRY_VERIFY(text("ResultSentence").startsWith(u"Picture copied as it is"_s));
        choose(*m_fixture, "TheSubtitleMatrix0");
        QTRY_COMPARE(text("ResultSentence"), u"The subtitle can’t be burned while the picture is copied: "
                                             "choose H.264, 1 pass or 2 passes."_s);
        choose(*m_fixture, "TheSubtitleMatrix1");
        tick(*m_fixture, {u"ac3"_s});
        QTRY_VERIFY(text("ResultSentence").contains(u"no sound"_s));
    }

    void theNameThatIsSaidIsTheNameThatIsWritten_data()
    {
        QTest::addColumn<bool>("taken");
        QTest::addColumn<QString>("name");
        QTest::newRow("free") << false << u"a.m4v"_s;
        QTest::newRow("taken") << true << u"a (2).m4v"_s;
    }

    void theNameThatIsSaidIsTheNameThatIsWritten()
    {
        QFETCH(bool, taken);
        QFETCH(QString, name);
        if (taken)
            QVERIFY(!m_fixture->film(support::textMp4(), u"a.m4v"_s).isEmpty());
        openTicked({u"h264"_s, u"aac"_s});
        QTRY_COMPARE(text("ResultName"), name);
        m_fixture->click("ConvertButton");
        QVERIFY(m_fixture->waitForJobs());
        QVERIFY(QFile::exists(m_fixture->path(name)));
    }

    void aCopyIsAboutAsLargeAsIsSaid()
    {
        const QString film = m_fixture->film(support::longMkv(20), u"a.mkv"_s);
        QVERIFY(m_fixture->open({film}));
        tickCell(*m_fixture, 0);
        tickCell(*m_fixture, 1);
        QTRY_VERIFY(text("ResultSize").contains(u"about "_s));
        const auto estimate = selection::estimateOf(*m_fixture->controller().currentSelection(),
                                                    m_fixture->controller().currentVideoFile()->seconds());
        QVERIFY(estimate.has_value());
        m_fixture->click("ConvertButton");
        QVERIFY(m_fixture->waitForJobs());
        const double written = static_cast<double>(QFileInfo(m_fixture->path(u"a.m4v"_s)).size());
        QVERIFY(std::abs(static_cast<double>(estimate->bytes) - written) < written * 0.15);
    }

    void theCommandsAreThoseOfADryRun()
    {
        openTicked({u"h264"_s, u"aac"_s});
        QTRY_VERIFY(m_fixture->isEnabled("ShowCommandButton"));
        m_fixture->click("ShowCommandButton");
        QDialog *sheet = nullptr;
        QVERIFY(waitFor([&] {
            sheet = m_fixture->window().findChild<QDialog *>(u"TextSheet"_s);
            return sheet != nullptr && sheet->isVisible();
        }));
        const QString commands = sheet->findChild<QPlainTextEdit *>(u"SheetText"_s)->toPlainText();
        QVERIFY2(commands.startsWith(u"1  "_s) && commands.contains(u"a.mkv"_s) &&
                     commands.contains(u"a.m4v"_s),
                 qPrintable(commands));
        QVERIFY(!QFile::exists(m_fixture->path(u"a.m4v"_s))); // nothing was run
        QTest::keyClick(sheet, Qt::Key_Escape);
    }

    void editingTracksTellsTheFateOfEachOne()
    {
        openTicked({u"ac3"_s});
        QVERIFY(!becomes().contains(u"Removed"_s));
        m_fixture->click("EditTrackMatrix1");
        m_fixture->find<QWidget>("EditTrackMatrix1")->setFocus();
        QTRY_COMPARE(becomes().filter(u"Removed"_s).size(), 1);
        QCOMPARE(becomes().filter(u"Stays"_s).size(), becomes().size() - 1);
        QVERIFY(text("EditTracksReason").startsWith(u"1 track goes, "_s));
        m_fixture->click("EditTrackMatrix0");
        m_fixture->find<QWidget>("EditTrackMatrix0")->setFocus();
        QTRY_COMPARE(becomes().filter(u"Own file"_s).size(), 1);
        tick(*m_fixture, {u"h264"_s});
        m_fixture->click("EditTrackMatrix1");
        QTRY_COMPARE(text("EditTracksReason"), u"The video track can’t be removed: untick it."_s);
    }

    void aDragSaysWhatADropWouldDo()
    {
        QCOMPARE(dragOver({m_fixture->film(support::fullMkv())}), u"Drop to open"_s);
        QDir().mkpath(m_fixture->path(u"folder"_s));
        QCOMPARE(dragOver({m_fixture->path(u"folder"_s)}), u"Folders can’t be opened"_s);
        QVERIFY(m_fixture->open({m_fixture->path(u"a.mkv"_s)}));
        QCOMPARE(dragOver({m_fixture->film(support::srtFile(), u"s.srt"_s)}), u"Drop to add · to a.mkv"_s);
        QCOMPARE(dragOver({m_fixture->path(u"a.mkv"_s)}), u"Drop to open · replaces the Open Files list"_s);
    }

    void aGuessSaysWhyUntilSomethingIsChosenByHand()
    {
        openTicked({u"h264"_s, u"dts"_s});
        QVERIFY(!m_fixture->isEnabled("BestGuessButton")); // "General" promises nothing
        m_fixture->pick("DevicePopUp", u"iPad (3 and Later)"_s);
        QTRY_VERIFY(m_fixture->isEnabled("BestGuessButton"));
        m_fixture->find<QWidget>("BestGuessButton")->findChild<QMenu *>()->actions().constFirst()->trigger();
        QTRY_VERIFY(!text("PictureReason").isEmpty());
        QVERIFY(!text("SoundReason").isEmpty());
        choose(*m_fixture, "TheVideoMatrix1");
        QTRY_VERIFY(text("PictureReason").isEmpty() && text("SoundReason").isEmpty());
    }

    void filmsThatStayAreNamedWithTheReason()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv(), u"1.mkv"_s),
                                 m_fixture->film(support::fullMkv(), u"2.mkv"_s),
                                 m_fixture->film(support::fullMkv(), u"3.mkv"_s)}));
        choose(*m_fixture, "OpenFilesQueuePanelMatrix1");
        tickCell(*m_fixture, 0);
        m_fixture->delegate().openQueue().select(1);
        QTest::qWait(50);
        tickCell(*m_fixture, 0);
        QTRY_VERIFY(text("ResultSize").contains(u"and 1 more film. 3.mkv stays open: no video ticked."_s));
        const auto *list = m_fixture->find<QListWidget>("OpenFilesQueuePanelTable");
        QTRY_VERIFY(list->item(2)->data(Qt::AccessibleTextRole).toString().contains(u"No video ticked"_s));
        QVERIFY(list->item(0)->data(Qt::AccessibleTextRole).toString().contains(u"Ready"_s));
    }

    void detailsNameEveryTrackOfTheSource_data()
    {
        QTest::addColumn<QString>("film");
        QTest::addColumn<QStringList>("ticked");
        QTest::addColumn<int>("tracks");
        QTest::addColumn<QString>("closing");
        QTest::newRow("all is there") << support::fullMkv() << QStringList{u"h264"_s, u"aac"_s} << 6
                                      << u"Nothing of what you chose is missing."_s;
        QTest::newRow("something is not")
            << support::pgsMkv() << QStringList{u"h264"_s, u"aac"_s, u"teletext"_s} << 3
            << u"Of what you chose is missing: subtitle 2 (hdmv_pgs_subtitle)."_s;
    }

    void detailsNameEveryTrackOfTheSource()
    {
        QFETCH(QString, film);
        QFETCH(QStringList, ticked);
        QFETCH(int, tracks);
        QFETCH(QString, closing);
        QVERIFY(m_fixture->open({m_fixture->film(film)}));
        tick(*m_fixture, ticked);
        choose(*m_fixture, "TheSubtitleMatrix1");
        m_fixture->click("ConvertButton");
        QVERIFY(m_fixture->waitForJobs());
        pressInRow(u"Details"_s);
        QDialog *sheet = nullptr;
        QVERIFY(waitFor([&] {
            sheet = m_fixture->window().findChild<QDialog *>(u"TextSheet"_s);
            return sheet != nullptr && sheet->isVisible();
        }));
        const QStringList lines =
            sheet->findChild<QPlainTextEdit *>(u"SheetText"_s)->toPlainText().split(u'\n');
        QCOMPARE(lines.size(), tracks + 2); // a line between, and the end
        for (int index = 0; index < tracks; ++index)
            QVERIFY2(lines.at(index).contains(u" %1 ("_s.arg(index)), qPrintable(lines.at(index)));
        QVERIFY(lines.at(0).startsWith(u"video 0 (h264)"_s));
        QVERIFY(lines.at(tracks - 1).contains(u"left out"_s));
        QCOMPARE(lines.constLast(), closing);
        QTest::keyClick(sheet, Qt::Key_Escape);
    }

    void theSaveFolderIsTwoClicksAwayAndTheSameInThePreferences()
    {
        openTicked({u"h264"_s, u"aac"_s});
        const QString folder = m_fixture->path(u"Tablet"_s);
        QVERIFY(QDir().mkpath(folder));
        m_fixture->click("ChangeFolderButton");
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QVERIFY(menu != nullptr);
        QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier,
                          menu->actionGeometry(menu->actions().constFirst()).center());
        m_fixture->answerDialog({folder});
        QTRY_COMPARE(text("ResultFolder"), u"Into %1"_s.arg(folder));
        m_fixture->command(u"File"_s, u"Preferences…"_s);
        QTRY_COMPARE(m_fixture->find<QLineEdit>("SaveDirectoryPath")->text(), folder);
        QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
        m_fixture->click("ConvertButton");
        QVERIFY(m_fixture->waitForJobs());
        QVERIFY(QFile::exists(folder + u"/a.m4v"_s));
    }

    void theResultBearsTheNameThatIsTyped()
    {
        QVERIFY(!m_fixture->film(support::textMp4(), u"Ours.m4v"_s).isEmpty()); // taken
        openTicked({u"h264"_s, u"aac"_s});
        QTRY_COMPARE(text("ResultName"), u"a.m4v"_s);
        rename(u"Ours"_s, Qt::Key_Return);
        QTRY_COMPARE(text("ResultName"), u"Ours (2).m4v"_s);
        rename(u"Theirs"_s, Qt::Key_Escape); // changes nothing
        QTRY_COMPARE(text("ResultName"), u"Ours (2).m4v"_s);
        m_fixture->click("ConvertButton");
        QVERIFY(m_fixture->waitForJobs());
        QVERIFY(QFile::exists(m_fixture->path(u"Ours (2).m4v"_s)));
        QVERIFY(!QFile::exists(m_fixture->path(u"a.m4v"_s)));
        rename(u""_s, Qt::Key_Return); // its own again
        QTRY_COMPARE(text("ResultName"), u"a.m4v"_s);
    }

private:
    void rename(const QString &name, Qt::Key end)
    {
        m_fixture->click("EditNameButton");
        auto *field = m_fixture->find<QLineEdit>("ResultNameField");
        QTRY_VERIFY(field->hasFocus());
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(field, Qt::Key_Delete);
        QTest::keyClicks(field, name);
        QTest::keyClick(field, end);
        QTest::qWait(0);
    }

    /// A verb of the first row of the queue, by its menu.
    void pressInRow(const QString &title)
    {
        auto *table = m_fixture->find<QTreeView>("QueueTable");
        const QPoint place = table->visualRect(table->model()->index(0, File)).center();
        Q_EMIT table->customContextMenuRequested(place);
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QVERIFY(menu != nullptr);
        for (QAction *action : menu->actions()) {
            if (action->text() == title)
                QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier,
                                  menu->actionGeometry(action).center());
        }
        QTest::qWait(0);
    }

    QString text(const char *label) { return m_fixture->find<QLabel>(label)->text(); }
    QStringList becomes() { return m_fixture->rows("ConvertTrackTable", 5); }

    void openTicked(const QStringList &codecs)
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv())}));
        tick(*m_fixture, codecs);
    }

    /// What the window says meanwhile.
    QString dragOver(const QStringList &paths)
    {
        QMimeData data;
        QList<QUrl> urls;
        for (const QString &path : paths)
            urls.append(QUrl::fromLocalFile(path));
        data.setUrls(urls);
        QDragEnterEvent enter({400, 400}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&m_fixture->window(), &enter);
        const QString words = text("EmptyTitle");
        QDragLeaveEvent leave;
        QApplication::sendEvent(&m_fixture->window(), &leave);
        return words;
    }

    std::unique_ptr<WindowFixture> m_fixture;
};

TESSARAY_TEST(ForecastTest)
#include "ForecastTest.moc"
