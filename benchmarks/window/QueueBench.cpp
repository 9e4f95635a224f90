#include "../Bench.h"
#include "WindowBench.h"

#include "window/WindowProgram.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QTemporaryDir>
#include <QTreeView>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

constexpr int updates = 500;
constexpr double milliseconds = 1000;

/// Counts what must happen, and what must not.
class Painted final : public QObject
{
public:
    explicit Painted(QTreeView *table) { table->viewport()->installEventFilter(this); }
    int paints = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

void fill(KXQueueController &queue, int count)
{
    for (int i = 0; i < count; ++i) {
        const auto selection = std::make_shared<KXSelection>();
        selection->setJobType(u"MKV Remux"_s);
        selection->setEditFilesURLsList({QUrl::fromLocalFile(u"/films/film number %1.mkv"_s.arg(i))});
        queue.addToQueue(selection);
    }
    for (const JobPointer &job : queue.qJobList()) // none is to be started
        job->setJobStatus(u"Running"_s);
}

} // namespace

int queue(int count)
{
    const QTemporaryDir folder;
    app::Program::Options options;
    options.defaultsPath = folder.filePath(u"defaults.json"_s);
    window::WindowProgram program(options);
    program.start({});
    auto &waiting = program.delegate().program().queue();
    const double filling = seconds([&] { fill(waiting, count); });
    auto *table = program.mainWindow().findChild<QTreeView *>(u"QueueJobTable"_s);
    QApplication::processEvents();
    Painted painted(table);
    int resets = 0;
    for (const auto *word : {"QueueTable", "QueueJobTable"}) {
        const auto *model = program.mainWindow().findChild<QTreeView *>(QString::fromLatin1(word))->model();
        QObject::connect(model, &QAbstractItemModel::modelReset, table, [&resets] { ++resets; });
    }
    auto &notifications = program.delegate().program().notifications();
    QList<double> times;
    int unpainted = 0;
    for (int i = 0; i <= updates; ++i) {
        const jobs::ProgressList list{{u"Remuxing"_s, u"%1%"_s.arg(i % 100)}};
        const int before = painted.paints;
        const double taken = seconds([&] {
            notifications.post(u"progressUpdate"_s, QVariant::fromValue(list));
            QApplication::processEvents();
        });
        unpainted += painted.paints == before ? 1 : 0;
        if (i > 0) // the first one brings the row
            times.append(taken * milliseconds);
    }
    say(u"queue: %1 jobs added in %2 ms; a progress update until it is painted: median %3 ms, most %4 ms; "
        u"aim: "
        "below 2 ms; %5 of %6 not painted, %7 model resets"_s.arg(waiting.qJobList().size())
            .arg(filling * milliseconds, 0, 'f', 0)
            .arg(median(times), 0, 'f', 3)
            .arg(*std::max_element(times.cbegin(), times.cend()), 0, 'f', 3)
            .arg(unpainted)
            .arg(updates + 1)
            .arg(resets));
    return 0;
}

} // namespace bench
