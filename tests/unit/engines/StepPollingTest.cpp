#include "engines/StepPolling.h"
#include "support/TestMain.h"
#include "support/jobs/JobFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

/// Answers its polls from a script, then "Complete".
class AnsweringStep final : public KXConverter
{
public:
    AnsweringStep(const steps::ConverterContext &context, const QStringList &answers)
        : KXConverter(context)
        , m_answers(answers)
    {
        setStepName(u"Muxing"_s);
        setDoShell_ID(u"1234"_s);
    }
    QString monitorConversion() override
    {
        return m_answers.isEmpty() ? u"Complete"_s : m_answers.takeFirst();
    }

private:
    QStringList m_answers;
};

/// Converters that are polled without a job; each cycle gets the items of the one before.
class PollingFixture final
{
public:
    ConverterPointer answering(const QStringList &answers)
    {
        return std::make_shared<AnsweringStep>(base.converterContext(guard), answers);
    }

    /// One text for each cycle, the last that of the cycle that said that all have finished.
    QStringList counted(const QList<ConverterPointer> &converters, jobs::ProgressList previous)
    {
        QStringList texts;
        for (bool finished = false; !finished && texts.size() < 100;) {
            jobs::ProgressList current;
            finished = counter.poll(converters, previous, current);
            texts << textOf(current);
            previous = current;
        }
        return texts;
    }
    static QString textOf(const jobs::ProgressList &list)
    {
        QStringList items;
        for (const jobs::ProgressItem &item : list)
            items << item.step + u'=' + item.progress;
        return items.join(u',');
    }

    JobFixture base{JobFixture::Tools::Fake};
    steps::OutputGuard guard{base.outputs, steps::WhenTaken::NextFreeName};
    engines::StepCounter counter{[](const KXConverter &converter, int step) {
        return u"%1 Step #%2"_s.arg(converter.stepName(), QString::number(step));
    }};
};

const jobs::ProgressList fresh{{u"Muxing"_s, u"0%"_s}};

} // namespace

class StepPollingTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFallenPercentageIsTheNextStep_data()
    {
        QTest::addColumn<QStringList>("answers");
        QTest::addColumn<QStringList>("texts");
        const QString one = u"Muxing Step #1="_s;
        const QString two = u"Muxing Step #2="_s;
        const QString three = u"Muxing Step #3="_s;
        QTest::newRow("complete at once") << QStringList() << QStringList{one + u"Complete"_s};
        QTest::newRow("rising") << QStringList{u"0%"_s, u"9%"_s, u"10%"_s, u"100%"_s}
                                << QStringList{one + u"0%"_s, one + u"9%"_s, one + u"10%"_s, one + u"100%"_s,
                                               one + u"Complete"_s};
        QTest::newRow("from 100 to 3") << QStringList{u"100%"_s, u"3%"_s}
                                       << QStringList{one + u"100%"_s, two + u"3%"_s, two + u"Complete"_s};
        QTest::newRow("the same twice") << QStringList{u"45%"_s, u"45%"_s}
                                        << QStringList{one + u"45%"_s, one + u"45%"_s, one + u"Complete"_s};
        QTest::newRow("by one") << QStringList{u"45%"_s, u"44%"_s}
                                << QStringList{one + u"45%"_s, two + u"44%"_s, two + u"Complete"_s};
        // numbers, not texts: "9%" is behind "100%" in the alphabet
        QTest::newRow("from 100 to 9 to 8")
            << QStringList{u"100%"_s, u"9%"_s, u"8%"_s}
            << QStringList{one + u"100%"_s, two + u"9%"_s, three + u"8%"_s, three + u"Complete"_s};
        QTest::newRow("an error keeps what was shown, and its number counts")
            << QStringList{u"80%"_s, u"error"_s, u"5%"_s}
            << QStringList{one + u"80%"_s, one + u"80%"_s, two + u"5%"_s, two + u"Complete"_s};
    }

    void aFallenPercentageIsTheNextStep()
    {
        QFETCH(QStringList, answers);
        QFETCH(QStringList, texts);
        PollingFixture fixture;
        QCOMPARE(fixture.counted({fixture.answering(answers)}, fresh), texts);
    }

    /// The list before the first poll has no number yet, and an error keeps it so.
    void anErrorAtFirstShowsTheFreshList()
    {
        PollingFixture fixture;
        QCOMPARE(fixture.counted({fixture.answering({u"error"_s, u"3%"_s})}, fresh),
                 QStringList({u"Muxing=0%"_s, u"Muxing Step #1=3%"_s, u"Muxing Step #1=Complete"_s}));
    }

    void anErrorWithoutAnItemBeforeIsEmpty()
    {
        PollingFixture fixture;
        QCOMPARE(fixture.counted({fixture.answering({u"error"_s})}, {}).first(), u"Muxing Step #1="_s);
    }

    void theCounterStartsAtOne()
    {
        PollingFixture fixture;
        QCOMPARE(fixture.counter.step(), 1);
        fixture.counted({fixture.answering({u"9%"_s, u"1%"_s})}, fresh);
        QCOMPARE(fixture.counter.step(), 2);
    }

    void aStepWithNothingToDoHasFinishedAndShowsNothing()
    {
        PollingFixture fixture;
        QCOMPARE(fixture.counted({nullptr}, {}), QStringList{QString()});
        QCOMPARE(fixture.counted({nullptr, fixture.answering({u"7%"_s})}, fresh),
                 QStringList({u"Muxing Step #1=7%"_s, u"Muxing Step #1=Complete"_s}));
    }

    void allHaveToFinish()
    {
        PollingFixture fixture;
        const QList<ConverterPointer> two{fixture.answering({}), fixture.answering({u"7%"_s, u"8%"_s})};
        jobs::ProgressList current;
        QVERIFY(!engines::pollSteps(two, {}, current));
        QCOMPARE(PollingFixture::textOf(current), u"Muxing=Complete,Muxing=7%"_s);
    }

    void withoutCountingTheLabelIsTheName()
    {
        PollingFixture fixture;
        const QList<ConverterPointer> one{fixture.answering({u"90%"_s, u"3%"_s, u"error"_s})};
        QStringList texts;
        jobs::ProgressList previous;
        for (bool finished = false; !finished && texts.size() < 100;) {
            jobs::ProgressList current;
            finished = engines::pollSteps(one, previous, current);
            texts << PollingFixture::textOf(current);
            previous = current;
        }
        QCOMPARE(texts, QStringList({u"Muxing=90%"_s, u"Muxing=3%"_s, u"Muxing=3%"_s, u"Muxing=Complete"_s}));
    }

    void aToolThatNeverRanIsNotWaitedFor()
    {
        PollingFixture fixture;
        const auto refused = fixture.answering({u"error"_s});
        refused->setDoShell_ID({});
        QCOMPARE(engines::polled(*refused), u"Complete"_s);
        QCOMPARE(engines::polled(*fixture.answering({u"error"_s})), u"error"_s);
    }
};

TESSARAY_TEST(StepPollingTest)
#include "StepPollingTest.moc"
