// Whole journeys by the keyboard alone: no mouse event is sent here.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "window/QueueDriver.h"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QFileDialog>
#include <QLabel>
#include <QListWidget>

using namespace Qt::StringLiterals;
using namespace driver;
using support::waitFor;

class JourneysTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<WindowFixture>();
        m_fixture->start();
        m_fixture->window().activateWindow();
    }
    void cleanup() { m_fixture.reset(); }

    void fromTheFirstStartToAFilmForATablet()
    {
        const QString film = m_fixture->film(support::textMp4(), u"Evening.mp4"_s);
        QTRY_COMPARE(focused(), u"EmptyOpenButton"_s);
        key(Qt::Key_Space);
        typeIntoDialog(film);
        QTRY_COMPARE(m_fixture->find<QLabel>("FilmName")->text(), u"Evening.mp4"_s);
        QTRY_VERIFY(m_fixture->isEnabled("PresetSelectionsPopUp"));
        key(Qt::Key_K, Qt::AltModifier);
        QTRY_COMPARE(focused(), u"PresetSelectionsPopUp"_s);
        key(Qt::Key_Down); // First Track
        QTRY_VERIFY(m_fixture->isEnabled("DevicePopUp"));
        key(Qt::Key_G, Qt::AltModifier);
        QTRY_COMPARE(focused(), u"DevicePopUp"_s);
        for (int steps = 0; steps < 40 && m_fixture->controller().mp4Device() != u"iPad (3 and Later)"_s;
             ++steps)
            key(Qt::Key_Down);
        QCOMPARE(m_fixture->controller().mp4Device(), u"iPad (3 and Later)"_s);
        QTRY_VERIFY(
            m_fixture->find<QLabel>("ResultSentence")->text().startsWith(u"Picture copied as it is"_s));
        key(Qt::Key_Return, Qt::ControlModifier);
        QTRY_COMPARE(m_fixture->rows("QueueTable", File), QStringList{u"Evening.mp4"_s});
        QVERIFY(m_fixture->waitForJobs());
        QCOMPARE(m_fixture->rows("QueueTable", Status), QStringList{u"Completed"_s});
        QCOMPARE(support::codecsOf(m_fixture->path(u"Evening.m4v"_s)), u"h264 aac mov_text"_s);
    }

    void tracksAreEditedAndFoundInTheResult()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv())}));
        auto *table = m_fixture->find<QTreeView>("ConvertTrackTable");
        QVERIFY(tabTo(u"ConvertTrackTable"_s));
        key(Qt::Key_Home);
        key(Qt::Key_Space); // the picture
        QTRY_VERIFY(m_fixture->isEnabled("ConvertButton"));
        key(Qt::Key_Down);
        key(Qt::Key_Space); // English sound
        QCOMPARE(table->currentIndex().row(), 1);
        key(Qt::Key_Right);
        QCOMPARE(table->currentIndex().column(), int(Language));
        key(Qt::Key_F2);
        QTRY_VERIFY(table->viewport()->findChild<QComboBox *>() != nullptr);
        QAbstractItemView *languages = table->viewport()->findChild<QComboBox *>()->view();
        if (!languages->isVisible())
            key(Qt::Key_Space);
        QTRY_VERIFY(languages->isVisible());
        QTest::keyClicks(languages, u"Fren"_s);
        QTest::keyClick(languages, Qt::Key_Return);
        QTRY_COMPARE(m_fixture->rows("ConvertTrackTable", Language).at(1), u"French"_s);
        table->setCurrentIndex(table->model()->index(1, Language));
        table->setFocus();
        key(Qt::Key_Right);
        key(Qt::Key_F2);
        QTRY_VERIFY(table->viewport()->findChild<QLineEdit *>() != nullptr);
        auto *title = table->viewport()->findChild<QLineEdit *>();
        QTest::keyClick(title, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(title, u"Version originale"_s);
        QTest::keyClick(title, Qt::Key_Return);
        QTRY_COMPARE(m_fixture->rows("ConvertTrackTable", Title).at(1), u"Version originale"_s);
        table->setFocus();
        key(Qt::Key_Right);
        QCOMPARE(table->currentIndex().column(), int(Default));
        QCOMPARE(checked(Default), Qt::Checked);
        key(Qt::Key_Space);
        QCOMPARE(checked(Default), Qt::Unchecked);
        key(Qt::Key_Right);
        QCOMPARE(checked(Forced), Qt::Unchecked);
        key(Qt::Key_Space);
        QCOMPARE(checked(Forced), Qt::Checked);
        m_fixture->controller().byHand(&KXSelectionController::setMp4Device, u"MKV"_s);
        QTRY_VERIFY(m_fixture->isEnabled("ConvertButton"));
        key(Qt::Key_Return, Qt::ControlModifier);
        QVERIFY(waitFor([this] { return m_fixture->rows("QueueTable", File).size() == 1; }));
        QVERIFY(m_fixture->waitForJobs());
        const QStringList tracks = tracksOf(m_fixture->path(u"a (2).mkv"_s));
        QCOMPARE(tracks.size(), 2);
        QVERIFY2(tracks.at(1).startsWith(u"audio:fre:Version originale:"_s), qPrintable(tracks.at(1)));
    }

    void theNameOfTheResultIsChangedByKeys()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::textMp4(), u"a.mp4"_s)}));
        m_fixture->pick("PresetSelectionsPopUp", u"First Track"_s);
        QTRY_COMPARE(m_fixture->find<QLabel>("ResultName")->text(), u"a.m4v"_s);
        QVERIFY(tabTo(u"ConvertButton"_s));
        key(Qt::Key_F2);
        QTRY_COMPARE(focused(), u"ResultNameField"_s);
        QTest::keyClicks(QApplication::focusWidget(), u"Our / evening"_s);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QTRY_COMPARE(m_fixture->find<QLabel>("ResultName")->text(), u"Our  evening.m4v"_s);
        m_fixture->pick("DevicePopUp", u"MKV"_s); // the name goes with the target
        QTRY_COMPARE(m_fixture->find<QLabel>("ResultName")->text(), u"Our  evening.mkv"_s);
        key(Qt::Key_Return, Qt::ControlModifier);
        QVERIFY(waitFor([this] { return m_fixture->rows("QueueTable", File).size() == 1; }));
        QVERIFY(m_fixture->waitForJobs());
        QVERIFY(QFile::exists(m_fixture->path(u"Our  evening.mkv"_s)));
    }

    void everyAreaIsReachedByF6()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::textMp4(), u"1.mp4"_s),
                                 m_fixture->film(support::textMp4(), u"2.mp4"_s)}));
        QSet<QString> areas;
        for (int step = 0; step < 12; ++step) {
            key(Qt::Key_F6);
            for (QWidget *at = QApplication::focusWidget(); at != nullptr; at = at->parentWidget())
                areas.insert(at->objectName());
        }
        for (const QString &area :
             {u"ToolRow"_s, u"OpenFilesPopover"_s, u"TracksPane"_s, u"Inspector"_s, u"ActionBar"_s})
            QVERIFY2(areas.contains(area), qPrintable(area));
    }

private:
    /// Of the English sound.
    Qt::CheckState checked(TrackColumn column)
    {
        const QAbstractItemModel *tracks = m_fixture->find<QTreeView>("ConvertTrackTable")->model();
        return static_cast<Qt::CheckState>(tracks->index(1, column).data(Qt::CheckStateRole).toInt());
    }

    static QString focused()
    {
        const QWidget *widget = QApplication::focusWidget();
        return widget == nullptr ? QString() : widget->objectName();
    }

    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QWidget *target = QApplication::focusWidget();
        QTest::keyClick(target == nullptr ? &m_fixture->window() : target, key, modifiers);
        QTest::qWait(0);
    }

    bool tabTo(const QString &control)
    {
        for (int steps = 0; steps < 60 && focused() != control; ++steps)
            key(Qt::Key_Tab);
        return focused() == control;
    }

    void typeIntoDialog(const QString &path)
    {
        QFileDialog *dialog = nullptr;
        QVERIFY(waitFor([&] {
            dialog = m_fixture->window().findChild<QFileDialog *>(u"FileChooser"_s);
            return dialog != nullptr && dialog->isVisible();
        }));
        dialog->activateWindow();
        QTRY_COMPARE(focused(), u"fileNameEdit"_s);
        QApplication::clipboard()->setText(path);
        key(Qt::Key_V, Qt::ControlModifier);
        QVERIFY(waitFor([&] { return dialog->selectedFiles() == QStringList{path}; }));
        QTest::keyClick(dialog, Qt::Key_O, Qt::AltModifier); // Open
        QVERIFY(waitFor(
            [this] { return m_fixture->window().findChild<QFileDialog *>(u"FileChooser"_s) == nullptr; }));
        m_fixture->window().activateWindow(); // as a window manager does
    }

    std::unique_ptr<WindowFixture> m_fixture;
};

TESSARAY_TEST(JourneysTest)
#include "JourneysTest.moc"
