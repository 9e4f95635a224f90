// Films and subtitles with faults in them, drawn by a seed, through the commands that read most of a file.
// The program never crashes or hangs, says "ok" only of what is there and can be read, leaves nothing but
// outputs, logs and error files, and no source is changed. TESSARAY_SOAK=1 takes forty times as many, each
// through every command.
#include "support/Mutants.h"
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Lanes.h"
#include "support/Listing.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Verdicts.h"
#include "support/Waiting.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <csignal>
#include <optional>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::Listing;

namespace {

constexpr qsizetype batchSize = 5;
constexpr int boundMs = 60000 * batchSize; ///< a minute for each
/// They wait more than they work.
constexpr size_t laneCount = 3;

const QStringList &commands()
{
    static const QStringList lines{u"probe"_s, u"convert --kind mkv"_s,
                                   u"convert --video 1pass --video-bitrate 100"_s, u"remux"_s,
                                   u"split --duration 00:00:01"_s};
    return lines;
}

struct Mutant
{
    QString name;
    QByteArray content;
};

/// Some mutants and the command that takes them all.
struct Batch
{
    QString command;
    QList<Mutant> mutants;
};

/// A fixture in which one batch after the other is run, while others are in theirs.
class Lane
{
public:
    void begin(const Batch &batch)
    {
        m_batch = batch;
        QStringList words = batch.command.split(u' ') + QStringList{u"--json"_s};
        for (const Mutant &mutant : batch.mutants) {
            support::writeContent(m_cli.media(mutant.name), mutant.content);
            words.append(mutant.name);
        }
        m_before = std::make_unique<Listing>(m_cli.scratch().path());
        m_clock.start();
        m_process = m_cli.start(words);
    }

    bool isFree() const { return !m_process; }

    /// What was wrong, when the run has ended or its time is over; no value while it goes on.
    std::optional<QString> look()
    {
        m_process->waitForFinished(10); // says nothing of an end that was seen while another was waited for
        const bool hasEnded = m_process->state() == QProcess::NotRunning;
        if (!hasEnded && m_clock.elapsed() < boundMs)
            return {};
        QString offence = hasEnded ? support::untruthOf(CliFixture::outcomeOf(*m_process)) : hanging();
        m_process.reset();
        const QString left = leftOver();
        if (offence.isNull())
            offence = left;
        if (!offence.isNull())
            offence = told(offence);
        clean();
        return offence;
    }

private:
    QString hanging()
    {
        const QString tools = m_cli.commandLines().join(u"; "_s);
        for (const qint64 pid : m_cli.processes())
            ::kill(static_cast<pid_t>(pid), SIGKILL);
        m_process->waitForFinished();
        return u"it did not end: "_s + tools;
    }

    QString leftOver()
    {
        if (!support::waitFor([this] { return m_cli.processes().isEmpty(); }))
            return u"left running: "_s + m_cli.commandLines().join(u"; "_s);
        static const QRegularExpression results(
            u"^(new media/mutant[0-9]+( \\([0-9a-z]+\\))?\\.[^/]*|(new|changed) "
            u"(defaults\\.json|home/\\.(fontconfig|cache)(/.*)?|"
            "home|media|tmp))$"_s);
        QStringList changes = m_before->changesTo(Listing(m_cli.scratch().path()));
        changes.removeIf([](const QString &change) { return results.match(change).hasMatch(); });
        return changes.isEmpty() ? QString() : u"changed: "_s + changes.join(u", "_s);
    }

    /// With the mutants kept beside the clips, where they can be tried again.
    QString told(const QString &offence) const
    {
        const QString kept = QStringLiteral(TESSARAY_BUILD_DIR) + u"/mutants"_s;
        QDir().mkpath(kept);
        QStringList names;
        for (const Mutant &mutant : m_batch.mutants) {
            names.append(mutant.name);
            support::writeContent(kept + u'/' + mutant.name, mutant.content);
        }
        return u"%1 %2 (in %3): "_s.arg(m_batch.command, names.join(u' '), kept) + offence;
    }

    void clean()
    {
        for (const auto &name : {u"media"_s, u"tmp"_s}) {
            QDir(m_cli.scratch().path(name)).removeRecursively();
            QDir().mkpath(m_cli.scratch().path(name));
        }
    }

    CliFixture m_cli;
    Batch m_batch;
    std::unique_ptr<QProcess> m_process;
    std::unique_ptr<Listing> m_before;
    QElapsedTimer m_clock;
};

} // namespace

class MutantsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theMediaThemselvesPass();
    void theSameSeedMakesTheSame();
    void mutants();
    void aFilmWhosePicturesAreLostIsNotOk_data();
    void aFilmWhosePicturesAreLostIsNotOk();

private:
    static QList<Batch> batchesOf(QList<Mutant> all, const QStringList &lines);
    static QList<Batch> drawn();
};

QList<Batch> MutantsTest::batchesOf(QList<Mutant> all, const QStringList &lines)
{
    QList<Batch> batches;
    while (!all.isEmpty()) {
        const QList<Mutant> some = all.first(qMin(batchSize, all.size()));
        all.remove(0, some.size());
        for (const QString &line : lines)
            batches.append({line, some});
    }
    return batches;
}

/// Each kind of medium in turn. In the short form each batch goes through one command, all in turn; in the
/// long form through all of them.
QList<Batch> MutantsTest::drawn()
{
    const qsizetype count = support::isSoak() ? 3000 : 300;
    const auto &media = support::smallMedia();
    support::Chances chances(support::seed());
    QList<Mutant> mutants;
    for (qsizetype i = 0; i < count; ++i) {
        const support::SmallMedium &medium = media.at(i % media.size());
        mutants.append({u"mutant%1.%2"_s.arg(i).arg(medium.extension),
                        support::mutated(support::contentOf(medium.path), chances)});
    }
    if (support::isSoak())
        return support::partOf(batchesOf(mutants, commands()));
    QList<Batch> batches = batchesOf(mutants, {QString()});
    for (qsizetype i = 0; i < batches.size(); ++i)
        batches[i].command = commands().at((i / 2) % commands().size());
    return batches;
}

void MutantsTest::aFilmWhosePicturesAreLostIsNotOk_data()
{
    QTest::addColumn<QStringList>("words");
    for (const char *words : {"convert --kind mkv", "convert"})
        QTest::newRow(words) << QString::fromLatin1(words).split(u' ');
}

/// Found by a seed: the packets of the picture are those of a stream that isn't there, of which the tools say
/// nothing.
void MutantsTest::aFilmWhosePicturesAreLostIsNotOk()
{
    QFETCH(QStringList, words);
    CliFixture cli;
    for (const support::SmallMedium &medium : support::smallMedia()) {
        if (medium.extension == u"avi"_s)
            support::writeContent(cli.media(u"film.avi"_s),
                                  support::contentOf(medium.path).replace("00dc", "07dc"));
    }
    const CliFixture::Run run = cli.run(words + QStringList{u"film.avi"_s});
    QVERIFY2(run.status == 1 || run.status == 2, qPrintable(run.said()));
    QVERIFY2(run.said().contains(u"There is nothing in the video track"_s), qPrintable(run.said()));
}

/// What is wrong here is wrong with the test.
void MutantsTest::theMediaThemselvesPass()
{
    QList<Mutant> media;
    for (const support::SmallMedium &medium : support::smallMedia())
        media.append(
            {u"mutant%1.%2"_s.arg(media.size()).arg(medium.extension), support::contentOf(medium.path)});
    QCOMPARE(support::Lanes<Lane>(laneCount).offencesIn(batchesOf(media, support::drawn(commands(), 3))), 0);
}

void MutantsTest::theSameSeedMakesTheSame()
{
    const QByteArray content = support::contentOf(support::smallMedia().constFirst().path);
    support::Chances one(7);
    support::Chances same(7);
    int changed = 0;
    for (int i = 0; i < 50; ++i) {
        const QByteArray mutant = support::mutated(content, one);
        QCOMPARE(support::mutated(content, same), mutant);
        changed += mutant != content;
    }
    QVERIFY(changed > 45);
}

void MutantsTest::mutants()
{
    QCOMPARE(support::Lanes<Lane>(laneCount).offencesIn(drawn()), 0);
}

TESSARAY_TEST(MutantsTest)
#include "MutantsTest.moc"
