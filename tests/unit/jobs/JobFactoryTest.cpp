#include "jobs/JobFactory.h"

#include "support/JobWorld.h"
#include "support/TestJob.h"

#include <QTest>

using namespace Qt::StringLiterals;
using support::JobWorld;

class JobFactoryTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void jobsAreMadeByTheNameOfTheirClass()
    {
        JobWorld world(JobWorld::Tools::Fake);
        jobs::JobFactory factory;
        factory.add<KXJob>();
        QVERIFY(factory.knows(u"KXJob"_s));
        const auto first = factory.make(u"KXJob"_s, world.jobContext());
        const auto second = factory.make(u"KXJob"_s, world.jobContext());
        QVERIFY(first && second && first != second);
    }

    void classThatNobodyRegisteredIsUnknown()
    {
        JobWorld world(JobWorld::Tools::Fake);
        jobs::JobFactory factory;
        factory.add<KXJob>();
        QVERIFY(!factory.knows(u"KXSplitVideosJob"_s));
        QVERIFY(!factory.make(u"KXSplitVideosJob"_s, world.jobContext()));
        QVERIFY(!factory.make({}, world.jobContext()));
    }

    void laterMakerOfAClassWins()
    {
        JobWorld world(JobWorld::Tools::Fake);
        jobs::JobFactory factory;
        factory.add<KXJob>();
        support::registerTestJob(factory, u"KXJob"_s);
        QVERIFY(dynamic_cast<support::TestJob *>(factory.make(u"KXJob"_s, world.jobContext()).get()) !=
                nullptr);
    }
};

QTEST_GUILESS_MAIN(JobFactoryTest)
#include "JobFactoryTest.moc"
