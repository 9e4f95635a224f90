#include "engines/ffmpeg/FfmpegDevices.h"
#include "support/TestMain.h"
#include "support/selection/HandMade.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace engines;

namespace {

void rowsForBitRate(const char *device, int cap)
{
    const auto row = [&](int asked, int given) {
        QTest::addRow("%s, %d kb/s", device, asked)
            << QString::fromLatin1(device) << QString::number(asked) << QString::number(given);
    };
    row(cap - 1, cap - 1);
    row(cap, cap);
    row(cap + 1, cap);
    row(25000, cap);
}

void rowsForWidth(const char *device, int cap)
{
    const auto row = [&](int asked, int given) {
        QTest::addRow("%s, %d pixels", device, asked)
            << QString::fromLatin1(device) << QString::number(asked) << QString::number(given);
    };
    row(cap - 1, cap - 1);
    row(cap, cap);
    row(cap + 1, cap);
    row(7680, cap);
}

} // namespace

class FfmpegDevicesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void levels_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("arguments");
        const auto row = [](const char *device, const QString &arguments) {
            QTest::newRow(device) << QString::fromLatin1(device) << arguments;
        };
        row("iPod (All non-Touch)", u"-level 30"_s);
        row("iPhone (3 and Earlier)", u"-level 30"_s);
        row("iPod Touch (3 and Earlier)", u"-level 30"_s);
        row("iPad (2 and Earlier)", u"-level 31"_s);
        row("Apple TV 2", u"-level 31"_s);
        row("iPhone 4", u"-level 31"_s);
        row("iPod Touch (4 and Later)", u"-level 31"_s);
        row("Apple TV (3 and Later)", u"-level 41 -level 40"_s); // both, in this order, on purpose
        row("iPad (3 and Later)", u"-level 41"_s);
        row("iPad Mini (All)", u"-level 41"_s);
        row("iPhone (4S and Later)", u"-level 41"_s);
        row("PS3", u"-level 41"_s);
        row("Xbox", u"-level 41"_s);
        row("General", {});
        row("none", {});
        row("", {});
        row("MKV", {});
        row("ps3", {}); // the exact text only
        row("iPhone 4 ", {});
        row("iPhone", {});
    }

    void levels()
    {
        QFETCH(QString, device);
        QFETCH(QString, arguments);
        QCOMPARE(tools::textsOf(levelArguments(device)), support::words(arguments));
    }

    void bitRatesAreCapped_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("asked");
        QTest::addColumn<QString>("given");
        for (const char *device :
             {"iPod (All non-Touch)", "iPhone (3 and Earlier)", "iPod Touch (3 and Earlier)"})
            rowsForBitRate(device, 1500);
        for (const char *device :
             {"Apple TV (3 and Later)", "iPad (3 and Later)", "iPad Mini (All)", "iPhone (4S and Later)"})
            rowsForBitRate(device, 20000);
        for (const char *device : {"PS3", "Xbox"})
            rowsForBitRate(device, 15000);
        for (const char *device : {"iPad (2 and Earlier)", "Apple TV 2", "iPhone 4",
                                   "iPod Touch (4 and Later)", "General", "none", "MKV", "AVI"})
            QTest::addRow("%s has no cap", device) << QString::fromLatin1(device) << u"99999"_s << u"99999"_s;
    }

    void bitRatesAreCapped()
    {
        QFETCH(QString, device);
        QFETCH(QString, asked);
        QFETCH(QString, given);
        const auto selection = support::handMadeSelection(device, {support::videoTrack()});
        selection->setUserVideoBitRate(asked);
        applyDeviceCaps(*selection, outputKindNamed(appNameForDevice(device)));
        QCOMPARE(selection->userVideoBitRate(), given);
    }

    void widthsAreCapped_data()
    {
        QTest::addColumn<QString>("device");
        QTest::addColumn<QString>("asked");
        QTest::addColumn<QString>("given");
        for (const char *device :
             {"iPod (All non-Touch)", "iPhone (3 and Earlier)", "iPod Touch (3 and Earlier)"})
            rowsForWidth(device, 720);
        for (const char *device :
             {"iPad (2 and Earlier)", "Apple TV 2", "iPhone 4", "iPod Touch (4 and Later)"})
            rowsForWidth(device, 1280);
        for (const char *device :
             {"Apple TV (3 and Later)", "iPad (3 and Later)", "iPad Mini (All)", "iPhone (4S and Later)"})
            rowsForWidth(device, 1920);
        for (const char *device : {"PS3", "Xbox", "General", "none", "MKV", "AVI"})
            QTest::addRow("%s has no cap", device) << QString::fromLatin1(device) << u"7680"_s << u"7680"_s;
    }

    void widthsAreCapped()
    {
        QFETCH(QString, device);
        QFETCH(QString, asked);
        QFETCH(QString, given);
        const auto selection = support::handMadeSelection(device, {support::videoTrack()});
        selection->setUserWidth(asked);
        applyDeviceCaps(*selection, outputKindNamed(appNameForDevice(device)));
        QCOMPARE(selection->userWidth(), given);
    }

    /// Of an MP4 whose picture is re-encoded; and only the words that were chosen change.
    void capsHoldOnlyForAPictureThatIsEncodedIntoMp4()
    {
        const auto changed = [](const QString &codec, OutputKind kind) {
            const auto selection = support::handMadeSelection(u"PS3"_s, {support::videoTrack(codec)});
            selection->setUserVideoBitRate(u"25000"_s);
            applyDeviceCaps(*selection, kind);
            return selection->userVideoBitRate();
        };
        QCOMPARE(changed(u"h264"_s, OutputKind::Mp4), u"15000"_s);
        QCOMPARE(changed(u"passthru"_s, OutputKind::Mp4), u"25000"_s);
        QCOMPARE(changed(u"h264"_s, OutputKind::Mkv), u"25000"_s);
        QCOMPARE(changed(u"h264"_s, OutputKind::Avi), u"25000"_s);
    }

    void theTargetDecidesTheKindOfFile_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("appName");
        QTest::addColumn<int>("kind");
        const auto row = [](const char *target, const QString &appName, OutputKind kind) {
            QTest::newRow(target) << QString::fromLatin1(target) << appName << static_cast<int>(kind);
        };
        row("MKV", u"Tessaray"_s, OutputKind::Mkv);
        row("AVI", u"Marbleon"_s, OutputKind::Avi);
        row("General", u"Pollenta"_s, OutputKind::Mp4);
        row("PS3", u"Pollenta"_s, OutputKind::Mp4);
        row("none", u"Pollenta"_s, OutputKind::Mp4);
        row("mkv", u"Pollenta"_s, OutputKind::Mp4);
        row("Toaster", u"Pollenta"_s, OutputKind::Mp4);
        row("", u"Pollenta"_s, OutputKind::Mp4);
    }

    void theTargetDecidesTheKindOfFile()
    {
        QFETCH(QString, target);
        QFETCH(QString, appName);
        QFETCH(int, kind);
        QCOMPARE(appNameForDevice(target), appName);
        QCOMPARE(static_cast<int>(outputKindNamed(appName)), kind);
    }

    void anyOtherNameIsNoKind()
    {
        QVERIFY(outputKindNamed(u"pollenta"_s) == OutputKind::Unknown);
        QVERIFY(outputKindNamed({}) == OutputKind::Unknown);
    }
};

TESSARAY_TEST(FfmpegDevicesTest)
#include "FfmpegDevicesTest.moc"
