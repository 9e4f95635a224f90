// "--auto": what it takes, and that nothing stands beside it that was not given.
#include "support/TestMain.h"
#include "unit/cli/ChoicesFilm.h"

#include <QTest>

class AutoChoicesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bothAims()
    {
        QCOMPARE(choicesOf(u"--auto quality --device PS3"_s).aim(), selection::Aim::Quality);
        QCOMPARE(choicesOf(u"--auto speed --device PS3"_s).aim(), selection::Aim::Speed);
        QVERIFY(!choicesOf(u"--device PS3"_s).aim().has_value());
    }

    void onlyWhatWasGivenHoldsAgainstIt()
    {
        const auto none = choicesOf(u"--auto speed --device PS3"_s).settingsFor(*film());
        QVERIFY(!none.picture && !none.subtitles && !none.width && none.audio.isEmpty());
        const auto given = choicesOf(u"--auto speed --device PS3 --video 2pass --subtitles burn --width 640 "
                                     "--audio 1=ac3:6:448"_s);
        QCOMPARE(given.error(), QString());
        const auto settings = given.settingsFor(*film());
        QCOMPARE(settings.picture, selection::Picture::TwoPasses);
        QCOMPARE(settings.subtitles, selection::SubtitleUse::Burn);
        QCOMPARE(settings.width, u"640"_s);
        QCOMPARE(settings.audio.size(), 1);
    }

    void wrongUsageIsNamed_data()
    {
        QTest::addColumn<QString>("options");
        QTest::addColumn<QString>("named");
        QTest::newRow("another aim") << u"--auto best --device PS3"_s << u"best"_s;
        QTest::newRow("no device") << u"--auto speed"_s << u"--device"_s;
        QTest::newRow("a target that is none") << u"--auto speed --device General"_s << u"General"_s;
        QTest::newRow("Matroska") << u"--auto speed --kind mkv"_s << u"--device"_s;
        QTest::newRow("no such device") << u"--auto speed --device Toaster"_s << u"Toaster"_s;
    }

    void wrongUsageIsNamed()
    {
        QFETCH(QString, options);
        QFETCH(QString, named);
        const QString error = choicesOf(options).error();
        QVERIFY2(error.contains(named), qPrintable(error));
    }
};

TESSARAY_TEST(AutoChoicesTest)
#include "AutoChoicesTest.moc"
