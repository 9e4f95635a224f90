#include "tools/ShellLine.h"
#include "support/TestMain.h"
#include "tools/ToolPlaces.h"

#include <QTest>

using namespace Qt::StringLiterals;
using tools::OptionItem;
using tools::OptionList;
using tools::Quoting;
using tools::ShellKind;

namespace {

class FixedPlaces final : public tools::ToolPlaces
{
public:
    explicit FixedPlaces(QString resources = u"/App/Resources"_s)
        : m_resources(std::move(resources))
    {
    }
    QUrl toolsLocation() const override { return QUrl::fromLocalFile(u"/App/Resources/tools"_s); }
    QUrl resourcesLocation() const override { return QUrl::fromLocalFile(m_resources); }
    QString workingFolder() const override { return u"/"_s; }

private:
    QString m_resources;
};

QUrl file(const QString &path)
{
    return QUrl::fromLocalFile(path);
}

} // namespace

class ShellLineTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachToolFamilyHasItsHead_data()
    {
        QTest::addColumn<QString>("tool");
        QTest::addColumn<OptionItem>("option");
        QTest::addColumn<QString>("line");
        // No blank between the two library exports nor before the tool: meant.
        const QString mkv =
            u"export LANG=en_US.UTF-8; export DYLD_LIBRARY_PATH='/App/Resources/mkvtoolnix/lib';"
            u"export LD_LIBRARY_PATH='/App/Resources/mkvtoolnix/lib';"_s;
        QTest::newRow("mkvmerge") << u"/T/mkvtoolnix/mkvmerge"_s << OptionItem(u"-V")
                                  << QString(mkv + u"\"/T/mkvtoolnix/mkvmerge\" -V"_s);
        QTest::newRow("name in capitals")
            << u"/T/MKVinfo"_s << OptionItem(u"-V") << QString(mkv + u"\"/T/MKVinfo\" -V"_s);
        QTest::newRow("mkv within the name")
            << u"/T/my-mkv-ffmpeg"_s << OptionItem(u"-V") << QString(mkv + u"\"/T/my-mkv-ffmpeg\" -V"_s);
        QTest::newRow("mkv in the folder only")
            << u"/mkv/ffprobe"_s << OptionItem(u"-V") << u"\"/mkv/ffprobe\" -V"_s;
        QTest::newRow("ffprobe") << u"/T/ffmpeg/ffprobe"_s << OptionItem(u"-vf subtitles=a")
                                 << u"\"/T/ffmpeg/ffprobe\" -vf subtitles=a"_s;
        QTest::newRow("ffmpeg") << u"/T/ffmpeg/ffmpeg"_s << OptionItem(u"-y") << u"\"/T/ffmpeg/ffmpeg\" -y"_s;
        QTest::newRow("ffmpeg that burns")
            << u"/T/ffmpeg"_s << OptionItem(u"scale=2:2,subtitles=/t/temp.ass")
            << u"export FONTCONFIG_PATH=\"/App/Resources/fonts\"; export FONTCONFIG_FILE=\"/App/Resources/fonts/fonts.conf\";\"/T/ffmpeg\" scale=2:2,subtitles=/t/temp.ass"_s;
        QTest::newRow("atomicparsley")
            << u"/T/AtomicParsley"_s << OptionItem(u"-t")
            << u"export AP_PADDING=\"DEFAULT_PAD=5128:MIN_PAD=0:MAX_PAD=5128\"; \"/T/AtomicParsley\" -t"_s;
        QTest::newRow("any other") << u"/T/mplayer/mplayer"_s << OptionItem(u"-v")
                                   << u"\"/T/mplayer/mplayer\" -v"_s;
    }

    void eachToolFamilyHasItsHead()
    {
        QFETCH(QString, tool);
        QFETCH(OptionItem, option);
        for (const ShellKind kind : {ShellKind::KnowsAmpersandRedirect, ShellKind::PlainBourne}) {
            const auto line = tools::toolLine(file(tool), {option}, FixedPlaces(), kind);
            QTEST(line.meant, "line");
            QTEST(line.launched, "line");
        }
    }

    void onlyStringsAskForFonts()
    {
        const auto line = tools::toolLine(file(u"/T/ffmpeg"_s), {u"-i", file(u"/m/subtitles=1.mkv"_s)},
                                          FixedPlaces(), ShellKind::PlainBourne);
        QCOMPARE(line.meant, u"\"/T/ffmpeg\" -i \"/m/subtitles=1.mkv\""_s);
        QCOMPARE(line.launched, u"\"/T/ffmpeg\" -i \"/m/subtitles=1.mkv\""_s);
    }

    void probeOfAMovieWithABlank()
    {
        const auto line =
            tools::toolLine(file(u"/T/ffmpeg/ffprobe"_s), {u"-i", file(u"/m/my film.mkv"_s), u"2>&1"},
                            FixedPlaces(), ShellKind::PlainBourne);
        QCOMPARE(line.meant, u"\"/T/ffmpeg/ffprobe\" -i \"/m/my film.mkv\" 2>&1"_s);
        QCOMPARE(line.launched, line.meant);
    }

    void hostileFoldersOfOursRunEscaped()
    {
        const auto line =
            tools::toolLine(file(u"/T/`a`/mkvmerge"_s), {}, FixedPlaces(u"/it's"_s), ShellKind::PlainBourne);
        QCOMPARE(line.meant, u"export LANG=en_US.UTF-8; export DYLD_LIBRARY_PATH='/it's/mkvtoolnix/lib';"
                             "export LD_LIBRARY_PATH='/it's/mkvtoolnix/lib';\"/T/`a`/mkvmerge\""_s);
        QCOMPARE(line.launched,
                 u"export LANG=en_US.UTF-8; export DYLD_LIBRARY_PATH='/it'\\''s/mkvtoolnix/lib';"
                 u"export LD_LIBRARY_PATH='/it'\\''s/mkvtoolnix/lib';\"/T/\\`a\\`/mkvmerge\""_s);
    }

    void backgroundStartRunsAsTheShellKnowsIt()
    {
        const OptionList options{u"-y", file(u"/m/a.log"_s), u"&>", file(u"/m/b c.log"_s), u"& echo $!"};
        const QString meant = u"\"/T/mplayer\" -y \"/m/a.log\" &> \"/m/b c.log\" & echo $!"_s;
        const auto knowing =
            tools::toolLine(file(u"/T/mplayer"_s), options, FixedPlaces(), ShellKind::KnowsAmpersandRedirect);
        QCOMPARE(knowing.meant, meant);
        QCOMPARE(knowing.launched, meant);
        const auto plain =
            tools::toolLine(file(u"/T/mplayer"_s), options, FixedPlaces(), ShellKind::PlainBourne);
        QCOMPARE(plain.meant, meant);
        QCOMPARE(plain.launched, u"\"/T/mplayer\" -y \"/m/a.log\" > \"/m/b c.log\" 2>&1 & echo $!"_s);
    }

    void backgroundStartInOneStringRunsAsTheShellKnowsIt()
    {
        const OptionList options{u"&> /dev/null & echo $!"};
        const auto knowing = tools::commandLine(u"play", options, ShellKind::KnowsAmpersandRedirect);
        QCOMPARE(knowing.launched, u"play &> /dev/null & echo $!"_s);
        const auto plain = tools::commandLine(u"play", options, ShellKind::PlainBourne);
        QCOMPARE(plain.meant, u"play &> /dev/null & echo $!"_s);
        QCOMPARE(plain.launched, u"play > /dev/null 2>&1 & echo $!"_s);
        const auto bare = tools::commandLine(u"play", {u"&> /dev/null"}, ShellKind::PlainBourne);
        QCOMPARE(bare.launched, u"play > /dev/null 2>&1"_s);
    }

    void aTitleIsNoRedirection()
    {
        const OptionList options{OptionItem::ofData(u"&>"_s, Quoting::None), file(u"/m/film.mkv"_s),
                                 OptionItem::ofData(u"&> x"_s, Quoting::None)};
        const auto line = tools::commandLine(u"t", options, ShellKind::PlainBourne);
        QCOMPARE(line.meant, u"t &> \"/m/film.mkv\" &> x"_s);
        QCOMPARE(line.launched, u"t '&>' \"/m/film.mkv\" '&> x'"_s);
    }

    void aRedirectionToNothingStaysAsItIs()
    {
        QCOMPARE(tools::commandLine(u"t", {u"&>"}, ShellKind::PlainBourne).launched, u"t &>"_s);
    }

    void commandsAreFollowedByTheirOptions()
    {
        const auto line =
            tools::commandLine(u"tr '\\r' '\\n' < ", {file(u"/m/a$`.log"_s), u"| tail -20", u"| grep 'x'"},
                               ShellKind::PlainBourne);
        QCOMPARE(line.meant, u"tr '\\r' '\\n' <  \"/m/a\\$`.log\" | tail -20 | grep 'x'"_s);
        QCOMPARE(line.launched, u"tr '\\r' '\\n' <  \"/m/a\\$\\`.log\" | tail -20 | grep 'x'"_s);
        QCOMPARE(tools::commandLine(u"ps", {}, ShellKind::PlainBourne).launched, u"ps"_s);
    }
};

TESSARAY_TEST(ShellLineTest)
#include "ShellLineTest.moc"
