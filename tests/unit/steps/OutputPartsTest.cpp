// Outputs that a tool numbers in parts: which files count as parts, and that no part is ever harmed.
#include "steps/OutputGuard.h"
#include "steps/OutputRegistry.h"
#include "steps/Publisher.h"
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using steps::OutputForm;
using steps::OutputGuard;
using steps::WhenTaken;

namespace {

/// A folder, the registry of a program, and the guard of one job that splits.
struct Split
{
    explicit Split(WhenTaken whenTaken = WhenTaken::NextFreeName)
        : guard(registry, whenTaken)
    {
    }

    QUrl url(const QString &name) const { return scratch.url(name); }
    OutputGuard::Claim claim(const QString &wanted)
    {
        return guard.claimOutput(url(wanted), OutputForm::NumberedParts);
    }
    QStringList parts(const QString &output) const
    {
        QStringList names;
        for (const QUrl &part : steps::partsOf(url(output)))
            names << part.fileName();
        return names;
    }

    bool publish(const QList<QUrl> &parts)
    {
        const auto result = steps::publishNow(guard.workFolder(), guard.publicationsOf(parts));
        return result.end == steps::PublishResult::End::Done;
    }

    support::Scratch scratch;
    steps::OutputRegistry registry;
    OutputGuard guard;
};

} // namespace

class OutputPartsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void partsAreThoseOfThatNameInTheOrderOfTheirNumbers()
    {
        const Split split;
        for (const char *name :
             {"a.split-010.mkv", "a.split-002.mkv", "a.split-1000.mkv", "a.split-001.mkv", "a.split.mkv",
              "a.split-x.mkv", "a.split-.mkv", "a.split-001.mkv.log", "b.split-001.mkv", "aXsplit-003.mkv",
              "a.split-004.avi", "xa.split-005.mkv", "a.split (2)-001.mkv", "a.split-1-2.mkv"})
            split.scratch.write(QString::fromLatin1(name), "x");
        split.scratch.write(u"a.split-006.mkv/x"_s, "x"); // a folder
        QCOMPARE(split.parts(u"a.split.mkv"_s), QStringList({u"a.split-001.mkv"_s, u"a.split-002.mkv"_s,
                                                             u"a.split-010.mkv"_s, u"a.split-1000.mkv"_s}));
        QCOMPARE(split.parts(u"a.split (2).mkv"_s), QStringList{u"a.split (2)-001.mkv"_s});
        QVERIFY(split.parts(u"c.split.mkv"_s).isEmpty());
    }

    void partsOfTheSameNumberAllCount()
    {
        const Split split;
        split.scratch.write(u"a-1.mkv"_s, "x");
        split.scratch.write(u"a-001.mkv"_s, "x");
        split.scratch.write(u"a-99999999999999999999.mkv"_s, "x"); // no number that fits
        split.scratch.write(u"a-000.mkv"_s, "x");
        QStringList parts = split.parts(u"a.mkv"_s);
        parts.sort();
        QCOMPARE(parts, QStringList(
                            {u"a-000.mkv"_s, u"a-001.mkv"_s, u"a-1.mkv"_s, u"a-99999999999999999999.mkv"_s}));
    }

    void namesAreTakenToTheLetter_data()
    {
        QTest::addColumn<QString>("stem");
        QTest::newRow("pattern signs") << u"a+(b).[c]*^$ {2}|\\d"_s;
        QTest::newRow("a line feed") << u"a\nb"_s;
        QTest::newRow("not ASCII") << u"Élise – 日本"_s;
    }

    void namesAreTakenToTheLetter()
    {
        QFETCH(QString, stem);
        const Split split;
        split.scratch.write(stem + u"-001.mkv"_s, "x");
        QCOMPARE(split.parts(stem + u".mkv"_s), QStringList{stem + u"-001.mkv"_s});
    }

    void outputsWithoutAnExtensionHavePartsToo()
    {
        const Split split;
        split.scratch.write(u"film-001"_s, "x");
        split.scratch.write(u"film-001.mkv"_s, "x");
        QCOMPARE(split.parts(u"film"_s), QStringList{u"film-001"_s});
    }

    // Names for outputs in parts.

    void theNameItselfMayStandThere()
    {
        Split split;
        split.scratch.write(u"a.mkv"_s, "a stretch"); // never written by a split in parts
        const auto claim = split.claim(u"a.mkv"_s);
        QCOMPARE(claim.url, split.url(u"a.mkv"_s));
        QVERIFY(claim.refusal.isNull());
    }

    void oldPartsStayAndTheNextNameIsTaken()
    {
        Split split;
        split.scratch.write(u"a-017.mkv"_s, "an earlier part");
        split.scratch.write(u"a (2)-001.mkv"_s, "another one");
        const auto claim = split.claim(u"a.mkv"_s);
        QCOMPARE(claim.url, split.url(u"a (3).mkv"_s));
        QVERIFY(claim.refusal.isNull());
        QCOMPARE(split.scratch.read(u"a-017.mkv"_s), QByteArray("an earlier part"));
    }

    void oldPartsAreRefusedWhereNamesAreKept()
    {
        Split split(WhenTaken::Refuse);
        split.scratch.write(u"a-001.mkv"_s, "an earlier part");
        const auto claim = split.claim(u"a.mkv"_s);
        QCOMPARE(claim.refusal, u"The output %1 exists already, so nothing was started."_s.arg(
                                    split.scratch.path(u"a-001.mkv"_s)));
        Split other(WhenTaken::Refuse);
        QVERIFY(other.claim(u"a.mkv"_s).refusal.isNull());
    }

    void aPartThatIsASourceIsNeverReplaced()
    {
        Split split(WhenTaken::Replace);
        split.scratch.write(u"a-001.mkv"_s, "the source");
        split.guard.setInputs({split.url(u"a-001.mkv"_s)});
        QVERIFY(split.claim(u"a.mkv"_s).refusal.contains(u"one of the job's own sources"_s));
        QVERIFY(split.guard.prepare(split.url(u"a.mkv"_s)).isNull());
        QCOMPARE(split.scratch.read(u"a-001.mkv"_s), QByteArray("the source"));
    }

    void twoSplitsShareNoPlace()
    {
        Split split;
        QCOMPARE(split.claim(u"a.mkv"_s).url, split.url(u"a.mkv"_s));
        OutputGuard second(split.registry, WhenTaken::NextFreeName);
        QCOMPARE(second.claimOutput(split.url(u"a.mkv"_s), OutputForm::NumberedParts).url,
                 split.url(u"a (2).mkv"_s));
        OutputGuard third(split.registry, WhenTaken::Replace);
        QVERIFY(third.claimOutput(split.url(u"a.mkv"_s), OutputForm::NumberedParts)
                    .refusal.contains(u"belongs to another job"_s));
    }

    void itsPartsAreClaimedAndOtherNamesAreNot()
    {
        Split split;
        split.claim(u"a.mkv"_s);
        QVERIFY(split.guard.hasClaimed(split.url(u"a-001.mkv"_s)));
        QVERIFY(split.guard.hasClaimed(split.url(u"a-1234.mkv"_s)));
        QVERIFY(!split.guard.hasClaimed(split.url(u"a-x.mkv"_s)));
        QVERIFY(!split.guard.hasClaimed(split.url(u"b-001.mkv"_s)));
        QVERIFY(!split.guard.hasClaimed(split.url(u"folder/a-001.mkv"_s)));
        split.guard.release();
        QVERIFY(!split.guard.hasClaimed(split.url(u"a-001.mkv"_s)));
    }

    // Replacing.

    void partsLieAsideUntilTheyArePublished()
    {
        Split split;
        const QUrl output = split.claim(u"50%d.mkv"_s).url;
        QVERIFY(split.guard.prepare(output).isNull());
        const QString plain = split.guard.fileOf(output).toLocalFile().chopped(4);
        split.scratch.write(plain.mid(split.scratch.path().size() + 1) + u"-001.mkv"_s, "one");
        split.scratch.write(plain.mid(split.scratch.path().size() + 1) + u"-002.mkv"_s, "two");
        const QList<QUrl> parts{split.url(u"50%d-001.mkv"_s), split.url(u"50%d-002.mkv"_s)};
        QCOMPARE(split.guard.partsOf(output), parts);
        QVERIFY(split.parts(u"50%d.mkv"_s).isEmpty());
        QVERIFY(split.publish(parts));
        QCOMPARE(split.scratch.read(u"50%d-001.mkv"_s), QByteArray("one"));
        QCOMPARE(split.scratch.read(u"50%d-002.mkv"_s), QByteArray("two"));
    }

    void onlyOldPartsOfTheSameNameAreReplaced()
    {
        Split split(WhenTaken::Replace);
        for (const QString &name : {u"a-001.mkv"_s, u"a-002.mkv"_s, u"a-1.mkv"_s})
            split.scratch.write(name, "old");
        const QUrl output = split.claim(u"a.mkv"_s).url;
        QVERIFY(split.guard.prepare(output).isNull());
        QVERIFY(split.guard.files().create(split.url(u"a-001.mkv"_s), "new"));
        QCOMPARE(split.scratch.read(u"a-001.mkv"_s), QByteArray("old"));
        QVERIFY(split.publish({split.url(u"a-001.mkv"_s)}));
        QCOMPARE(split.scratch.shownNames(), QStringList({u"a-001.mkv"_s, u"a-002.mkv"_s, u"a-1.mkv"_s}));
        QCOMPARE(split.scratch.read(u"a-001.mkv"_s), QByteArray("new"));
        QCOMPARE(split.scratch.read(u"a-002.mkv"_s), QByteArray("old"));
    }
};

TESSARAY_TEST(OutputPartsTest)
#include "OutputPartsTest.moc"
