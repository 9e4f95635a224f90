#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

struct Ran
{
    QString output;
    QString error;
    int status = -1;
};

/// Draws a subtitle of the given font on black; the brightest value of each frame is printed.
Ran draw(const support::Scratch &scratch, const QString &fonts, const QString &subtitle)
{
    QProcess ffmpeg;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"HOME"_s, scratch.path(u"home"_s));
    environment.remove(u"XDG_CACHE_HOME"_s);
    environment.insert(u"FONTCONFIG_PATH"_s, fonts);
    environment.insert(u"FONTCONFIG_FILE"_s, fonts + u"/fonts.conf"_s);
    ffmpeg.setProcessEnvironment(environment);
    ffmpeg.setWorkingDirectory(scratch.path(u"work"_s)); // the fonts are not below it
    ffmpeg.start(
        u"ffmpeg"_s,
        {u"-v"_s, u"verbose"_s, u"-nostdin"_s, u"-f"_s, u"lavfi"_s, u"-i"_s,
         u"color=black:s=320x240:r=5:d=2"_s, u"-vf"_s,
         u"subtitles=%1,signalstats,metadata=print:key=lavfi.signalstats.YMAX:file=-"_s.arg(subtitle),
         u"-frames:v"_s, u"1"_s, u"-f"_s, u"null"_s, u"-"_s});
    ffmpeg.waitForFinished(60000);
    return {QString::fromUtf8(ffmpeg.readAllStandardOutput()),
            QString::fromUtf8(ffmpeg.readAllStandardError()),
            ffmpeg.exitStatus() == QProcess::NormalExit ? ffmpeg.exitCode() : -1};
}

int brightest(const Ran &ran)
{
    return ran.output.section(u"YMAX="_s, 1, 1).section(u'\n', 0, 0).toInt();
}

/// The fonts folder as the build makes it, somewhere of the test's own.
QString copyFonts(const support::Scratch &scratch)
{
    const QString resources = scratch.path(u"Res ources"_s);
    QProcess cmake;
    cmake.start(u"cmake"_s,
                {u"-DRESOURCES="_s + resources, u"-DFONTS=" TESSARAY_SOURCE_DIR "/packaging/fonts"_s, u"-P"_s,
                 QStringLiteral(TESSARAY_SOURCE_DIR "/packaging/fonts/CopyFonts.cmake")});
    cmake.waitForFinished();
    return cmake.exitCode() == 0 ? resources + u"/fonts"_s : QString();
}

/// Takes what the machine has out of the configuration.
bool leaveOnlyOurFolder(const QString &fonts)
{
    QFile file(fonts + u"/fonts.conf"_s);
    if (!file.open(QIODevice::ReadWrite))
        return false;
    QString configuration = QString::fromUtf8(file.readAll());
    configuration.remove(
        QRegularExpression(u"<dir>[^<]*</dir>|<dir prefix=\"xdg\">[^<]*</dir>|<include.*</include>"_s));
    return file.resize(0) && file.seek(0) && file.write(configuration.toUtf8()) > 0;
}

constexpr int blackLevel = 16;
constexpr int surelyDrawn = 160;

} // namespace

class FontsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textIsDrawnWithOurFontAndTheCacheIsFilled()
    {
        const support::Scratch scratch;
        const QString fonts = copyFonts(scratch);
        QVERIFY(QFileInfo::exists(fonts + u"/fonts.conf"_s));
        QVERIFY(QFileInfo::exists(fonts + u"/DejaVuSans.ttf"_s));
        QVERIFY(QDir().mkpath(scratch.path(u"home"_s)));
        scratch.write(u"work/s.srt"_s, "1\n00:00:00,000 --> 00:00:02,000\nHello\n");
        const Ran ran = draw(scratch, fonts, u"s.srt"_s);
        QVERIFY2(ran.status == 0, qPrintable(ran.error));
        QVERIFY(brightest(ran) > surelyDrawn);
        QVERIFY2(ran.error.contains(u"fontselect: (Arial, 400, 0) -> "_s), qPrintable(ran.error));
        const QDir cache(scratch.path(u"home/.fontconfig"_s));
        QVERIFY(cache.exists());
        QVERIFY(!cache.entryList({u"*.cache-*"_s}, QDir::Files).isEmpty());
    }

    void ourFontIsFoundBesideTheConfiguration()
    {
        const support::Scratch scratch;
        const QString fonts = copyFonts(scratch);
        QVERIFY(leaveOnlyOurFolder(fonts));
        QVERIFY(QDir().mkpath(scratch.path(u"home"_s)));
        scratch.write(u"work/s.srt"_s, "1\n00:00:00,000 --> 00:00:02,000\nHello\n");
        const Ran ran = draw(scratch, fonts, u"s.srt"_s);
        QVERIFY2(ran.error.contains(u"(Arial, 400, 0) -> "_s + fonts + u"/DejaVuSans.ttf"_s),
                 qPrintable(ran.error));
        QVERIFY(brightest(ran) > surelyDrawn);
    }

    void arialIsOurFontAlsoBesideOthers()
    {
        const support::Scratch scratch;
        const QString fonts = copyFonts(scratch);
        QVERIFY(leaveOnlyOurFolder(fonts));
        QDirIterator found(u"/usr/share/fonts"_s, {u"DejaVuSansMono.ttf"_s, u"DejaVuSerif.ttf"_s},
                           QDir::Files, QDirIterator::Subdirectories);
        QVERIFY(found.hasNext());
        while (found.hasNext()) {
            const QString font = found.next();
            QVERIFY(QFile::copy(font, fonts + u"/0-"_s + found.fileName())); // first in order
        }
        QVERIFY(QDir().mkpath(scratch.path(u"home"_s)));
        scratch.write(u"work/s.srt"_s, "1\n00:00:00,000 --> 00:00:02,000\nHello\n");
        const Ran ran = draw(scratch, fonts, u"s.srt"_s);
        QVERIFY2(ran.error.contains(u"(Arial, 400, 0) -> "_s + fonts + u"/DejaVuSans.ttf"_s),
                 qPrintable(ran.error));
    }

    void withoutTextThePictureStaysBlack()
    {
        const support::Scratch scratch;
        const QString fonts = copyFonts(scratch);
        QVERIFY(QDir().mkpath(scratch.path(u"home"_s)));
        scratch.write(u"work/s.srt"_s, "1\n00:00:01,500 --> 00:00:02,000\nLater\n");
        const Ran ran = draw(scratch, fonts, u"s.srt"_s);
        QVERIFY2(ran.status == 0, qPrintable(ran.error));
        QCOMPARE(brightest(ran), blackLevel);
    }
};

TESSARAY_TEST(FontsTest)
#include "FontsTest.moc"
