#include "../Bench.h"
#include "WindowBench.h"

#include "window/WindowProgram.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QTemporaryDir>
#include <QTreeView>
#include <QWheelEvent>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

constexpr int updates = 500;
constexpr int wheelSteps = 200;
constexpr int notch = 120;
constexpr int warmUp = 20;
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
    auto *table = program.mainWindow().findChild<QTreeView *>(u"QueueTable"_s);
    QApplication::processEvents();
    Painted painted(table);
    int resets = 0;
    QObject::connect(table->model(), &QAbstractItemModel::modelReset, table, [&resets] { ++resets; });
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

int wheel(int count)
{
    const QTemporaryDir folder;
    app::Program::Options options;
    options.defaultsPath = folder.filePath(u"defaults.json"_s);
    window::WindowProgram program(options);
    program.start({});
    fill(program.delegate().program().queue(), count);
    auto *table = program.mainWindow().findChild<QTreeView *>(u"QueueTable"_s);
    for (int i = 0; i < warmUp; ++i)
        QApplication::processEvents();
    QList<double> times;
    for (int i = 0; i < wheelSteps; ++i) {
        const int direction = i < wheelSteps / 2 ? -1 : 1;
        QWheelEvent turned(QPointF(50, 50), table->viewport()->mapToGlobal(QPointF(50, 50)), {},
                           QPoint(0, direction * notch), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                           false);
        times.append(milliseconds * seconds([&] {
                         QApplication::sendEvent(table->viewport(), &turned);
                         table->viewport()->repaint();
                     }));
    }
    std::sort(times.begin(), times.end());
    say(u"wheel: a step over %1 rows until it is painted: median %2 ms, 19 of 20 within %3 ms (aim: 16 ms), "
        u"most "
        "%4 ms"_s.arg(count)
            .arg(median(times), 0, 'f', 2)
            .arg(times.at(times.size() * 19 / 20), 0, 'f', 2)
            .arg(times.constLast(), 0, 'f', 2));
    return 0;
}

} // namespace bench
