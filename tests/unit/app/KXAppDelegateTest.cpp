// The commands of menus and buttons, and the ways on which files reach the intake.
#include "app/KXAppDelegate.h"

#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/app/AppFixture.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::AppFixture;
using What = platform::ChooserRequest::What;

class KXAppDelegateTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_fixture = std::make_unique<AppFixture>(); }
    void cleanup() { m_fixture.reset(); }

    /// The title is compared in lower case.
    void thePanelByTheTitleOfItsCommand_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("mode");
        QTest::addColumn<bool>("several");
        QTest::newRow("Open...") << u"Open..."_s << u"open"_s << true;
        QTest::newRow("OPEN") << u"OPEN"_s << u"open"_s << true;
        QTest::newRow("Add...") << u"Add..."_s << u"add"_s << false;
        QTest::newRow("ADD") << u"ADD"_s << u"add"_s << false;
    }

    void thePanelByTheTitleOfItsCommand()
    {
        QFETCH(QString, title);
        QFETCH(QString, mode);
        QFETCH(bool, several);
        delegate().openFilePanel(title);
        QCOMPARE(m_fixture->intake().openingFileMode(), mode);
        QCOMPARE(m_fixture->chooser().asked().size(), 1);
        QCOMPARE(m_fixture->chooser().asked().constFirst().title, u"Select video file to open:"_s);
        QCOMPARE(m_fixture->chooser().asked().constFirst().what, several ? What::Files : What::OneFile);
    }

    void chosenFilesComeInAfterAMoment()
    {
        QSignalSpy window(&delegate(), &KXAppDelegate::windowWanted);
        delegate().openFilePanel(u"Open..."_s);
        m_fixture->chooser().answer({film(u"a.mp4"_s), film(u"b.mp4"_s)});
        QCOMPARE(KXAppDelegate::hubMilliseconds, 100);
        QVERIFY(m_fixture->intake().openedURLsArray().isEmpty()); // the panel goes first
        QCOMPARE(window.size(), 1);
        QTRY_COMPARE(m_fixture->openNames(), (QStringList{u"a.mp4"_s, u"b.mp4"_s}));
    }

    void aPanelKeepsItsModeWhenOtherFilesComeInMeanwhile()
    {
        m_fixture->drop({film(u"a.mp4"_s)});
        delegate().openFilePanel(u"Add..."_s);
        m_fixture->drop({film(u"b.mp4"_s)});
        m_fixture->chooser().answer({film(u"c.mp4"_s)});
        QTRY_COMPARE(m_fixture->alerts().messages(), QStringList{u"Error Opening: c.mp4"_s});
        QCOMPARE(m_fixture->openNames(), QStringList{u"b.mp4"_s});
    }

    void droppedFilesComeInAfterAMoment()
    {
        delegate().filesDropped(support::urlsOf({film(u"a.mp4"_s)}));
        QVERIFY(m_fixture->openNames().isEmpty());
        QTRY_COMPARE(m_fixture->openNames(), QStringList{u"a.mp4"_s});
        QCOMPARE(m_fixture->intake().openingFileMode(), u"drag"_s);
    }

    /// The open files are selected one after the other then: a probe in between would fill one of them.
    void filesThatComeWhileOthersAreStartedWaitForThat()
    {
        m_fixture->presets().setSelectionMethodIndex(2);
        m_fixture->fakeTool(u"ffmpeg/ffmpeg"_s, {u"hang"_s});
        m_fixture->openByHand({support::convertible(m_fixture->scratch().write(u"a.mkv"_s, "film")),
                               support::convertible(m_fixture->scratch().write(u"b.mkv"_s, "film"))});
        m_fixture->starter().startProcess(u"Convert"_s);
        QVERIFY(m_fixture->starter().isFinishing());
        m_fixture->prepend(u"ffmpeg/ffprobe"_s, u"sleep 0.6"_s);
        m_fixture->drop({film(u"c.mp4"_s)});
        QVERIFY(m_fixture->intake().isBusy());
        QCOMPARE(m_fixture->openNames(), QStringList{u"b.mkv"_s});
        delegate().filesRequested({m_fixture->film(support::srtFile(), u"s.srt"_s)});
        QTRY_VERIFY(!m_fixture->intake().isBusy());
        QCOMPARE(m_fixture->jobs(), (QStringList{u"MKV Conversion a.mkv"_s, u"MKV Conversion b.mkv"_s}));
        QCOMPARE(m_fixture->openNames(), QStringList{u"c.mp4"_s});
        QCOMPARE(m_fixture->file().theFileName(), u"c.mp4"_s);
        QCOMPARE(m_fixture->file().trackList().size(), 4); // three of its own and the subtitle
    }

    void requestedFilmsAreOpened()
    {
        m_fixture->intake().setOpeningFileMode(u"add"_s);
        delegate().filesRequested({film(u"a.mp4"_s), film(u"b.mp4"_s)});
        QTRY_COMPARE(m_fixture->openNames(), (QStringList{u"a.mp4"_s, u"b.mp4"_s}));
        QCOMPARE(m_fixture->intake().openingFileMode(), u"open"_s);
    }

    void aRequestedSubtitleIsHandedOver_data()
    {
        QTest::addColumn<QString>("name");
        for (const char *name : {"s.srt", "S.SRT", "s.ass", "s.ssa", "s.ttxt", "s.idx", "s.sub", "s.sup"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }

    void aRequestedSubtitleIsHandedOver()
    {
        QFETCH(QString, name);
        QSignalSpy window(&delegate(), &KXAppDelegate::windowWanted);
        delegate().filesRequested({m_fixture->text(name)});
        QCOMPARE(m_fixture->alerts().messages(), QStringList{u"Transfer From Lintwick Failed"_s});
        QCOMPARE(window.size(), 1);
    }

    void helpByTheTitleOfTheItem_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("document");
        QTest::newRow("guide") << u"Online Guide"_s << u"guide"_s;
        QTest::newRow("troubleshooting") << u"Online Troubleshooting"_s << u"troubleshooting"_s;
        QTest::newRow("another title") << u"Offline"_s << QString();
    }

    void helpByTheTitleOfTheItem()
    {
        QFETCH(QString, title);
        QFETCH(QString, document);
        QSignalSpy wanted(&delegate(), &KXAppDelegate::documentWanted);
        delegate().helpMenuItemSelected(title);
        QCOMPARE(wanted.size(), document.isNull() ? 0 : 1);
        if (!document.isNull())
            QCOMPARE(wanted.constFirst().constFirst().toString(), document);
    }

    void theToolTipsAreSwitchedAndStored()
    {
        delegate().helpMenuItemSelected(u"Hide Tool Tips"_s);
        QVERIFY(!m_fixture->program().preferences().panelFlag(u"showToolTipsFlag"_s));
        QVERIFY(m_fixture->scratch().read(u"settings/defaults.json"_s).contains("showToolTipsFlag"));
        delegate().helpMenuItemSelected(u"Show Tool Tips"_s);
        QVERIFY(m_fixture->program().preferences().panelFlag(u"showToolTipsFlag"_s));
    }

    void playingCommitsTheFieldAndNeedsThePlayer()
    {
        QVERIFY(!delegate().playingRefusal().isEmpty());
        m_fixture->fakeTool(u"mplayer/mplayer"_s, {u"record "_s + m_fixture->path(u"runs"_s)});
        QVERIFY(delegate().playingRefusal().isNull());
        QSignalSpy editing(&m_fixture->starter(), &app::JobStarter::editingEndWanted);
        QSignalSpy rows(&m_fixture->controller(), &KXSelectionController::trackRowsDeselected);
        m_fixture->drop({film(u"a.mp4"_s)});
        delegate().playButton();
        QCOMPARE(editing.size(), 1);
        QCOMPARE(rows.size(), 1);
        QTRY_VERIFY(m_fixture->scratch().read(u"runs"_s).contains("a.mp4"));
    }

private:
    KXAppDelegate &delegate() { return m_fixture->delegate(); }
    QString film(const QString &name) const { return m_fixture->film(support::textMp4(), name); }

    std::unique_ptr<AppFixture> m_fixture;
};

TESSARAY_TEST(KXAppDelegateTest)
#include "KXAppDelegateTest.moc"
