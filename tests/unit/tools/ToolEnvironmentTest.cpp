#include "tools/ToolEnvironment.h"
#include "support/FakePlaces.h"
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QTest>

#include <locale.h>

using namespace Qt::StringLiterals;
using tools::ToolFamily;

using Pairs = QList<std::pair<QString, QString>>;

namespace {

QUrl tool(const QString &name)
{
    return QUrl::fromLocalFile(u"/T/"_s + name);
}

} // namespace

class ToolEnvironmentTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void familiesAreToldByTheLastComponent()
    {
        QCOMPARE(tools::toolFamily(tool(u"mkvmerge"_s)), ToolFamily::Mkv);
        QCOMPARE(tools::toolFamily(tool(u"MKVExtract"_s)), ToolFamily::Mkv);
        QCOMPARE(tools::toolFamily(tool(u"ffmpeg-mkv"_s)), ToolFamily::Mkv);
        QCOMPARE(tools::toolFamily(tool(u"FFmpeg"_s)), ToolFamily::Ffmpeg);
        QCOMPARE(tools::toolFamily(tool(u"AtomicParsley"_s)), ToolFamily::AtomicParsley);
        QCOMPARE(tools::toolFamily(tool(u"ffprobe"_s)), ToolFamily::Other);
        QCOMPARE(tools::toolFamily(tool(u"ffmpeg/ffprobe"_s)), ToolFamily::Other);
        QCOMPARE(tools::toolFamily(QUrl()), ToolFamily::Other);
    }

    void mkvToolsFindTheirLibrariesInTheToolsFolder()
    {
        // Shell lines point at the resource folder instead; both are meant.
        const QString library = m_scratch.path(u"tools/mkvtoolnix/lib"_s);
        QCOMPARE(tools::addedEnvironment(tool(u"mkvmerge"_s), {}, m_places),
                 Pairs({{u"LANG"_s, u"en_US.UTF-8"_s},
                        {u"DYLD_LIBRARY_PATH"_s, library},
                        {u"LD_LIBRARY_PATH"_s, library}}));
    }

    void ffmpegGetsFontsOnlyWhenItBurns()
    {
        const QString fonts = m_scratch.path(u"Resources/fonts"_s);
        QCOMPARE(tools::addedEnvironment(tool(u"ffmpeg"_s), {u"-vf"_s, u"scale=2:2,subtitles=a"_s}, m_places),
                 Pairs({{u"FONTCONFIG_PATH"_s, fonts}, {u"FONTCONFIG_FILE"_s, fonts + u"/fonts.conf"_s}}));
        QCOMPARE(tools::addedEnvironment(tool(u"ffmpeg"_s), {u"-vf"_s, u"scale=2:2"_s}, m_places), Pairs());
    }

    void atomicparsleyGetsItsPadding()
    {
        QCOMPARE(tools::addedEnvironment(tool(u"atomicparsley"_s), {}, m_places),
                 Pairs({{u"AP_PADDING"_s, u"DEFAULT_PAD=5128:MIN_PAD=0:MAX_PAD=5128"_s}}));
    }

    void othersGetNothing()
    {
        QCOMPARE(tools::addedEnvironment(tool(u"ffprobe"_s), {u"subtitles="_s}, m_places), Pairs());
        QCOMPARE(tools::processEnvironment(tool(u"ffprobe"_s), {}, m_places),
                 QProcessEnvironment::systemEnvironment());
        QCOMPARE(tools::shellEnvironment(tool(u"ffprobe"_s)), QProcessEnvironment::systemEnvironment());
    }

    void processesGetOursAndTheAddition()
    {
        qputenv("TESSARAY_TEST_WORD", "kept");
        const auto environment = tools::processEnvironment(tool(u"ffmpeg"_s), {u"subtitles=a"_s}, m_places);
        qunsetenv("TESSARAY_TEST_WORD");
        QCOMPARE(environment.value(u"TESSARAY_TEST_WORD"_s), u"kept"_s);
        QCOMPARE(environment.value(u"FONTCONFIG_PATH"_s), m_scratch.path(u"Resources/fonts"_s));
        QVERIFY(!environment.contains(u"LD_LIBRARY_PATH"_s));
    }

    void mkvToolsGetALocaleThatExistsHere()
    {
        qputenv("LC_ALL", "de_DE.UTF-8");
        const auto shell = tools::shellEnvironment(tool(u"mkvmerge"_s));
        const auto process = tools::processEnvironment(tool(u"mkvmerge"_s), {}, m_places);
        qunsetenv("LC_ALL");
        const QString name = shell.value(u"LC_ALL"_s);
        QVERIFY(name == u"en_US.UTF-8"_s || name == u"C.UTF-8"_s);
        QCOMPARE(process.value(u"LC_ALL"_s), name);
        const locale_t locale = newlocale(LC_ALL_MASK, qPrintable(name), nullptr);
        QVERIFY(locale != nullptr);
        freelocale(locale);
    }

private:
    support::Scratch m_scratch;
    support::FakePlaces m_places{m_scratch.path()};
};

TESSARAY_TEST(ToolEnvironmentTest)
#include "ToolEnvironmentTest.moc"
