// All open films beside each other: what becomes of each, the odd one first.
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "window/QueueDriver.h"

#include <QLabel>

using namespace Qt::StringLiterals;
using namespace driver;
using support::waitFor;

class SeasonTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<WindowFixture>();
        m_fixture->start();
    }
    void cleanup() { m_fixture.reset(); }

    void theFilmWithoutGermanSoundStandsFirst()
    {
        openSeason();
        m_fixture->pick("PresetSelectionsPopUp", u"All Tracks"_s);
        QTest::keyClick(&m_fixture->window(), Qt::Key_F8);
        QTRY_VERIFY(table()->isVisible());
        QCOMPARE(titles(), QStringList({u"Film"_s, u"Length"_s, u"Picture"_s, u"English sound"_s,
                                        u"German sound"_s, u"Subtitles"_s, u"For"_s, u"Size"_s}));
        QCOMPARE(m_fixture->rows("SeasonTable", 0),
                 QStringList({u"4.mkv"_s, u"1.mkv"_s, u"2.mkv"_s, u"3.mkv"_s, u"5.mkv"_s, u"6.mkv"_s}));
        QCOMPARE(cells(0),
                 QStringList({u"H.264 copied"_s, u"AC3 5.1 copied"_s, u"not in the film"_s, u"English"_s}));
        for (int row = 1; row < 6; ++row)
            QCOMPARE(cells(row), QStringList({u"H.264 copied"_s, u"AC3 5.1 copied"_s, u"AAC Stereo copied"_s,
                                              u"English"_s}));
        QCOMPARE(table()->model()->index(0, 4).data(Qt::AccessibleTextRole).toString(),
                 u"not in the film, unlike most"_s);
    }

    void itSaysWhatTheChoicesMakeOfEachFilm()
    {
        openSeason();
        m_fixture->pick("PresetSelectionsPopUp", u"First Track"_s);
        choose(*m_fixture, "TheVideoMatrix1");
        QTest::keyClick(&m_fixture->window(), Qt::Key_F8);
        QTRY_VERIFY(table()->isVisible());
        for (int row = 0; row < 6; ++row)
            QCOMPARE(cells(row).constFirst(), u"H.264, 1 pass"_s); // not of the current film alone
        QCOMPARE(cells(1).at(2), u"AAC Stereo, left out"_s);
    }

    void aClickShowsThatFilmAndEscapeLeavesAllAsItWas()
    {
        openSeason();
        m_fixture->click("SeasonButton");
        QTRY_VERIFY(table()->isVisible());
        QTest::keyClick(table(), Qt::Key_Escape);
        QTRY_VERIFY(!table()->isVisible());
        QCOMPARE(m_fixture->delegate().openQueue().selectedRow(), 0);
        m_fixture->click("SeasonButton");
        QTRY_VERIFY(table()->isVisible());
        m_fixture->clickCell(table(), 0, 2);
        QTRY_VERIFY(!table()->isVisible());
        QTRY_VERIFY(m_fixture->find<QLabel>("ConvertFileField")->text().endsWith(u"/4.mkv"_s));
    }

    void oneFilmIsNoSeason()
    {
        QVERIFY(m_fixture->open({m_fixture->film(support::fullMkv())}));
        QTest::keyClick(&m_fixture->window(), Qt::Key_F8);
        QTest::qWait(50);
        QVERIFY(!table()->isVisible());
    }

private:
    QTreeView *table() { return m_fixture->find<QTreeView>("SeasonTable"); }

    QStringList titles()
    {
        QStringList texts;
        for (int column = 0; column < table()->model()->columnCount(); ++column)
            texts.append(table()->model()->headerData(column, Qt::Horizontal).toString());
        return texts;
    }

    /// What becomes of picture, sound by language, and subtitles.
    QStringList cells(int row)
    {
        QStringList texts;
        for (int column = 2; column < table()->model()->columnCount() - 2; ++column)
            texts.append(table()->model()->index(row, column).data().toString());
        return texts;
    }

    /// Six films with English and German sound, but for the fourth.
    void openSeason()
    {
        const QString whole = support::clip(u"season.mkv"_s, [](const QString &path) {
            support::runProgram(u"mkvmerge"_s,
                                {u"-o"_s, path, u"-a"_s, u"1,2"_s, u"-s"_s, u"3"_s, support::fullMkv()});
        });
        const QString odd = support::clip(u"season-odd.mkv"_s, [](const QString &path) {
            support::runProgram(u"mkvmerge"_s,
                                {u"-o"_s, path, u"-a"_s, u"1"_s, u"-s"_s, u"3"_s, support::fullMkv()});
        });
        QStringList films;
        for (int number = 1; number <= 6; ++number)
            films.append(m_fixture->film(number == 4 ? odd : whole, u"%1.mkv"_s.arg(number)));
        QVERIFY(m_fixture->open(films));
    }

    std::unique_ptr<WindowFixture> m_fixture;
};

TESSARAY_TEST(SeasonTest)
#include "SeasonTest.moc"
