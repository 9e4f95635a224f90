#include "jobs/JobFactory.h"

#include "support/TestMain.h"
#include "support/jobs/JobFixture.h"
#include "support/jobs/TestJob.h"

#include <QTest>

using namespace Qt::StringLiterals;
using support::JobFixture;

class JobFactoryTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void jobsAreMadeByTheNameOfTheirClass()
    {
        JobFixture fixture(JobFixture::Tools::Fake);
        jobs::JobFactory factory;
        factory.add<KXJob>();
        QVERIFY(factory.knows(u"KXJob"_s));
        const auto first = factory.make(u"KXJob"_s, fixture.jobContext());
        const auto second = factory.make(u"KXJob"_s, fixture.jobContext());
        QVERIFY(first && second && first != second);
    }

    void classThatNobodyRegisteredIsUnknown()
    {
        JobFixture fixture(JobFixture::Tools::Fake);
        jobs::JobFactory factory;
        factory.add<KXJob>();
        QVERIFY(!factory.knows(u"KXSplitVideosJob"_s));
        QVERIFY(!factory.make(u"KXSplitVideosJob"_s, fixture.jobContext()));
        QVERIFY(!factory.make({}, fixture.jobContext()));
    }

    void laterMakerOfAClassWins()
    {
        JobFixture fixture(JobFixture::Tools::Fake);
        jobs::JobFactory factory;
        factory.add<KXJob>();
        support::registerTestJob(factory, u"KXJob"_s);
        QVERIFY(dynamic_cast<support::TestJob *>(factory.make(u"KXJob"_s, fixture.jobContext()).get()) !=
                nullptr);
    }
};

TESSARAY_TEST(JobFactoryTest)
#include "JobFactoryTest.moc"
