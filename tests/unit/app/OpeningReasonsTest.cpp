// Why a file was not opened, and the name that a person gives to a result.
#include "app/OpeningReasons.h"
#include "app/ResultName.h"

#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/Unprivileged.h"

#include <QDir>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

class OpeningReasonsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theReasonIsThatOfTheFile()
    {
        const support::Scratch scratch;
        const auto reasonOf = [&](const QString &name, const QString &codec = {}) {
            return app::reasonNotToOpen(QUrl::fromLocalFile(scratch.path(name)), codec);
        };
        QCOMPARE(reasonOf(u"gone.mkv"_s), u"it is not there"_s);
        QDir().mkpath(scratch.path(u"folder"_s));
        QCOMPARE(reasonOf(u"folder"_s), u"it is a folder"_s);
        QCOMPARE(::mkfifo(qPrintable(scratch.path(u"pipe.mkv"_s)), 0600), 0);
        QCOMPARE(reasonOf(u"pipe.mkv"_s), u"it is no ordinary file"_s);
        scratch.write(u"notes.txt"_s, "words");
        QCOMPARE(reasonOf(u"notes.txt"_s), u"it is not a film"_s);
        QCOMPARE(reasonOf(u"notes.txt"_s, u"hevc"_s), u"its codec hevc is one of the newer ones"_s);
        scratch.write(u"list.m3u8"_s, "#EXTM3U\n#EXTINF:1,\na.ts\n");
        QCOMPARE(reasonOf(u"list.m3u8"_s), u"it only lists other files"_s);
        QFile(scratch.write(u"secret.mkv"_s, "words")).setPermissions({});
        ::chmod(qPrintable(scratch.path()), 0755); // the folder itself is open
        const support::Unprivileged somebody;
        QCOMPARE(reasonOf(u"secret.mkv"_s), u"no permission to read it"_s);
    }

    void namesOfResults_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("name"); // null: its own
        QTest::newRow("plain") << u"General"_s << u"Ours"_s << u"Ours.m4v"_s;
        QTest::newRow("with its extension") << u"General"_s << u"Ours.m4v"_s << u"Ours.m4v"_s;
        QTest::newRow("with another one") << u"MKV"_s << u"Ours.m4v"_s << u"Ours.mkv"_s;
        QTest::newRow("with a dot") << u"MKV"_s << u"Part 1. The sea"_s << u"Part 1. The sea.mkv"_s;
        QTest::newRow("no path") << u"AVI"_s << u"../a/b"_s << u"..ab.avi"_s;
        QTest::newRow("blanks around") << u"MKV"_s << u"  Ours "_s << u"Ours.mkv"_s;
        QTest::newRow("nothing") << u"MKV"_s << u""_s << QString();
        QTest::newRow("dots") << u"MKV"_s << u".."_s << QString();
        QTest::newRow("what it would be") << u"MKV"_s << u"film"_s << QString();
    }

    void namesOfResults()
    {
        QFETCH(QString, target);
        QFETCH(QString, typed);
        QFETCH(QString, name);
        KXSelection selection;
        selection.initialize();
        selection.setVideoTrackFileName(u"film.mp4"_s);
        selection.setTheDevice(target);
        app::chooseResultName(selection, typed);
        QCOMPARE(app::chosenResultName(selection), name);
    }

    void aNameGoesWithTheTarget()
    {
        KXSelection selection;
        selection.initialize();
        selection.setTheDevice(u"MKV"_s);
        app::chooseResultName(selection, u"Ours"_s);
        selection.setTheDevice(u"AVI"_s);
        QCOMPARE(app::chosenResultName(selection), u"Ours.avi"_s);
    }
};

TESSARAY_TEST(OpeningReasonsTest)
#include "OpeningReasonsTest.moc"
