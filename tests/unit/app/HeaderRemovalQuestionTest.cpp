// The question that follows when gathered files use MKV header removal.
#include "app/FileIntake.h"

#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/app/AppFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using support::AppFixture;

namespace {

constexpr int reMux = 1000;
constexpr int cancelButton = 1001;

} // namespace

class HeaderRemovalQuestionTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<AppFixture>();
        m_fixture->controller().setCurrentTab(u"Edit Files"_s);
    }
    void cleanup() { m_fixture.reset(); }

    void isAskedOnceAndNamesTheFiles()
    {
        m_fixture->drop({plain(u"plain.mkv"_s), removed(u"one.mkv"_s), removed(u"two.mkv"_s)});
        QCOMPARE(m_fixture->alerts().shown().size(), 1);
        const platform::Alert &question = *m_fixture->alerts().shown().constFirst();
        QCOMPARE(question.buttons, (QStringList{u"Re-Mux"_s, u"Cancel"_s}));
        QVERIFY(question.informativeText.contains(u"one.mkv"_s));
        QVERIFY(question.informativeText.contains(u"two.mkv"_s));
        QVERIFY(!question.informativeText.contains(u"plain.mkv"_s));
        QCOMPARE(question.closesAfter.count(), 0); // a question stays
        QVERIFY(m_fixture->selection().headerRemovalFlag());
        QVERIFY(m_fixture->jobs().isEmpty());
    }

    void theFirstButtonQueuesTheFlaggedFilesOnly()
    {
        m_fixture->drop({removed(u"one.mkv"_s), plain(u"plain.mkv"_s), removed(u"two.mkv"_s)});
        QVERIFY(m_fixture->alerts().answer(reMux));
        QCOMPARE(m_fixture->jobs(), (QStringList{u"MKV Remux one.mkv"_s, u"MKV Remux two.mkv"_s}));
        QCOMPARE(m_fixture->selection().jobType(), u"MKV Remux"_s);
        QCOMPARE(m_fixture->selection().editFilesURLsList().size(), 3); // the list that is shown stays
    }

    void anyOtherAnswerDoesNothing_data()
    {
        QTest::addColumn<int>("answer");
        QTest::newRow("Cancel") << cancelButton;
        QTest::newRow("closed") << 0;
    }

    void anyOtherAnswerDoesNothing()
    {
        QFETCH(int, answer);
        m_fixture->drop({removed(u"one.mkv"_s)});
        QVERIFY(m_fixture->alerts().answer(answer));
        QVERIFY(m_fixture->jobs().isEmpty());
        QVERIFY(m_fixture->selection().jobType() != u"MKV Remux"_s);
    }

    void filesWithoutItAreNotAskedAbout()
    {
        m_fixture->drop({removed(u"one.mkv"_s)});
        m_fixture->drop({plain(u"plain.mkv"_s)});
        QCOMPARE(m_fixture->alerts().shown().size(), 1);
        QVERIFY(!m_fixture->selection().headerRemovalFlag());
    }

    void anAnswerIsAboutTheFilesThatItsQuestionNamed()
    {
        m_fixture->drop({removed(u"one.mkv"_s)});
        m_fixture->drop({removed(u"two.mkv"_s)});
        m_fixture->drop({plain(u"plain.mkv"_s)});
        QVERIFY(m_fixture->alerts().answer(reMux));
        QCOMPARE(m_fixture->jobs(), QStringList{u"MKV Remux one.mkv"_s});
        QVERIFY(m_fixture->alerts().answer(cancelButton));
        QCOMPARE(m_fixture->jobs().size(), 1);
    }

    void aVideoOnTheOtherTabIsNotAskedAbout()
    {
        m_fixture->controller().setCurrentTab(u"MKV"_s);
        m_fixture->drop({removed(u"one.mkv"_s)});
        QVERIFY(m_fixture->alerts().shown().isEmpty());
    }

private:
    QString plain(const QString &name) const { return m_fixture->film(support::fullMkv(), name); }
    QString removed(const QString &name) const { return m_fixture->film(support::headerRemovalMkv(), name); }

    std::unique_ptr<AppFixture> m_fixture;
};

TESSARAY_TEST(HeaderRemovalQuestionTest)
#include "HeaderRemovalQuestionTest.moc"
