// The question that follows when gathered files use MKV header removal.
#include "app/FileIntake.h"

#include "support/AppDesk.h"
#include "support/Clips.h"

#include <QTest>

using namespace Qt::StringLiterals;
using support::AppDesk;

namespace {

constexpr int reMux = 1000;
constexpr int cancel = 1001;

} // namespace

class HeaderRemovalQuestionTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_desk = std::make_unique<AppDesk>();
        m_desk->controller().setCurrentTab(u"Edit Files"_s);
    }
    void cleanup() { m_desk.reset(); }

    void isAskedOnceAndNamesTheFiles()
    {
        m_desk->drop({plain(u"plain.mkv"_s), removed(u"one.mkv"_s), removed(u"two.mkv"_s)});
        QCOMPARE(m_desk->alerts().shown().size(), 1);
        const platform::Alert &question = *m_desk->alerts().shown().constFirst();
        QCOMPARE(question.buttons, (QStringList{u"Re-Mux"_s, u"Cancel"_s}));
        QVERIFY(question.informativeText.contains(u"one.mkv"_s));
        QVERIFY(question.informativeText.contains(u"two.mkv"_s));
        QVERIFY(!question.informativeText.contains(u"plain.mkv"_s));
        QCOMPARE(question.closesAfter.count(), 0); // a question stays
        QVERIFY(m_desk->selection().headerRemovalFlag());
        QVERIFY(m_desk->jobs().isEmpty());
    }

    void theFirstButtonQueuesTheFlaggedFilesOnly()
    {
        m_desk->drop({removed(u"one.mkv"_s), plain(u"plain.mkv"_s), removed(u"two.mkv"_s)});
        QVERIFY(m_desk->alerts().answer(reMux));
        QCOMPARE(m_desk->jobs(), (QStringList{u"MKV Remux one.mkv"_s, u"MKV Remux two.mkv"_s}));
        QCOMPARE(m_desk->selection().jobType(), u"MKV Remux"_s);
        QCOMPARE(m_desk->selection().editFilesURLsList().size(), 3); // the list that is shown stays
    }

    void anyOtherAnswerDoesNothing_data()
    {
        QTest::addColumn<int>("answer");
        QTest::newRow("Cancel") << cancel;
        QTest::newRow("closed") << 0;
    }

    void anyOtherAnswerDoesNothing()
    {
        QFETCH(int, answer);
        m_desk->drop({removed(u"one.mkv"_s)});
        QVERIFY(m_desk->alerts().answer(answer));
        QVERIFY(m_desk->jobs().isEmpty());
        QVERIFY(m_desk->selection().jobType() != u"MKV Remux"_s);
    }

    void filesWithoutItAreNotAskedAbout()
    {
        m_desk->drop({removed(u"one.mkv"_s)});
        m_desk->drop({plain(u"plain.mkv"_s)});
        QCOMPARE(m_desk->alerts().shown().size(), 1);
        QVERIFY(!m_desk->selection().headerRemovalFlag());
    }

    void anAnswerIsAboutTheFilesThatItsQuestionNamed()
    {
        m_desk->drop({removed(u"one.mkv"_s)});
        m_desk->drop({removed(u"two.mkv"_s)});
        m_desk->drop({plain(u"plain.mkv"_s)});
        QVERIFY(m_desk->alerts().answer(reMux));
        QCOMPARE(m_desk->jobs(), QStringList{u"MKV Remux one.mkv"_s});
        QVERIFY(m_desk->alerts().answer(cancel));
        QCOMPARE(m_desk->jobs().size(), 1);
    }

    void aVideoOnTheOtherTabIsNotAskedAbout()
    {
        m_desk->controller().setCurrentTab(u"MKV"_s);
        m_desk->drop({removed(u"one.mkv"_s)});
        QVERIFY(m_desk->alerts().shown().isEmpty());
    }

private:
    QString plain(const QString &name) const { return m_desk->film(support::fullMkv(), name); }
    QString removed(const QString &name) const { return m_desk->film(support::headerRemovalMkv(), name); }

    std::unique_ptr<AppDesk> m_desk;
};

QTEST_GUILESS_MAIN(HeaderRemovalQuestionTest)
#include "HeaderRemovalQuestionTest.moc"
