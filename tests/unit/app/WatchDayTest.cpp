// A watched folder for a day, with a fault every minute: each whole film is converted once, of every other it
// is told why not. Folder, tools and conversions are real; the clock is the test's, which makes each look
// itself.
#include "app/WatchSession.h"

#include "support/Clips.h"
#include "support/PresetRecords.h"
#include "support/Seeds.h"
#include "support/SmallFiles.h"
#include "support/TestMain.h"
#include "support/Unprivileged.h"
#include "support/Waiting.h"
#include "support/app/AppFixture.h"

#include <QDir>
#include <QDirIterator>
#include <QRegularExpression>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using app::WatchLog;
using support::AppFixture;
using support::waitFor;

namespace {

constexpr int pollMs = 5000;
constexpr int pollsOfAMinute = 12;
constexpr int pollsOfAnHour = 720;
constexpr int untilIdleMs = 120000;
constexpr rlim_t aLittle = 64; // bytes that still fit onto a full volume

/// A film that was put into the folder, and what is to come of it.
struct Arrival
{
    QString name;  ///< without its extension
    int times = 0; ///< how often it is to be converted
    bool isGone = false;
};

} // namespace

class WatchDayTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_film = support::textMp4();
        m_otherFilm = support::fullMkv();
        m_sound = support::audioOnly();
        m_fixture = std::make_unique<AppFixture>(prefs::WatchIntervals{1 << 30, 1, 1});
        QVERIFY(QDir().mkpath(at({})));
        m_fixture->program().preferences().setWatchFolderURL(m_fixture->scratch().url(u"w"_s));
        addPreset();
        m_fixture->presets().setSelectionMethodIndex(1); // "First Track"
        m_fixture->presets().setSettingMethodIndex(2);
        m_fixture->prepend(u"ffmpeg/ffmpeg"_s,
                           u"if [ -e \"%1\" ]; then\n"
                           "echo 'av_interleaved_write_frame(): No space left on device' >&2\n"
                           "exit 1; fi"_s.arg(m_fixture->path(u"full"_s)));
        giveAway();
        watch().setClock([this] { return m_now; });
        connect(&session().log(), &WatchLog::added, this, [this](const WatchLog::Line &line) {
            m_log.append(WatchLog::wordOf(line.kind) + u' ' + line.text);
        });
        connect(&m_fixture->intake(), &app::FileIntake::probing, this,
                [this](int, int, const QString &name) { removeLate(name); });
    }

    void cleanup()
    {
        m_unprivileged.reset();
        m_fixture.reset();
        m_log.clear();
        m_arrivals.clear();
    }

    /// In the short form eleven minutes four times, each with other faults: 528 polls.
    void aDayOfFaults_data()
    {
        QTest::addColumn<int>("first");
        for (const int first : support::isSoak() ? QList<int>{0} : QList<int>{0, 11, 22, 33})
            QTest::addRow("from minute %d", first) << first;
    }

    void aDayOfFaults()
    {
        QFETCH(int, first);
        QVERIFY(session().start());
        m_minute = first;
        m_polls = 0;
        m_now = 0;
        const int minutes = support::times(1440, 11);
        m_chances = std::make_unique<support::Chances>(support::seed() + static_cast<quint32>(first));
        for (int minute = 0; minute < minutes; ++minute) {
            QVERIFY2(aMinute(), qPrintable(m_log.join(u'\n')));
            if (minute % 60 == 59)
                qInfo("hour %d: %lld films, %lld lines", minute / 60 + 1,
                      static_cast<long long>(m_arrivals.size()), static_cast<long long>(m_log.size()));
        }
        for (int i = 0; i < 3 * pollsOfAnHour && !isAllDone(); ++i)
            QVERIFY(poll());
        for (const Arrival &arrival : std::as_const(m_arrivals))
            check(arrival);
        qInfo("%lld films, %d faults, %d polls", static_cast<long long>(m_arrivals.size()), minutes, m_polls);
    }

private:
    app::WatchSession &session() { return m_fixture->delegate().watchSession(); }
    KXWatchModeController &watch() { return m_fixture->program().watchMode(); }
    /// In the folder that films are put into, wherever that is just now.
    QString at(const QString &name) const { return m_fixture->path(m_folder + u'/' + name); }
    bool isChance(int oneIn) { return m_chances->below(oneIn) == 0; }

    /// To a user whom permissions keep out.
    void giveAway()
    {
        if (::geteuid() != 0)
            return;
        const auto give = [](const QString &path) { return ::lchown(qPrintable(path), 65534, 65534) == 0; };
        QVERIFY(give(m_fixture->path()));
        for (QDirIterator all(m_fixture->path(), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                              QDirIterator::Subdirectories);
             all.hasNext();)
            QVERIFY(give(all.next()));
        m_unprivileged = std::make_unique<support::Unprivileged>();
    }

    void addPreset()
    {
        const QVariant preset = support::settingsPreset(u"Set"_s, u"General"_s).toVariantMap();
        QVERIFY(m_fixture->presets().addUserPresets({}, {preset}).isNull());
    }

    /// A look at the folder, and all that comes of it.
    bool poll()
    {
        m_now += pollMs;
        ++m_polls;
        watch().watchLoop();
        return waitFor([this] { return isIdle(); }, untilIdleMs);
    }

    bool isIdle()
    {
        const auto &jobs = m_fixture->queue().qJobList();
        return !session().isAtWork() && !m_fixture->queue().qJobIsRunning() &&
               std::all_of(jobs.begin(), jobs.end(),
                           [](const JobPointer &job) { return job->jobStatus() == u"Completed"_s; });
    }

    bool polls(int count)
    {
        for (int i = 0; i < count; ++i) {
            if (!poll())
                return false;
        }
        return true;
    }

    bool aMinute()
    {
        struct Fault
        {
            const char *name;
            std::function<bool(WatchDayTest &, int)> happen;
        };
        static const QList<Fault> faults{{"away", &WatchDayTest::folderIsAway},
                                         {"read-only", &WatchDayTest::folderIsReadOnly},
                                         {"full", &WatchDayTest::volumeIsFull},
                                         {"replaced", &WatchDayTest::folderIsReplaced},
                                         {"no preset", &WatchDayTest::presetIsGone},
                                         {"no ffmpeg", &WatchDayTest::ffmpegIsMissing},
                                         {"no ffprobe", &WatchDayTest::ffprobeIsMissing},
                                         {"unreadable", &WatchDayTest::filmIsUnreadable},
                                         {"foreign", &WatchDayTest::filmIsForeign},
                                         {"empty", &WatchDayTest::filmIsEmpty},
                                         {"refused", &WatchDayTest::filmIsRefused},
                                         {"vanishes", &WatchDayTest::filmVanishes},
                                         {"half", &WatchDayTest::filmIsHalf},
                                         {"same name", &WatchDayTest::filmIsReplaced},
                                         {"renamed", &WatchDayTest::filmIsRenamed}};
        const int length = 1 + static_cast<int>(m_chances->below(8));
        const Fault &fault =
            faults.at(support::isSoak() ? m_chances->below(faults.size()) : m_minute % faults.size());
        ++m_minute;
        if (support::isSoak() && isChance(2))
            arrive();
        const int before = m_polls;
        if (!fault.happen(*this, length))
            return false;
        return polls(std::max(pollsOfAMinute - (m_polls - before), 0));
    }

    QString newName(int times)
    {
        const QString folder = isChance(4) ? u"sub %1/"_s.arg(m_chances->below(3)) : QString();
        const QString name = u"film %1"_s.arg(m_arrivals.size(), 4, 10, QChar(u'0'));
        m_arrivals.append({name, times, false});
        return folder + name;
    }

    /// A whole film, by one rename as from a download.
    QString arrive()
    {
        const QString name = newName(1) + u".mp4"_s;
        put(m_film, name);
        return name;
    }

    void put(const QString &clip, const QString &name)
    {
        m_fixture->film(clip, u"outside.tmp"_s);
        QDir().mkpath(QFileInfo(at(name)).path());
        QFile::remove(at(name));
        QVERIFY(QFile::rename(m_fixture->path(u"outside.tmp"_s), at(name)));
        QFile(at(name)).setFileTime(QDateTime::currentDateTime(), QFileDevice::FileModificationTime);
    }

    // What happens to the folder and around it.

    bool folderIsAway(int length)
    {
        move(u"w"_s, u"away"_s);
        m_folder = u"away"_s;
        arrive();
        const bool isWell = polls(length);
        move(u"away"_s, u"w"_s);
        m_folder = u"w"_s;
        return isWell;
    }

    bool folderIsReplaced(int /*length*/)
    {
        move(u"w"_s, u"aside"_s);
        QDir().mkpath(at({}));
        arrive();
        for (int i = 0; i < pollsOfAnHour && !isAllDone(); ++i) { // also what is still to be tried again
            if (isDone(m_arrivals.constLast()))
                break;
            if (!poll())
                return false;
        }
        move(u"w"_s, u"replaced %1"_s.arg(m_minute));
        move(u"aside"_s, u"w"_s);
        return true;
    }

    void move(const QString &from, const QString &to)
    {
        QVERIFY(QDir().rename(m_fixture->path(from), m_fixture->path(to)));
    }

    bool folderIsReadOnly(int length)
    {
        arrive();
        const QList<QString> folders = foldersIn(at({}));
        for (const QString &folder : folders)
            ::chmod(qPrintable(folder), 0555);
        const bool isWell = polls(length);
        for (const QString &folder : folders)
            ::chmod(qPrintable(folder), 0755);
        return isWell;
    }

    static QStringList foldersIn(const QString &folder)
    {
        QStringList folders{folder};
        for (const QString &name : QDir(folder).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
            folders.append(folder + u'/' + name);
        return folders;
    }

    /// For what the tools write as they say it, for the program itself as a limit.
    bool volumeIsFull(int length)
    {
        arrive();
        m_fixture->scratch().write(u"full"_s, {});
        bool isWell = true;
        for (int i = 0; i < length && isWell; ++i) {
            m_now += pollMs;
            ++m_polls;
            {
                const support::SmallFiles small(aLittle);
                watch().watchLoop();
            }
            isWell = waitFor([this] { return isIdle(); }, untilIdleMs);
        }
        QFile::remove(m_fixture->path(u"full"_s));
        return isWell;
    }

    bool presetIsGone(int length)
    {
        arrive();
        KXPresetsController &presets = m_fixture->presets();
        presets.openPresetSettingsPanel();
        presets.settingsListTableClicked(0);
        presets.removePresetSettings();
        presets.okPresetSettingsPanel();
        const bool isWell = polls(length);
        addPreset();
        return isWell;
    }

    bool toolIsMissing(const QString &tool, int length)
    {
        arrive();
        move(u"tools/ffmpeg/"_s + tool, u"hidden"_s);
        const bool isWell = polls(length);
        move(u"hidden"_s, u"tools/ffmpeg/"_s + tool);
        return isWell;
    }

    bool ffmpegIsMissing(int length) { return toolIsMissing(u"ffmpeg"_s, length); }
    bool ffprobeIsMissing(int length) { return toolIsMissing(u"ffprobe"_s, length); }

    // What happens to a film.

    bool filmIsUnreadable(int length)
    {
        const QString name = arrive();
        ::chmod(qPrintable(at(name)), 0);
        const bool isWell = polls(length);
        ::chmod(qPrintable(at(name)), 0644);
        return isWell;
    }

    bool filmIsForeign(int length)
    {
        m_fixture->scratch().write(u"w/"_s + newName(0) + u".mkv"_s, "This is no film.\n");
        return polls(length);
    }

    bool filmIsEmpty(int length)
    {
        m_fixture->scratch().write(u"w/"_s + newName(0) + u".mkv"_s, {});
        return polls(length);
    }

    bool filmIsRefused(int length)
    {
        put(m_sound, newName(0) + u".mp4"_s);
        return polls(length);
    }

    /// Before it is taken, or while it is being opened.
    bool filmVanishes(int length)
    {
        const QString name = newName(0) + u".mp4"_s;
        put(m_film, name);
        if (isChance(2)) {
            if (!poll())
                return false;
            QFile::remove(at(name));
        } else {
            m_removedLate = name;
        }
        return polls(length + 2);
    }

    void removeLate(const QString &name)
    {
        if (!m_removedLate.isNull() && m_removedLate.endsWith(name))
            QFile::remove(at(std::exchange(m_removedLate, {})));
    }

    bool filmIsHalf(int length)
    {
        const QString name = newName(1) + u".mkv"_s;
        const QByteArray whole = bytesOf(m_otherFilm);
        m_fixture->scratch().write(u"w/"_s + name, whole.first(whole.size() / 3));
        if (!polls(length))
            return false;
        QFile file(at(name));
        return file.open(QIODevice::Append) && file.write(whole.sliced(whole.size() / 3)) > 0;
    }

    static QByteArray bytesOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// By another film of its name, once it is converted.
    bool filmIsReplaced(int length)
    {
        const QString name = arrive();
        const qsizetype place = m_arrivals.size() - 1;
        if (!polls(3) || !isDone(m_arrivals.at(place)))
            return polls(length); // something else is still being waited for
        put(m_film, name);
        m_arrivals[place].times = 2;
        return polls(length);
    }

    bool filmIsRenamed(int length)
    {
        const QString name = arrive();
        if (!polls(3))
            return false;
        if (isDone(m_arrivals.constLast()))
            QFile::rename(at(name), at(name.chopped(4) + u" moved.mp4"_s));
        return polls(length);
    }

    // What came of it all.

    qsizetype done(const Arrival &arrival) const
    {
        return m_log.filter(QRegularExpression(u"^done "_s + arrival.name + u"\\.m"_s)).size();
    }
    bool isDone(const Arrival &arrival) const { return done(arrival) >= arrival.times; }
    bool isAllDone() const
    {
        return std::all_of(m_arrivals.begin(), m_arrivals.end(),
                           [this](const Arrival &arrival) { return isDone(arrival); });
    }

    void check(const Arrival &arrival) const
    {
        const QString told = m_log.filter(arrival.name).join(u'\n');
        QVERIFY2(done(arrival) == arrival.times, qPrintable(arrival.name + u'\n' + told));
        const QStringList outputs = outputsOf(arrival);
        QVERIFY2(outputs.size() == arrival.times, qPrintable(outputs.join(u'\n') + u'\n' + told));
        for (const QString &output : outputs)
            QVERIFY2(QFileInfo(output).size() > QFileInfo(m_film).size() / 2, qPrintable(output));
        static const QRegularExpression reason(
            u"^(failed .*(can't be opened|is gone)|note .* is gone|waiting .*it is empty)"_s,
            QRegularExpression::MultilineOption);
        QVERIFY2(arrival.times > 0 || reason.match(told).hasMatch(), qPrintable(arrival.name + u'\n' + told));
    }

    /// In the folder, in what stood in its place for a while, and below them.
    QStringList outputsOf(const Arrival &arrival) const
    {
        const QRegularExpression name(u"/"_s + arrival.name + u"( \\(\\d+\\))?\\.m4v$"_s);
        QStringList outputs;
        for (QDirIterator files(m_fixture->path(), QDir::Files, QDirIterator::Subdirectories);
             files.hasNext();) {
            if (const QString path = files.next(); name.match(path).hasMatch())
                outputs.append(path);
        }
        return outputs;
    }

    std::unique_ptr<support::Unprivileged> m_unprivileged;
    std::unique_ptr<AppFixture> m_fixture;
    std::unique_ptr<support::Chances> m_chances;
    QString m_film;
    QString m_otherFilm;
    QString m_sound;
    QString m_folder = u"w"_s;
    QString m_removedLate;
    QStringList m_log;
    QList<Arrival> m_arrivals;
    qint64 m_now = 0;
    int m_polls = 0;
    int m_minute = 0;
};

TESSARAY_TEST(WatchDayTest)
#include "WatchDayTest.moc"
