// What the player makes of a subtitle whose path holds commas: nothing without the launch form, the
// subtitle with it. The installed player runs, with its pictures and sound thrown away.
#include "engines/KXMoviePlayer.h"
#include "support/Clips.h"
#include "support/JobWorld.h"
#include "support/Waiting.h"

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
        m_world.scratch.write(u"tools/mplayer/mplayer"_s,
                              "#!/bin/sh\n"
                              "HOME=" +
                                  m_world.scratch.path().toUtf8() +
                                  " mplayer -nolirc -vo null -ao null "
                                  "-frames 3 \"$@\" </dev/null >said 2>&1\nmv said done\n");
        QFile::setPermissions(m_world.scratch.path(u"tools/mplayer/mplayer"_s), QFile::Permissions(0x7755));
        m_film = copyOf(fullMkv(), m_world.scratch, u"film, one.mkv"_s);
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
        QDir().mkpath(m_world.scratch.path(u"c,d"_s));
        const QString subtitle = copyOf(srtFile(), m_world.scratch, name);
        const auto selection = m_world.selectionFor(m_film);
        selection->setTrackList({JobWorld::track(u"Subtitle"_s, subtitle)});
        step::OutputGuard guard(m_world.outputs, step::WhenTaken::NextFreeName);
        KXMoviePlayer player(m_world.converterContext(guard));

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
        const QString path = m_world.scratch.path(u"done"_s);
        if (!waitFor([&] { return QFile::exists(path); }, 60000))
            return "it did not end";
        const QByteArray words = m_world.scratch.read(u"done"_s);
        QFile::remove(path);
        return words;
    }

    JobWorld m_world{JobWorld::Tools::Fake};
    QString m_film;
};

QTEST_GUILESS_MAIN(PlayerLaunchTest)
#include "PlayerLaunchTest.moc"
