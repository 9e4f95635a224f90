// Every field that a probe reports, hostile: twenty fields with twelve texts each, by the tags of a real film
// and by a probe that says so, through every command and the preview of the window. No program runs but those
// that should, nothing is read, written or changed but the films' own results, and each run ends by itself
// and tells the truth. A sample is drawn by a seed; TESSARAY_SOAK=1 takes all.
#include "support/HostileFields.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/FakeTool.h"
#include "support/Lanes.h"
#include "support/PresetLists.h"
#include "support/PresetRecords.h"
#include "support/Seeds.h"
#include "support/StartedShapes.h"
#include "support/TaggedFilms.h"
#include "support/TestMain.h"
#include "support/Verdicts.h"
#include "support/Waiting.h"
#include "support/WatchedCli.h"
#include "support/app/AppFixture.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QTest>

#include <algorithm>
#include <csignal>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::TagList;
using support::WatchedCli;

namespace {

/// Far more than any run takes, also on a machine that others keep busy.
constexpr int boundMs = 180000;
constexpr qsizetype sampleSize = 72; ///< each command three times and more
/// They wait more than they work.
constexpr size_t laneCount = 5;

struct Command
{
    const char *name;
    const char *line;
    bool hasPicture = false; ///< the film's subtitle is a picture
};

/// The one that waits longest comes first.
constexpr Command commands[] = {
    {"watch", "watch in --track-preset Rule --settings-preset Set"},
    {"probe", "probe film.mkv"},
    {"pass-through", "convert film.mkv --kind mkv"},
    {"one pass", "convert film.mkv --video 1pass --video-bitrate 100"},
    {"two passes", "convert film.mkv --video 2pass --video-bitrate 100 --device PS3"},
    {"scaled", "convert film.mkv --video 1pass --video-bitrate 100 --width 32"},
    {"text burned", "convert film.mkv --video 1pass --video-bitrate 100 --width 32 --subtitles burn"},
    {"picture burned", "convert film.mkv --video 1pass --video-bitrate 100 --subtitles burn", true},
    {"picture burned, scaled",
     "convert film.mkv --video 2pass --video-bitrate 100 --width 32 --subtitles burn", true},
    {"added tracks", "convert film.mkv --kind mkv --add extra.srt --add extra.ac3"},
    {"extract", "extract film.mkv"},
    {"extract a picture", "extract film.mkv", true},
    {"join", "join film.mkv other.mkv"},
    {"split", "split film.mkv --duration 00:00:01"},
    {"remux", "remux film.mkv"},
    {"remove", "remove film.mkv --tracks 1"},
    {"send", "send film.mkv"},
    {"play", "play film.mkv"},
    {"presets", "convert film.mkv --track-preset Rule --settings-preset Set"},
    {"dry run", "convert film.mkv --video 2pass --video-bitrate 100 --subtitles burn --dry-run"},
};

enum class Way { Tags, Probe };

struct Case
{
    Way way;
    QString field;
    qsizetype text;
    const Command *command;

    QString name() const
    {
        return u"%1, %2, text %3, %4"_s.arg(QLatin1String(command->name), field)
            .arg(text)
            .arg(way == Way::Tags ? u"by tags"_s : u"by a probe"_s);
    }
};

QList<Case> allCases()
{
    QList<Case> cases;
    for (const Way way : {Way::Tags, Way::Probe}) {
        for (const QString &field : support::probedFields()) {
            for (qsizetype text = 0; text < 12; ++text) {
                for (const Command &command : commands)
                    cases.append({way, field, text, &command});
            }
        }
    }
    return cases;
}

/// All commands come in turn, the rest is drawn.
QList<Case> drawnCases()
{
    support::Chances chances(support::seed());
    const QStringList fields = support::probedFields();
    QList<Case> cases;
    for (qsizetype i = 0; i < sampleSize; ++i) {
        const Way way = chances.below(3) == 0 ? Way::Tags : Way::Probe;
        cases.append({way, fields.at(chances.below(fields.size())), chances.below(12),
                      &commands[static_cast<size_t>(i) % std::size(commands)]});
    }
    return cases;
}

QString filmFor(const Command &command)
{
    return command.hasPicture ? support::tinyPictureMkv() : support::tinyTextMkv();
}

/// What ffprobe prints of the film, asked once.
QByteArray printedOf(const QString &path)
{
    static QHash<QString, QByteArray> printed;
    if (!printed.contains(path)) {
        QProcess ffprobe;
        ffprobe.start(u"ffprobe"_s, {u"-v"_s, u"quiet"_s, u"-i"_s, path, u"-show_streams"_s,
                                     u"-print_format"_s, u"json"_s});
        ffprobe.waitForFinished(60000);
        printed.insert(path, ffprobe.readAllStandardOutput());
    }
    return printed.value(path);
}

TagList tagsFor(const QString &field, const QString &text)
{
    const TagList tags{{field.section(u'.', -1), text}};
    return field.startsWith(u"tags."_s) ? tags : support::behindABrace(tags);
}

/// A fixture in which one case after the other is run, while others are in theirs.
class Lane
{
public:
    void begin(const Case &one)
    {
        m_case = one;
        const QString text = support::hostileValues(m_base.canaries()).at(one.text);
        place(filmFor(*one.command), u"film.mkv"_s, text);
        if (isNamed("join"))
            QFile::copy(support::tinyTextMkv(), media(u"other.mkv"_s));
        if (isNamed("added tracks")) {
            place(support::srtFile(), u"extra.srt"_s, text);
            place(support::surroundAc3(), u"extra.ac3"_s, text);
        }
        writeSettings();
        if (isNamed("watch"))
            QDir().mkpath(media(u"in"_s));
        m_base.begin();
        m_clock.start();
        m_process =
            m_base.cli().start(QString::fromLatin1(one.command->line).split(u' ') + QStringList{u"--json"_s});
    }

    bool isFree() const { return !m_process; }

    /// What was wrong, when the run has ended or its time is over; no value while it goes on.
    std::optional<QString> look()
    {
        m_process->waitForFinished(10); // says nothing of an end that was seen while another was waited for
        const bool hasEnded = m_process->state() == QProcess::NotRunning;
        if (isNamed("watch"))
            tendWatch();
        if (!hasEnded && m_clock.elapsed() < boundMs)
            return {};
        const QString offence = hasEnded ? outcome() : u"it did not end by itself"_s;
        if (!hasEnded)
            m_process->kill();
        m_process->waitForFinished();
        m_process.reset();
        const QString done = m_base.offence();
        m_base.clean();
        m_watched.clear();
        const QString all = done.isNull() ? offence : done;
        return all.isNull() ? QString() : m_case->name() + u": "_s + all;
    }

private:
    bool isNamed(const char *name) const { return qstrcmp(m_case->command->name, name) == 0; }
    QString media(const QString &name) { return m_base.cli().media(name); }

    void place(const QString &clip, const QString &name, const QString &text)
    {
        const QString stem = name == u"film.mkv"_s && isNamed("watch") ? u"late.mkv"_s : name;
        if (m_case->way == Way::Tags && name.endsWith(u".mkv"_s)) {
            const TagList tags = tagsFor(m_case->field, text);
            support::writeTagged(clip, media(stem), {tags, tags, tags});
            return;
        }
        if (!QFile::copy(clip, media(stem)))
            qFatal("can't copy %s", qPrintable(clip));
        // Each of the three streams has its turn at a wrong place, else none would be read.
        const int stream = m_case->field == u"index"_s ? static_cast<int>(m_case->text % 3) : -1;
        m_base.answerProbesOf(name, support::withField(printedOf(clip), m_case->field, text, stream));
    }

    void writeSettings()
    {
        support::storePresets(
            m_base.cli(), {support::trackPreset(u"Rule"_s, u"first of: English/*/*; #1"_s, u"*/srt"_s)},
            {support::settingsPreset(u"Set"_s, u"MKV"_s,
                                     u"video=1 rate=100 width=32 stereo=1 surround=2 addStereo burn"_s)});
        if (isNamed("send"))
            m_base.cli().run({u"prefs"_s, u"set"_s, u"lintwickPath"_s, m_base.path(u"app/lintwick"_s)});
    }

    /// The film comes when the folder is watched, and the program is interrupted when it has been dealt with.
    void tendWatch()
    {
        m_watched += m_process->readAllStandardOutput();
        if (m_watched.contains("Watching") && QFile::exists(media(u"late.mkv"_s)))
            QFile::rename(media(u"late.mkv"_s), media(u"in/film.mkv"_s));
        const bool isOver = m_watched.contains("\"done\"") || m_watched.contains("\"failed\"");
        if (isOver && m_process->state() != QProcess::NotRunning)
            ::kill(static_cast<pid_t>(m_process->processId()), SIGINT);
    }

    QString outcome()
    {
        const CliFixture::Run run = CliFixture::outcomeOf(*m_process);
        if (!isNamed("watch"))
            return support::untruthOf(run);
        return run.status == 130 || run.status == 0 ? QString()
                                                    : u"it ended with %1: "_s.arg(run.status) + run.said();
    }

    WatchedCli m_base;
    std::optional<Case> m_case;
    std::unique_ptr<QProcess> m_process;
    QElapsedTimer m_clock;
    QByteArray m_watched;
};

} // namespace

class HostileFieldsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void harmlessFilmsPass();
    void nothingHappensButWhatIsMeant();
    void thePreviewOfTheWindow();
    void cleanupTestCase() { m_lanes.reset(); }

private:
    std::unique_ptr<support::Lanes<Lane>> m_lanes;
};

void HostileFieldsTest::initTestCase()
{
    m_lanes = std::make_unique<support::Lanes<Lane>>(laneCount);
}

/// A tag that is never asked for: whatever is wrong here is wrong with the test.
void HostileFieldsTest::harmlessFilmsPass()
{
    QList<Case> cases;
    for (const Command &command : commands)
        cases.append({Way::Tags, u"tags.harmless"_s, 8, &command});
    QCOMPARE(m_lanes->offencesIn(cases), 0);
}

void HostileFieldsTest::nothingHappensButWhatIsMeant()
{
    QCOMPARE(m_lanes->offencesIn(support::isSoak() ? support::partOf(allCases()) : drawnCases()), 0);
}

/// The window program without its window opens the film and plays it.
void HostileFieldsTest::thePreviewOfTheWindow()
{
    support::AppFixture fixture;
    WatchedCli base;
    fixture.prepend(u"ffmpeg/ffprobe"_s, base.answeringScript());
    fixture.fakeTool(u"mplayer/mplayer"_s, {u"record "_s + base.path(u"recorded"_s)});
    for (const auto &name : {u"PATH"_s, u"RECORDER_FILE"_s})
        qputenv(qPrintable(name), base.cli().environment().value(name).toUtf8());
    const QString film = base.cli().media(u"film.mkv"_s);
    const QStringList texts = support::hostileValues(base.canaries());
    support::Chances chances(support::seed());
    qsizetype played = 0;
    for (const QString &field : support::probedFields()) {
        for (qsizetype text = 0; text < texts.size(); ++text) {
            if (!support::isSoak() && chances.below(20) != 0)
                continue;
            QVERIFY(QFile::copy(support::tinyTextMkv(), film));
            const int stream = field == u"index"_s ? static_cast<int>(text % 3) : -1;
            base.answerProbesOf(u"film.mkv"_s,
                                support::withField(printedOf(film), field, texts.at(text), stream));
            base.begin();
            fixture.drop({film});
            if (fixture.controller().canAddTrack() && fixture.delegate().playingRefusal().isNull())
                fixture.delegate().playButton(); // as the button can be pressed
            const QString offence = base.offence();
            QVERIFY2(offence.isNull(), qPrintable(u"%1, text %2: "_s.arg(field).arg(text) + offence));
            played += base.hasStarted(u"mplayer"_s);
            base.clean();
        }
    }
    QVERIFY(played > 0);
}

TESSARAY_TEST(HostileFieldsTest)
#include "HostileFieldsTest.moc"
