#pragma once

#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/engines/MkvRuns.h"

#include <QFile>
#include <QHash>
#include <QTest>

namespace support {

/// One data row an operation, named after it; so many of them are drawn in the short form.
inline void rowsFor(const QStringList &operations, qsizetype count, int line = __builtin_LINE())
{
    QTest::addColumn<QString>("operation");
    for (const QString &operation : drawn(operations, count, line))
        QTest::newRow(qPrintable(operation)) << operation;
}

/// The row is completed and the outcome says how it went, and why.
inline void compareVerdict(const KXJob &job, steps::Verdict verdict, const QString &words)
{
    QCOMPARE(job.jobStatus(), QStringLiteral("Completed"));
    QVERIFY2(job.outcome().verdict == verdict, qPrintable(job.outcome().word() + job.outcome().sentence));
    QVERIFY2(job.outcome().sentence.contains(words), qPrintable(job.outcome().sentence));
    QCOMPARE(job.outputs().isEmpty(), verdict == steps::Verdict::Failed);
}

/// A job that meets a fault, with a healthy one behind it: that one must run, and every file that was there
/// before must be what it was.
class MkvFaultRun final
{
public:
    explicit MkvFaultRun(steps::WhenTaken taken = steps::WhenTaken::NextFreeName)
        : runs(taken)
    {
    }

    /// A copy of a clip whose content is looked at again after the run.
    QString film(const QString &clip, const QString &name)
    {
        const QString path = runs.runs.film(clip, name);
        before[path] = contentOf(path);
        return path;
    }

    /// The source that an operation starts from.
    QString sourceFor(const QString &operation) { return film(clipFor(operation), nameFor(operation)); }
    static QString clipFor(const QString &operation) { return operation == mkv::mux ? rawH264() : fullMkv(); }
    static QString nameFor(const QString &operation)
    {
        return operation == mkv::mux ? QStringLiteral("a.h264") : QStringLiteral("a.mkv");
    }
    QString output(const QString &operation) const { return runs.path(MkvRuns::outputName(operation)); }

    void addAnother() { another = runs.add(mkv::remux, film(longMkv(2), QStringLiteral("another.mkv"))); }

    void runWithAnother()
    {
        addAnother();
        QVERIFY(runs.run());
        compareAnotherAndFiles();
    }

    void compareAnotherAndFiles() const
    {
        compareVerdict(*another, steps::Verdict::Ok, {});
        QVERIFY(secondsOf(runs.path(QStringLiteral("another.mkv.remux.mkv"))) > 1.5);
        for (auto file = before.cbegin(); file != before.cend(); ++file)
            QVERIFY2(contentOf(file.key()) == file.value(), qPrintable(file.key()));
        QCOMPARE(runs.record.count(QStringLiteral("jobDone")), 2);
    }

    MkvRuns runs;
    JobPointer another;
    QHash<QString, QByteArray> before;
};

} // namespace support
