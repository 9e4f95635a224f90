#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

namespace jobs {

/// One step of a job as the queue shows it: its label, and "0%", "45%", a phase text or "Complete".
struct ProgressItem
{
    QString step;
    QString progress;

    bool isComplete() const { return progress == QStringLiteral("Complete"); }
    bool operator==(const ProgressItem &) const = default;
};

using ProgressList = QList<ProgressItem>;

/// A new item for the step at an index of a job's progress list.
struct ProgressUpdate
{
    qsizetype index = 0;
    ProgressItem item;
};

} // namespace jobs

Q_DECLARE_METATYPE(jobs::ProgressItem)
