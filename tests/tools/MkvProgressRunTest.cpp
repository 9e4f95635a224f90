// What is told while mkvmerge works for seconds: percentages that move, and nothing that breaks a line.
#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/engines/MkvFaults.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

/// Every text in an announcement.
QStringList textsOf(const KXNotification &notification)
{
    QStringList texts{notification.object.toString()};
    for (const QVariant &value : notification.userInfo)
        texts.append(value.toString());
    for (const jobs::ProgressItem &item : notification.object.value<jobs::ProgressList>())
        texts << item.step << item.progress;
    return texts;
}

/// "3", "17" of "3%", "17%"; anything else fails the test.
QList<int> numbersIn(const QStringList &percentages)
{
    static const QRegularExpression percentage(u"^([0-9]{1,3})%$"_s);
    QList<int> numbers;
    for (const QString &text : percentages) {
        const auto match = percentage.match(text);
        if (match.hasMatch())
            numbers.append(match.captured(1).toInt());
        else
            QTest::qFail(qPrintable(text + u" is no percentage"_s), __FILE__, __LINE__);
    }
    return numbers;
}

} // namespace

class MkvProgressRunTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { manyPacketsBeginMkv(); }

    void init()
    {
        m_runs.reset();
        m_runs = std::make_unique<MkvRuns>();
        m_runs->splitSeconds = u"5400"_s;
        m_runs->partnerClip = manyPacketsBeginMkv();
        m_runs->soundClip = manyPacketsAac();
    }

    void percentagesMove_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("announcement"); ///< of the process object; none for a background line
        const QList<QStringList> processes{{mkv::join, u"Joining Videos"_s, u"monitorJoinUpdate"_s},
                                           {mkv::split, u"Splitting Videos"_s, u"monitorSplitUpdate"_s},
                                           {mkv::remux, u"Re-Muxing MKV"_s, u"monitorSplitUpdate"_s}};
        const QList<QStringList> lines{{mkv::remove, u"Muxing Step #1"_s, {}},
                                       {mkv::mux, u"Muxing Tracks Step #1"_s, {}},
                                       {mkv::editSplit, u"Muxing Step #1"_s, {}},
                                       {mkv::editRemux, u"Muxing Step #1"_s, {}}};
        for (const QStringList &row : drawn(processes, 1) + drawn(lines, 1))
            QTest::newRow(qPrintable(row.at(0))) << row.at(0) << row.at(1) << row.at(2);
    }

    void percentagesMove()
    {
        QFETCH(QString, operation);
        QFETCH(QString, label);
        QFETCH(QString, announcement);
        runOn(operation);
        QStringList shown = progressOf(label);
        QVERIFY(!shown.isEmpty());
        QCOMPARE(shown.takeLast(), u"Complete"_s);
        shown.removeAll(u"Joining"_s); // a word until the first number comes
        shown.removeAll(QString());
        compareMoving(numbersIn(shown));
        if (announcement.isNull())
            return;
        QStringList told;
        for (const KXNotification &notification : m_runs->record.named(announcement))
            told.append(notification.object.toString());
        compareMoving(numbersIn(told));
    }

    /// It looks for numbers where mkvmerge writes none.
    void aJoinInTheEditorShowsNoNumber()
    {
        runOn(mkv::editJoin);
        QCOMPARE(m_runs->record.count(u"monitorJoinUpdate"_s), 0);
        QStringList shown = progressOf(u"Joining Videos"_s);
        QCOMPARE(shown.takeLast(), u"Complete"_s);
        shown.removeDuplicates();
        QCOMPARE(shown, QStringList{u"0%"_s});
    }

private:
    void runOn(const QString &operation)
    {
        const bool isRaw = operation == mkv::mux;
        const auto job = m_runs->add(operation, m_runs->runs.film(isRaw ? rawH264() : manyPacketsMkv(),
                                                                  isRaw ? u"a.h264"_s : u"a.mkv"_s));
        QVERIFY(m_runs->run());
        compareVerdict(*job, steps::Verdict::Ok, {});
        for (const KXNotification &notification : m_runs->record.all())
            compareTexts(notification);
    }

    static void compareTexts(const KXNotification &notification)
    {
        for (const QString &text : textsOf(notification)) {
            QVERIFY2(!text.contains(u"%%"_s), qPrintable(notification.name + u": "_s + text));
            for (const QChar c : text)
                QVERIFY2(c.category() != QChar::Other_Control, qPrintable(notification.name + text));
        }
    }

    /// What the row showed under that label, and at its end.
    QStringList progressOf(const QString &label) const
    {
        QStringList shown;
        for (const KXNotification &notification : m_runs->record.named(u"progressUpdate"_s)) {
            for (const jobs::ProgressItem &item : notification.object.value<jobs::ProgressList>()) {
                const bool isOver = item.progress == u"checking"_s || item.progress == u"writing to disk"_s ||
                                    (!shown.isEmpty() && shown.constLast() == u"Complete"_s);
                if (item.step == label && !isOver)
                    shown.append(item.progress);
            }
        }
        return shown;
    }

    static void compareMoving(const QList<int> &numbers)
    {
        const QSet<int> distinct(numbers.begin(), numbers.end());
        QVERIFY2(distinct.size() >= 4, qPrintable(QString::number(distinct.size())));
        QVERIFY(std::is_sorted(numbers.begin(), numbers.end()));
        QVERIFY(numbers.constFirst() >= 0 && numbers.constLast() <= 100);
        QVERIFY(numbers.constLast() > 50);
    }

    std::unique_ptr<MkvRuns> m_runs;
};

TESSARAY_TEST(MkvProgressRunTest)
#include "MkvProgressRunTest.moc"
