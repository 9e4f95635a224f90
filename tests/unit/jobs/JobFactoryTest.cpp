#include "jobs/JobFactory.h"

#include "support/TestMain.h"
#include "support/jobs/JobFixture.h"
#include "support/jobs/TestJob.h"

#include <QTest>

using namespace Qt::StringLiterals;
using jobs::JobKind;
using support::JobFixture;

class JobFactoryTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void jobsAreMadeByTheirKind()
    {
        JobFixture fixture(JobFixture::Tools::Fake);
        jobs::JobFactory factory;
        factory.add<KXJob>(JobKind::Remux);
        QVERIFY(factory.knows(JobKind::Remux));
        const auto first = factory.make(JobKind::Remux, fixture.jobContext());
        const auto second = factory.make(JobKind::Remux, fixture.jobContext());
        QVERIFY(first && second && first != second);
    }

    void kindThatIsNotRegisteredIsUnknown()
    {
        JobFixture fixture(JobFixture::Tools::Fake);
        jobs::JobFactory factory;
        factory.add<KXJob>(JobKind::Remux);
        QVERIFY(!factory.knows(JobKind::Splitting));
        QVERIFY(!factory.make(JobKind::Splitting, fixture.jobContext()));
    }

    void laterMakerOfAKindWins()
    {
        JobFixture fixture(JobFixture::Tools::Fake);
        jobs::JobFactory factory;
        factory.add<KXJob>(JobKind::Remux);
        support::registerTestJob(factory, JobKind::Remux);
        QVERIFY(dynamic_cast<support::TestJob *>(factory.make(JobKind::Remux, fixture.jobContext()).get()) !=
                nullptr);
    }
};

TESSARAY_TEST(JobFactoryTest)
#include "JobFactoryTest.moc"
