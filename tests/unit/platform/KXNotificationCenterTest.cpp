#include "platform/KXNotificationCenter.h"
#include "support/TestMain.h"

#include <QTest>

#include <optional>

using namespace Qt::StringLiterals;

class KXNotificationCenterTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void carriesNameObjectAndUserInfo()
    {
        KXNotificationCenter center;
        KXNotification seen;
        const auto handle =
            center.subscribe(u"progressUpdate"_s, [&](const auto &notification) { seen = notification; });
        center.post(u"progressUpdate"_s, 7, {{u"stepName"_s, u"Pass 1"_s}});
        QCOMPARE(seen.name, u"progressUpdate"_s);
        QCOMPARE(seen.object, QVariant(7));
        QCOMPARE(seen.userInfo, QVariantMap({{u"stepName"_s, u"Pass 1"_s}}));
    }

    void callsObserversOfThatNameInTheirOrder()
    {
        KXNotificationCenter center;
        const auto first = center.subscribe(u"jobDone"_s, noting(u"first"_s));
        const auto other = center.subscribe(u"progressUpdate"_s, noting(u"other"_s));
        const auto second = center.subscribe(u"jobDone"_s, noting(u"second"_s));
        const auto third = center.subscribe(u"jobDone"_s, noting(u"third"_s));
        center.post(u"jobDone"_s);
        QCOMPARE(m_calls, QStringList({u"first"_s, u"second"_s, u"third"_s}));
        center.post(u"nobody listens"_s);
        QCOMPARE(m_calls.size(), 3);
    }

    void endsWithTheHandle()
    {
        KXNotificationCenter center;
        {
            const auto handle = center.subscribe(u"jobDone"_s, noting(u"scoped"_s));
            center.post(u"jobDone"_s);
        }
        center.post(u"jobDone"_s);
        QCOMPARE(m_calls, QStringList({u"scoped"_s}));
    }

    void endsWhenTold()
    {
        KXNotificationCenter center;
        auto handle = center.subscribe(u"jobDone"_s, noting(u"told"_s));
        handle.end();
        handle.end();
        center.post(u"jobDone"_s);
        QVERIFY(m_calls.isEmpty());
    }

    void anotherSubscriptionInTheSameHandleEndsTheOldOne()
    {
        KXNotificationCenter center;
        auto handle = center.subscribe(u"jobDone"_s, noting(u"old"_s));
        handle = center.subscribe(u"jobDone"_s, noting(u"new"_s));
        center.post(u"jobDone"_s);
        QCOMPARE(m_calls, QStringList({u"new"_s}));
    }

    void movesWithTheHandle()
    {
        KXNotificationCenter center;
        KXNotificationCenter::Subscription kept;
        {
            auto handle = center.subscribe(u"jobDone"_s, noting(u"moved"_s));
            kept = std::move(handle);
        }
        center.post(u"jobDone"_s);
        QCOMPARE(m_calls, QStringList({u"moved"_s}));
    }

    void observerEndedWhilePostingIsNotCalled()
    {
        KXNotificationCenter center;
        KXNotificationCenter::Subscription second;
        const auto first = center.subscribe(u"jobDone"_s, [&](const auto &) { second.end(); });
        second = center.subscribe(u"jobDone"_s, noting(u"second"_s));
        center.post(u"jobDone"_s);
        QVERIFY(m_calls.isEmpty());
    }

    void observerMayEndItself()
    {
        KXNotificationCenter center;
        KXNotificationCenter::Subscription handle;
        const auto text = std::make_shared<QString>(u"once"_s);
        handle = center.subscribe(u"jobDone"_s, [this, &handle, text](const auto &) {
            handle.end();
            m_calls.append(*text); // what the observer captured is still there
        });
        center.post(u"jobDone"_s);
        center.post(u"jobDone"_s);
        QCOMPARE(m_calls, QStringList({u"once"_s}));
    }

    void observerAddedWhilePostingIsCalledFromTheNextTimeOn()
    {
        KXNotificationCenter center;
        std::optional<KXNotificationCenter::Subscription> added;
        const auto adder = center.subscribe(u"jobDone"_s, [&](const auto &) {
            if (!added)
                added = center.subscribe(u"jobDone"_s, noting(u"added"_s));
        });
        center.post(u"jobDone"_s);
        QVERIFY(m_calls.isEmpty());
        center.post(u"jobDone"_s);
        QCOMPARE(m_calls, QStringList({u"added"_s}));
    }

    void postingWithinAnObserverWorks()
    {
        KXNotificationCenter center;
        const auto outer = center.subscribe(u"taskCompletion"_s, [&](const auto &notification) {
            m_calls.append(u"outer"_s);
            if (notification.object.toInt() == 1)
                center.post(u"taskCompletion"_s, 2);
        });
        const auto later = center.subscribe(u"taskCompletion"_s, [&](const auto &notification) {
            m_calls.append(QString::number(notification.object.toInt()));
        });
        center.post(u"taskCompletion"_s, 1);
        QCOMPARE(m_calls, QStringList({u"outer"_s, u"outer"_s, u"2"_s, u"1"_s}));
    }

    void handleMayOutliveTheCenter()
    {
        auto center = std::make_unique<KXNotificationCenter>();
        auto handle = center->subscribe(u"jobDone"_s, noting(u"never"_s));
        center.reset();
        handle.end();
        QVERIFY(m_calls.isEmpty());
    }

    void endedObserversDoNotPileUp()
    {
        KXNotificationCenter center;
        const auto captured = std::make_shared<int>(0);
        for (int i = 0; i < 100; ++i)
            center.subscribe(u"never posted"_s, [captured](const auto &) {}).end();
        const auto last = center.subscribe(u"never posted"_s, [](const auto &) {});
        QCOMPARE(captured.use_count(), 1L);
    }

    void cleanup() { m_calls.clear(); }

private:
    KXNotificationCenter::Observer noting(const QString &name)
    {
        return [this, name](const KXNotification &) { m_calls.append(name); };
    }

    QStringList m_calls;
};

TESSARAY_TEST(KXNotificationCenterTest)
#include "KXNotificationCenterTest.moc"
