#include "steps/OutputGuard.h"

#include "steps/OutputRegistry.h"
#include "steps/Publisher.h"
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;
using steps::OutputGuard;
using steps::WhenTaken;

namespace {

/// A folder, the registry of a program, and the guard of one job.
struct Job
{
    explicit Job(WhenTaken whenTaken)
        : guard(registry, whenTaken)
    {
    }

    QUrl url(const QString &name) const { return scratch.url(name); }
    QString nameFor(const QString &wanted) { return guard.claimOutput(url(wanted)).url.fileName(); }
    QString refusalOf(const QString &wanted) { return guard.claimOutput(url(wanted)).refusal; }
    void link(const QString &target, const QString &name) const
    {
        QVERIFY(QFile::link(scratch.path(target), scratch.path(name)));
    }
    void hardLink(const QString &target, const QString &name) const
    {
        QCOMPARE(::link(QFile::encodeName(scratch.path(target)).constData(),
                        QFile::encodeName(scratch.path(name)).constData()),
                 0);
    }

    /// The tool writes it, and it gets its name.
    bool publish(const QUrl &name, const QByteArray &content)
    {
        if (!guard.files().create(name, content))
            return false;
        const auto result = steps::publishNow(guard.workFolder(), guard.publicationsOf({name}));
        guard.published({name});
        return result.end == steps::PublishResult::End::Done;
    }
    QStringList hiddenNames() const
    {
        return QDir(scratch.path())
            .entryList({u".*"_s}, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    support::Scratch scratch;
    steps::OutputRegistry registry;
    OutputGuard guard;
};

} // namespace

class OutputGuardTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void freeNameIsTakenAsItIs()
    {
        Job job(WhenTaken::NextFreeName);
        const auto claim = job.guard.claimOutput(job.url(u"a.m4v"_s));
        QCOMPARE(claim.url, job.url(u"a.m4v"_s));
        QVERIFY(claim.refusal.isNull());
        QCOMPARE(job.scratch.shownNames(), QStringList()); // none that a person sees
    }

    void takenNameGetsTheNextNumber_data()
    {
        QTest::addColumn<QStringList>("standing");
        QTest::addColumn<QString>("wanted");
        QTest::addColumn<QString>("given");
        QTest::newRow("one") << QStringList{u"a.m4v"_s} << u"a.m4v"_s << u"a (2).m4v"_s;
        QTest::newRow("two") << QStringList{u"a.m4v"_s, u"a (2).m4v"_s} << u"a.m4v"_s << u"a (3).m4v"_s;
        QTest::newRow("a gap") << QStringList{u"a.m4v"_s, u"a (3).m4v"_s} << u"a.m4v"_s << u"a (2).m4v"_s;
        QTest::newRow("several dots")
            << QStringList{u"a.b.mkv.m4v"_s} << u"a.b.mkv.m4v"_s << u"a.b.mkv (2).m4v"_s;
        QTest::newRow("no extension") << QStringList{u"a"_s} << u"a"_s << u"a (2)"_s;
        QTest::newRow("number asked for")
            << QStringList{u"a (2).m4v"_s} << u"a (2).m4v"_s << u"a (2) (2).m4v"_s;
        QTest::newRow("other extension") << QStringList{u"a.mkv"_s} << u"a.m4v"_s << u"a.m4v"_s;
    }

    void takenNameGetsTheNextNumber()
    {
        QFETCH(QStringList, standing);
        QFETCH(QString, wanted);
        QFETCH(QString, given);
        Job job(WhenTaken::NextFreeName);
        for (const QString &name : standing)
            job.scratch.write(name, "old");
        QCOMPARE(job.nameFor(wanted), given);
        for (const QString &name : standing)
            QCOMPARE(job.scratch.read(name), QByteArray("old"));
    }

    void anythingThatStandsThereTakesTheName()
    {
        Job job(WhenTaken::NextFreeName);
        job.link(u"nowhere"_s, u"dangling.m4v"_s);
        QVERIFY(QDir(job.scratch.path()).mkdir(u"folder.m4v"_s));
        QCOMPARE(job.nameFor(u"dangling.m4v"_s), u"dangling (2).m4v"_s);
        QCOMPARE(job.nameFor(u"folder.m4v"_s), u"folder (2).m4v"_s);
    }

    void ownClaimsAreTakenInEverySpelling()
    {
        Job job(WhenTaken::NextFreeName);
        QVERIFY(QDir(job.scratch.path()).mkdir(u"real"_s));
        job.link(u"real"_s, u"link"_s);
        QCOMPARE(job.nameFor(u"real/a.m4v"_s), u"a.m4v"_s);
        QCOMPARE(job.nameFor(u"real/a.m4v"_s), u"a (2).m4v"_s);
        QCOMPARE(job.nameFor(u"real//a.m4v"_s), u"a (3).m4v"_s);
        QCOMPARE(job.nameFor(u"link/a.m4v"_s), u"a (4).m4v"_s);
    }

    void outputsAndInputsOfOtherJobsAreTaken()
    {
        Job job(WhenTaken::NextFreeName);
        OutputGuard other(job.registry, WhenTaken::NextFreeName);
        other.setInputs({job.url(u"in.m4v"_s)});
        other.claimOutput(job.url(u"out.m4v"_s));
        other.claimFree(job.url(u"out.log"_s));
        QCOMPARE(job.nameFor(u"in.m4v"_s), u"in (2).m4v"_s);
        QCOMPARE(job.nameFor(u"out.m4v"_s), u"out (2).m4v"_s);
        QCOMPARE(job.guard.claimFree(job.url(u"out.log"_s)).fileName(), u"out (2).log"_s);
    }

    void namesAreFreeAgainAfterReleaseAndAfterTheJob()
    {
        Job job(WhenTaken::Refuse);
        {
            OutputGuard other(job.registry, WhenTaken::Refuse);
            other.claimOutput(job.url(u"a.m4v"_s));
            QVERIFY(!job.refusalOf(u"a.m4v"_s).isNull());
            other.release();
            QVERIFY(!other.hasClaimed(job.url(u"a.m4v"_s)));
            QVERIFY(job.refusalOf(u"a.m4v"_s).isNull());
            other.claimOutput(job.url(u"b.m4v"_s));
        }
        QVERIFY(job.refusalOf(u"b.m4v"_s).isNull());
    }

    void refusedWhereAnythingStands()
    {
        Job job(WhenTaken::Refuse);
        job.scratch.write(u"a.m4v"_s, "old");
        job.link(u"nowhere"_s, u"b.m4v"_s);
        const auto claim = job.guard.claimOutput(job.url(u"a.m4v"_s));
        QCOMPARE(claim.refusal, u"The output %1 exists already, so nothing was started."_s.arg(
                                    job.scratch.path(u"a.m4v"_s)));
        QVERIFY(!job.guard.hasClaimed(claim.url));
        QVERIFY(!job.refusalOf(u"b.m4v"_s).isNull());
        QVERIFY(job.refusalOf(u"c.m4v"_s).isNull());
        QCOMPARE(job.scratch.read(u"a.m4v"_s), QByteArray("old"));
    }

    void refusedWhereAnotherJobOrOurselvesSpokeForIt_data()
    {
        QTest::addColumn<WhenTaken>("whenTaken");
        QTest::newRow("refuse") << WhenTaken::Refuse;
        QTest::newRow("replace") << WhenTaken::Replace;
    }

    void refusedWhereAnotherJobOrOurselvesSpokeForIt()
    {
        QFETCH(WhenTaken, whenTaken);
        Job job(whenTaken);
        OutputGuard other(job.registry, whenTaken);
        other.setInputs({job.url(u"in.m4v"_s)});
        other.claimOutput(job.url(u"out.m4v"_s));
        QVERIFY(job.refusalOf(u"in.m4v"_s).contains(u"belongs to another job"_s));
        QVERIFY(job.refusalOf(u"out.m4v"_s).contains(u"belongs to another job"_s));
        QVERIFY(job.refusalOf(u"own.m4v"_s).isNull());
        QVERIFY(!job.refusalOf(u"own.m4v"_s).isNull()); // two steps of one job
    }

    void inputIsRefusedHoweverItIsReached_data()
    {
        QTest::addColumn<QString>("wanted");
        QTest::newRow("by its name") << u"film.m4v"_s;
        QTest::newRow("by another spelling") << u"./film.m4v"_s;
        QTest::newRow("by two slashes") << u"/film.m4v"_s;
        QTest::newRow("by a link to it") << u"link.m4v"_s;
        QTest::newRow("by a hard link") << u"hard.m4v"_s;
        QTest::newRow("through a link to its folder") << u"folder/film.m4v"_s;
    }

    void inputIsRefusedHoweverItIsReached()
    {
        QFETCH(QString, wanted);
        for (const WhenTaken whenTaken : {WhenTaken::Refuse, WhenTaken::Replace}) {
            Job job(whenTaken);
            job.scratch.write(u"film.m4v"_s, "film");
            job.link(u"film.m4v"_s, u"link.m4v"_s);
            job.hardLink(u"film.m4v"_s, u"hard.m4v"_s);
            job.link(u"."_s, u"folder"_s);
            job.guard.setInputs({job.url(u"film.m4v"_s)});
            const auto claim = job.guard.claimOutput(job.url(wanted));
            QVERIFY2(claim.refusal.contains(u"one of the job's own sources"_s), qPrintable(claim.refusal));
            QVERIFY(job.guard.prepare(claim.url).isNull());
            QVERIFY(!job.guard.files().isOwn(claim.url));
            QVERIFY(!job.guard.files().remove(claim.url));
            QCOMPARE(job.scratch.read(u"film.m4v"_s), QByteArray("film"));
        }
    }

    void outputBesideItsSourceTakesAnotherName()
    {
        Job job(WhenTaken::NextFreeName);
        job.scratch.write(u"film.m4v"_s, "film");
        job.guard.setInputs({job.url(u"film.m4v"_s)});
        QCOMPARE(job.nameFor(u"film.m4v"_s), u"film (2).m4v"_s);
    }

    void logsAndIntermediateFilesNeverTakeAStandingName_data()
    {
        QTest::addColumn<WhenTaken>("whenTaken");
        QTest::newRow("next free name") << WhenTaken::NextFreeName;
        QTest::newRow("refuse") << WhenTaken::Refuse;
        QTest::newRow("replace") << WhenTaken::Replace;
    }

    void logsAndIntermediateFilesNeverTakeAStandingName()
    {
        QFETCH(WhenTaken, whenTaken);
        Job job(whenTaken);
        job.scratch.write(u"film.mkv"_s, "film");
        job.scratch.write(u"film.mkv.log"_s, "the user's");
        job.guard.setInputs({job.url(u"film.mkv"_s)});
        QCOMPARE(job.guard.claimFree(job.url(u"film.mkv.log"_s)), job.url(u"film.mkv (2).log"_s));
        QCOMPARE(job.guard.claimFree(job.url(u"film.mkv.log"_s)), job.url(u"film.mkv (3).log"_s));
        QCOMPARE(job.guard.claimFree(job.url(u"film.mkv"_s)), job.url(u"film (2).mkv"_s));
        QVERIFY(job.guard.files().create(job.url(u"film.mkv (2).log"_s)));
        QVERIFY(job.guard.files().isOwn(job.url(u"film.mkv (2).log"_s)));
        QVERIFY(!job.guard.files().isOwn(job.url(u"film.mkv.log"_s)));
        QVERIFY(!job.guard.files().isOwn(job.url(u"film.mkv"_s)));
        QVERIFY(!job.guard.files().isOwn(QUrl()));
    }

    void whatAToolWritesLiesInAHiddenFolderUntilItIsPublished()
    {
        Job job(WhenTaken::NextFreeName);
        const QUrl name = job.guard.claimOutput(job.url(u"50%d: @film*.m4v"_s)).url;
        QCOMPARE(job.guard.fileOf(name), name); // nothing is made yet
        QVERIFY(job.guard.prepare(name).isNull());
        const QString file = job.guard.fileOf(name).toLocalFile();
        static const QRegularExpression plain(u"^/\\.tessaray-[a-z0-9]{6}/[0-9]+\\.m4v$"_s);
        QVERIFY2(plain.match(file.mid(job.scratch.path().size())).hasMatch(), qPrintable(file));
        QCOMPARE(QFileInfo(QFileInfo(file).path()).permissions() & (QFile::ReadGroup | QFile::ReadOther),
                 QFile::Permissions());
        QVERIFY(job.publish(name, "new"));
        QCOMPARE(job.guard.fileOf(name), name);
        QCOMPARE(job.scratch.read(u"50%d: @film*.m4v"_s), QByteArray("new"));
        job.guard.release();
        QCOMPARE(job.hiddenNames(), QStringList());
    }

    void filesOfOneStemStayAPair()
    {
        Job job(WhenTaken::NextFreeName);
        const QUrl index = job.guard.claimOutput(job.url(u"a.b.idx"_s)).url;
        const QUrl pictures = job.guard.claimFree(job.url(u"a.b.sub"_s));
        const QUrl other = job.guard.claimFree(job.url(u"a.sub"_s));
        QVERIFY(job.guard.prepare(index).isNull());
        const QString stem = job.guard.fileOf(index).toLocalFile().chopped(3);
        QCOMPARE(job.guard.fileOf(pictures).toLocalFile(), stem + u"sub"_s);
        QVERIFY(job.guard.fileOf(other) != job.guard.fileOf(pictures));
    }

    void toolsTextsSpeakOfFinalNames()
    {
        Job job(WhenTaken::NextFreeName);
        const QUrl name = job.guard.claimOutput(job.url(u"film.m4v"_s)).url;
        QVERIFY(job.guard.prepare(name).isNull());
        const QString said = u"Can't open '%1': no"_s;
        QCOMPARE(job.guard.withFinalNames(said.arg(job.guard.fileOf(name).toLocalFile())),
                 said.arg(name.toLocalFile()));
    }

    void oldFileStaysUntilTheNewOneTakesItsPlace()
    {
        Job job(WhenTaken::Replace);
        job.scratch.write(u"a.m4v"_s, "old");
        QVERIFY(job.refusalOf(u"a.m4v"_s).isNull());
        QVERIFY(job.guard.prepare(job.url(u"a.m4v"_s)).isNull());
        QCOMPARE(job.scratch.read(u"a.m4v"_s), QByteArray("old"));
        QVERIFY(job.publish(job.url(u"a.m4v"_s), "new"));
        QCOMPARE(job.scratch.read(u"a.m4v"_s), QByteArray("new"));
    }

    void nothingChangesWhereNothingIsPublished()
    {
        Job job(WhenTaken::Replace);
        job.scratch.write(u"a.m4v"_s, "old");
        const QUrl name = job.guard.claimOutput(job.url(u"a.m4v"_s)).url;
        QVERIFY(job.guard.prepare(name).isNull());
        QVERIFY(job.guard.files().create(name, "half"));
        job.guard.release();
        QCOMPARE(job.scratch.read(u"a.m4v"_s), QByteArray("old"));
        QCOMPARE(job.scratch.shownNames(), QStringList{u"a.m4v"_s});
        QCOMPARE(job.hiddenNames(), QStringList());
    }

    void incompleteFilesGetFreeNames()
    {
        Job job(WhenTaken::Replace);
        job.scratch.write(u"a (incomplete).m4v"_s, "the user's");
        const QUrl name = job.guard.claimOutput(job.url(u"a.m4v"_s)).url;
        QVERIFY(job.guard.prepare(name).isNull());
        QVERIFY(job.guard.files().create(name, "half"));
        QCOMPARE(job.guard.keepIncomplete(name), job.url(u"a (incomplete) (2).m4v"_s));
        QCOMPARE(job.scratch.read(u"a (incomplete) (2).m4v"_s), QByteArray("half"));
        QCOMPARE(job.scratch.read(u"a (incomplete).m4v"_s), QByteArray("the user's"));
        QVERIFY(!QFileInfo::exists(name.toLocalFile()));
    }

    void secondTryIsWrittenInThePlaceOfTheFirst()
    {
        Job job(WhenTaken::NextFreeName);
        const QUrl name = job.guard.claimOutput(job.url(u"a.m4v"_s)).url;
        QVERIFY(job.guard.prepare(name).isNull());
        const QUrl file = job.guard.fileOf(name);
        QVERIFY(job.guard.files().create(name, "first try"));
        QVERIFY(job.guard.prepare(name).isNull());
        QCOMPARE(job.guard.fileOf(name), file);
        QVERIFY(!QFileInfo::exists(file.toLocalFile()));
    }

    void anotherProgramsClaimTakesTheName()
    {
        for (const WhenTaken whenTaken : {WhenTaken::NextFreeName, WhenTaken::Refuse, WhenTaken::Replace}) {
            Job job(whenTaken);
            steps::OutputRegistry ofTheOther;
            OutputGuard other(ofTheOther, WhenTaken::Refuse);
            QVERIFY(other.claimOutput(job.url(u"a.m4v"_s)).refusal.isNull());
            const auto claim = job.guard.claimOutput(job.url(u"a.m4v"_s));
            if (whenTaken == WhenTaken::NextFreeName)
                QCOMPARE(claim.url, job.url(u"a (2).m4v"_s));
            else
                QVERIFY2(claim.refusal.contains(u"is being made by another program"_s),
                         qPrintable(claim.refusal));
            other.release();
            QVERIFY(job.guard.claimOutput(job.url(u"b.m4v"_s)).refusal.isNull());
        }
    }

    void claimThatWasClearedAwayIsNoticedBeforePublishing()
    {
        Job job(WhenTaken::Refuse);
        const QUrl name = job.guard.claimOutput(job.url(u"a.m4v"_s)).url;
        QVERIFY(job.guard.problemWithPublishing({name}).isNull());
        QVERIFY(QFile::remove(steps::OutputClaims::claimOf(name).toLocalFile()));
        QVERIFY(job.guard.problemWithPublishing({name}).contains(u"another program"_s));
    }

    void aPlanMakesNothing()
    {
        Job job(WhenTaken::NextFreeName);
        job.guard.planOnly();
        const QUrl name = job.guard.claimOutput(job.url(u"a.m4v"_s)).url;
        QCOMPARE(name, job.url(u"a.m4v"_s));
        QVERIFY(!job.guard.prepare(name).isNull());
        QCOMPARE(job.hiddenNames(), QStringList());
    }

    void linkIsReplacedAndItsTargetLeftAlone()
    {
        Job job(WhenTaken::Replace);
        job.scratch.write(u"target.m4v"_s, "the user's");
        job.link(u"target.m4v"_s, u"a.m4v"_s);
        QVERIFY(job.refusalOf(u"a.m4v"_s).isNull());
        QVERIFY(job.guard.prepare(job.url(u"a.m4v"_s)).isNull());
        QVERIFY(job.publish(job.url(u"a.m4v"_s), "new"));
        QCOMPARE(job.scratch.read(u"target.m4v"_s), QByteArray("the user's"));
        QCOMPARE(job.scratch.read(u"a.m4v"_s), QByteArray("new"));
        QVERIFY(!QFileInfo(job.scratch.path(u"a.m4v"_s)).isSymLink());
    }

    void onlyOrdinaryFilesAreReplaced()
    {
        Job job(WhenTaken::Replace);
        QVERIFY(QDir(job.scratch.path()).mkdir(u"folder.m4v"_s));
        job.link(u"nowhere"_s, u"dangling.m4v"_s);
        QVERIFY(job.refusalOf(u"folder.m4v"_s).contains(u"no ordinary file"_s));
        QVERIFY(job.refusalOf(u"dangling.m4v"_s).contains(u"no ordinary file"_s));
    }

    void partsAreFoundUnderAnyName_data()
    {
        QTest::addColumn<QString>("stem");
        QTest::newRow("plain") << u"a"_s;
        QTest::newRow("begins with a colon") << u":a"_s; // no resource
        QTest::newRow("pattern characters") << u"a[b]*(c)"_s;
        QTest::newRow("begins with a dot") << u".a"_s;
    }

    void partsAreFoundUnderAnyName()
    {
        QFETCH(QString, stem);
        const support::Scratch scratch;
        const QUrl output = scratch.url(u"v/"_s + stem + u".mkv"_s);
        QList<QUrl> parts;
        for (const QString &number : {u"-001.mkv"_s, u"-002.mkv"_s}) {
            scratch.write(u"v/"_s + stem + number, "x");
            parts.append(scratch.url(u"v/"_s + stem + number));
        }
        scratch.write(u"v/"_s + stem + u"-x.mkv"_s, "x");
        QCOMPARE(steps::partsOf(output), parts);
    }

    void aNameThatWasNotClaimedIsLeftAlone()
    {
        for (const WhenTaken whenTaken : {WhenTaken::NextFreeName, WhenTaken::Refuse, WhenTaken::Replace}) {
            Job job(whenTaken);
            job.scratch.write(u"a.m4v"_s, "old");
            QVERIFY(job.guard.prepare(job.url(u"a.m4v"_s)).isNull());
            QVERIFY(job.guard.keep(job.url(u"a.m4v"_s)).isEmpty());
            QVERIFY(job.guard.keepIncomplete(job.url(u"a.m4v"_s)).isEmpty());
            QCOMPARE(job.scratch.shownNames(), QStringList{u"a.m4v"_s});
            QCOMPARE(job.hiddenNames(), QStringList());
        }
    }
};

TESSARAY_TEST(OutputGuardTest)
#include "OutputGuardTest.moc"
