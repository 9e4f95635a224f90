// The player's options, and what becomes of them on the shell line. The player itself is a fake tool.
#include "engines/player/KXMoviePlayer.h"
#include "support/FakeTool.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/JobFixture.h"

#include <QFile>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace support;
using tools::OptionItem;
using tools::OptionList;

namespace {

const QString playedFilm = u"/v/a.mkv"_s;
const OptionItem inBackground = u"&> /dev/null & echo $!";
const OptionItem drawing = u"-ass -ass-font-scale 1.0 -ass-color FFFFFF00";

QUrl file(const QString &path)
{
    return QUrl::fromLocalFile(path);
}

TrackPointer track(const QString &type, const QString &number, const QString &source = playedFilm)
{
    const auto made = JobFixture::track(type, source);
    made->setTrackMencoderID(number);
    return made;
}

} // namespace

class KXMoviePlayerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<JobFixture>(JobFixture::Tools::Fake);
        m_guard = std::make_unique<steps::OutputGuard>(m_fixture->outputs, steps::WhenTaken::NextFreeName);
        m_player = std::make_unique<KXMoviePlayer>(m_fixture->converterContext(*m_guard));
    }
    void cleanup()
    {
        m_player.reset();
        m_guard.reset();
        m_fixture.reset();
    }

    void itsNameIsMoviePlayer() { QCOMPARE(m_player->converterName(), u"moviePlayer"_s); }

    void videoAudioAndAnExternalSubtitle()
    {
        QCOMPARE(options({track(u"Video"_s, u"0"_s), track(u"Audio"_s, u"1"_s),
                          track(u"Subtitle"_s, u"0"_s, u"/v/words.srt"_s)},
                         u"1"_s),
                 OptionList({file(playedFilm), u"-vid 0", u"-aid 1", u"-sub", file(u"/v/words.srt"_s),
                             u"-font", file(u"/Library/Fonts/Arial Unicode.ttf"_s), drawing, inBackground}));
    }

    void withoutSubtitlesNoFontIsNamed()
    {
        QCOMPARE(options({track(u"Video"_s, u"0"_s), track(u"Audio"_s, u"1"_s)}, u"0"_s),
                 OptionList({file(playedFilm), u"-vid 0", u"-aid 1", inBackground}));
    }

    void oneTrack_data()
    {
        QTest::addColumn<TrackPointer>("made");
        QTest::addColumn<OptionList>("expected");
        const QString other = u"/v/other.mka"_s;
        QTest::newRow("video") << track(u"Video"_s, u"2"_s) << OptionList{u"-vid 2"};
        QTest::newRow("video of another file") << track(u"Video"_s, u"2"_s, other) << OptionList{u"-vid 2"};
        QTest::newRow("audio of the film") << track(u"Audio"_s, u"3"_s) << OptionList{u"-aid 3"};
        QTest::newRow("audio of another file")
            << track(u"Audio"_s, u"3"_s, other) << OptionList{u"-audiofile", file(other)};
        QTest::newRow("subtitle of the film") << track(u"Subtitle"_s, u"4"_s) << OptionList{u"-sid 4"};
        QTest::newRow("subtitle of another file")
            << track(u"Subtitle"_s, u"4"_s, other) << OptionList{u"-sub", file(other)};
        QTest::newRow("external subtitle of the film")
            << track(u"External Subtitle"_s, u"4"_s) << OptionList{u"-sid 4"};
        QTest::newRow("external subtitle of another file")
            << track(u"External Subtitle"_s, u"4"_s, other) << OptionList{u"-sub", file(other)};
        QTest::newRow("any other type") << track(u"Attachment"_s, u"5"_s) << OptionList{};
        QTest::newRow("types are compared exactly") << track(u"audio"_s, u"5"_s) << OptionList{};
        QTest::newRow("a number with words behind it")
            << track(u"Audio"_s, u"12abc"_s) << OptionList{u"-aid 12"};
        QTest::newRow("no number") << track(u"Video"_s, {}) << OptionList{u"-vid 0"};
    }

    void oneTrack()
    {
        QFETCH(TrackPointer, made);
        QFETCH(OptionList, expected);
        QCOMPARE(options({made}, u"0"_s), OptionList{file(playedFilm)} + expected + OptionList{inBackground});
    }

    /// Of several options of a kind the player takes the last: that is left to it.
    void everyTrackAddsItsOwnOptionInOrder()
    {
        QCOMPARE(options({track(u"Subtitle"_s, u"1"_s), track(u"Audio"_s, u"1"_s), track(u"Video"_s, u"0"_s),
                          track(u"Audio"_s, u"0"_s), track(u"Subtitle"_s, u"0"_s)},
                         u"0"_s),
                 OptionList({file(playedFilm), u"-sid 1", u"-aid 1", u"-vid 0", u"-aid 0", u"-sid 0",
                             inBackground}));
    }

    /// The font goes by the selection's count, not by its tracks; that is meant.
    void theCountOfSubtitlesDecidesAboutTheFont()
    {
        QVERIFY(!options({track(u"Subtitle"_s, u"0"_s)}, u"0"_s).contains(OptionItem(u"-font")));
        QVERIFY(!options({track(u"Subtitle"_s, u"0"_s)}, {}).contains(OptionItem(u"-font")));
        QVERIFY(options({}, u"2"_s).contains(OptionItem(u"-font")));
    }

    void commasInASubtitlesPathAreEscapedWhenItRuns()
    {
        const OptionList meant =
            options({track(u"Subtitle"_s, u"0"_s, u"/v,w/a,b\\,c.srt"_s), track(u"Video"_s, u"0"_s)}, u"0"_s);
        QCOMPARE(meant, OptionList({file(playedFilm), u"-sub", file(u"/v,w/a,b\\,c.srt"_s), u"-vid 0",
                                    inBackground}));
        QCOMPARE(m_player->launchForm(meant),
                 OptionList({file(playedFilm), u"-sub", file(u"/v\\,w/a\\,b\\\\,c.srt"_s), u"-vid 0",
                             inBackground}));
    }

    void otherPathsRunAsTheyAreMeant()
    {
        const QString comma = u"/v/a,b.mkv"_s;
        const auto selection = m_fixture->selectionFor(comma);
        selection->setTrackList(
            {track(u"Audio"_s, u"0"_s, u"/v/c,d.mka"_s), track(u"Subtitle"_s, u"0"_s, u"/v/e.srt"_s)});
        const OptionList expected{file(comma), u"-audiofile",       file(u"/v/c,d.mka"_s),
                                  u"-sub",     file(u"/v/e.srt"_s), inBackground};
        QCOMPARE(m_player->playerOptions(*selection), expected);
        QCOMPARE(m_player->launchForm(expected), expected);
    }

    void thePlayerIsStartedAndNotWaitedFor()
    {
        const QString runs = m_fixture->scratch.path(u"runs"_s);
        const QString pid = m_fixture->scratch.path(u"pid"_s);
        m_fixture->installTool(u"mplayer/mplayer"_s, {u"record "_s + runs, u"pid "_s + pid, u"hang"_s});
        m_player->playMovie(selection(
            {track(u"Video"_s, u"0"_s), track(u"Subtitle"_s, u"0"_s, u"/v/it's,$(x) \"`.srt"_s)}, u"1"_s));
        QVERIFY(waitFor([&] { return m_fixture->scratch.read(u"pid"_s).endsWith('\n'); }));
        const qint64 player = m_fixture->scratch.read(u"pid"_s).trimmed().toLongLong();
        QVERIFY(support::runs(player));
        const auto recorded = FakeTool::recordedRuns(runs);
        QCOMPARE(recorded.size(), 1);
        QCOMPARE(recorded.first().arguments,
                 QByteArrayList({"/v/a.mkv", "-vid", "0", "-sub", "/v/it's\\,$(x) \"`.srt", "-font",
                                 "/Library/Fonts/Arial Unicode.ttf", "-ass", "-ass-font-scale", "1.0",
                                 "-ass-color", "FFFFFF00"}));
        QCOMPARE(m_player->subtitleFontURL(), file(u"/Library/Fonts/Arial Unicode.ttf"_s));
        m_player.reset();
        QVERIFY(support::runs(player)); // the program has let go of it
        ::kill(static_cast<pid_t>(player), SIGKILL);
    }

    void aMissingPlayerShowsNothing()
    {
        m_player->playMovie(selection({track(u"Video"_s, u"0"_s)}, u"0"_s));
        QVERIFY(m_fixture->alerts.shown().isEmpty());
    }

private:
    SelectionPointer selection(const TrackList &tracks, const QString &subtitles) const
    {
        const auto made = m_fixture->selectionFor(playedFilm);
        made->setTrackList(tracks);
        made->setSubCount(subtitles);
        return made;
    }
    OptionList options(const TrackList &tracks, const QString &subtitles) const
    {
        return m_player->playerOptions(*selection(tracks, subtitles));
    }

    std::unique_ptr<JobFixture> m_fixture;
    std::unique_ptr<steps::OutputGuard> m_guard;
    std::unique_ptr<KXMoviePlayer> m_player;
};

TESSARAY_TEST(KXMoviePlayerTest)
#include "KXMoviePlayerTest.moc"
