#include "steps/Outcome.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using steps::Outcome;
using steps::Verdict;

class OutcomeTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void words()
    {
        QCOMPARE(Outcome().word(), u"unknown"_s);
        QCOMPARE(Outcome::ok().word(), u"ok"_s);
        QCOMPARE(Outcome::warnings(u"x"_s).word(), u"warnings"_s);
        QCOMPARE(Outcome::failed(u"x"_s).word(), u"failed"_s);
        QCOMPARE(Outcome::stopped().word(), u"stopped"_s);
    }

    void goodOutcomeSaysNothing()
    {
        QVERIFY(Outcome::ok().sentence.isEmpty());
        QCOMPARE(Outcome::stopped().sentence, u"Stopped."_s);
    }

    void worseVerdictWinsInEitherOrder()
    {
        const QList<Outcome> byBadness{Outcome(), Outcome::ok(), Outcome::warnings({}), Outcome::failed({}),
                                       Outcome::stopped()};
        for (qsizetype i = 0; i < byBadness.size(); ++i) {
            for (qsizetype j = 0; j < byBadness.size(); ++j)
                QCOMPARE(byBadness.at(i).joinedWith(byBadness.at(j)).verdict,
                         byBadness.at(std::max(i, j)).verdict);
        }
    }

    void bothSentencesAreKept()
    {
        const Outcome both = Outcome::warnings(u"One."_s).joinedWith(Outcome::failed(u"Two."_s));
        QCOMPARE(both.sentence, u"One. Two."_s);
        QCOMPARE(Outcome::ok().joinedWith(Outcome::failed(u"Two."_s)).sentence, u"Two."_s);
        QCOMPARE(Outcome::failed(u"One."_s).joinedWith(Outcome::ok()).sentence, u"One."_s);
    }

    void whatOthersTellBetterCanBeTakenBack()
    {
        const Outcome all = Outcome::warnings(u"One."_s)
                                .joinedWith(Outcome::damaged(u"The source ends early."_s))
                                .joinedWith(Outcome::warnings(u"Two."_s));
        QCOMPARE(all.sentence, u"One. The source ends early. Two."_s);
        QCOMPARE(all.withoutDamage().sentence, u"One. Two."_s);
        QCOMPARE(all.withoutDamage().verdict, Verdict::Warnings);
        QCOMPARE(Outcome::warnings(u"One."_s).withoutDamage().sentence, u"One."_s);
    }

    void sameSentenceIsSaidOnce()
    {
        const Outcome twice = Outcome::warnings(u"One."_s).joinedWith(Outcome::warnings(u"One."_s));
        QCOMPARE(twice.sentence, u"One."_s);
    }
};

TESSARAY_TEST(OutcomeTest)
#include "OutcomeTest.moc"
