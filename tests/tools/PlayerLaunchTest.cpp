// What the player makes of a subtitle whose path holds commas: nothing without the launch form, the
// subtitle with it. The installed player runs, with its pictures and sound thrown away.
#include "engines/player/KXMoviePlayer.h"
#include "support/Clips.h"
#include "support/FakeTool.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/JobFixture.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

class PlayerLaunchTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        installScript(m_fixture.scratch.path(u"tools/mplayer/mplayer"_s),
                      u"HOME=%1 mplayer -nolirc -vo null -ao null -frames 3 \"$@\" </dev/null >said 2>&1\n"
                      "mv said done"_s.arg(m_fixture.scratch.path()));
        m_film = copyOf(fullMkv(), m_fixture.scratch, u"film, one.mkv"_s);
    }

    void aSubtitleWithCommas_data()
    {
        QTest::addColumn<QString>("name");
        for (const auto &name : {u"a,b.srt"_s, u"c,d/,e,.srt"_s, u"a\\,b.srt"_s, u"a\\\\,,b.srt"_s})
            QTest::newRow(qPrintable(name)) << name;
    }

    void aSubtitleWithCommas()
    {
        QFETCH(QString, name);
        QDir().mkpath(m_fixture.scratch.path(u"c,d"_s));
        const QString subtitle = copyOf(srtFile(), m_fixture.scratch, name);
        const auto selection = m_fixture.selectionFor(m_film);
        selection->setTrackList({JobFixture::track(u"Subtitle"_s, subtitle)});
        steps::OutputGuard guard(m_fixture.outputs, steps::WhenTaken::NextFreeName);
        KXMoviePlayer player(m_fixture.converterContext(guard));

        player.doShellScriptForWithOptions(player.urlOfApp(u"mplayer"_s), player.playerOptions(*selection));
        QVERIFY(!said().contains("SUB: Added subtitle file (1): " + subtitle.toUtf8()));
        player.playMovie(selection);
        const QByteArray words = said();
        QVERIFY2(words.contains("SUB: Added subtitle file (1): " + subtitle.toUtf8() + '\n'),
                 words.constData());
    }

private:
    /// What the player said, when it has ended.
    QByteArray said() const
    {
        const QString path = m_fixture.scratch.path(u"done"_s);
        if (!waitFor([&] { return QFile::exists(path); }, 60000))
            return "it did not end";
        const QByteArray words = m_fixture.scratch.read(u"done"_s);
        QFile::remove(path);
        return words;
    }

    JobFixture m_fixture{JobFixture::Tools::Fake};
    QString m_film;
};

TESSARAY_TEST(PlayerLaunchTest)
#include "PlayerLaunchTest.moc"
