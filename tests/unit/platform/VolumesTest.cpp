#include "platform/Volumes.h"
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QTest>

#include <sys/statvfs.h>

using namespace Qt::StringLiterals;

class VolumesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersTheFreeBytesOfTheFoldersVolume()
    {
        const support::Scratch scratch;
        struct statvfs volume = {};
        QCOMPARE(::statvfs(qPrintable(scratch.path()), &volume), 0);
        const auto available = static_cast<qint64>(volume.f_bavail) * static_cast<qint64>(volume.f_frsize);
        const auto answer = platform::Volumes().freeSize(scratch.url({}));
        QVERIFY(answer);
        constexpr qint64 writtenMeanwhile = 512 * 1024 * 1024;
        QVERIFY2(qAbs(*answer - available) < writtenMeanwhile,
                 qPrintable(u"%1 beside %2"_s.arg(*answer).arg(available)));
    }

    void followsAMountBelowTheRoot()
    {
        // /proc is a volume of its own and never has a free byte, unlike the one that "/" is on.
        const auto answer = platform::Volumes().freeSize(QUrl::fromLocalFile(u"/proc/self"_s));
        QVERIFY(!answer || *answer == 0);
    }

    void hasNoValueForWhatIsNoFolder()
    {
        const support::Scratch scratch;
        scratch.write(u"file"_s, "x");
        const platform::Volumes volumes;
        QVERIFY(!volumes.freeSize(scratch.url(u"missing"_s)));
        QVERIFY(!volumes.freeSize(scratch.url(u"file"_s)));
        QVERIFY(!volumes.freeSize(QUrl()));
    }

    void takesNamesWithBlanksAndPercents()
    {
        const support::Scratch scratch;
        scratch.write(u"a b%20ü#?/file"_s, "x");
        QVERIFY(platform::Volumes().freeSize(scratch.url(u"a b%20ü#?"_s)));
    }
};

TESSARAY_TEST(VolumesTest)
#include "VolumesTest.moc"
