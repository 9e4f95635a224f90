#include "prefs/KXWatchModeController.h"

#include <QTest>

using namespace Qt::StringLiterals;

class KXWatchModeControllerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsMoviesByTheirExtensionsAndStartsOff()
    {
        const KXWatchModeController controller;
        QVERIFY(!controller.appIsInWatchMode());
        QVERIFY(controller.baseWatchFolderMovieList().isEmpty());
        QCOMPARE(controller.movieExtensionsList(),
                 QStringList({u"mkv"_s, u"ogg"_s, u"mts"_s, u"ts"_s, u"flv"_s, u"wmv"_s, u"mov"_s, u"mp4"_s,
                              u"m4v"_s, u"avi"_s}));
    }

    void isReadAndWrittenByName()
    {
        KXWatchModeController controller;
        const QList<QUrl> known{QUrl::fromLocalFile(u"/w/a.mkv"_s)};
        QVERIFY(controller.setProperty("appIsInWatchMode", true));
        QVERIFY(controller.setProperty("baseWatchFolderMovieList", QVariant::fromValue(known)));
        QVERIFY(controller.appIsInWatchMode());
        QCOMPARE(controller.baseWatchFolderMovieList(), known);
    }
};

QTEST_GUILESS_MAIN(KXWatchModeControllerTest)
#include "KXWatchModeControllerTest.moc"
