#include "../Bench.h"
#include "Memory.h"
#include "WindowBench.h"

#include "window/WindowProgram.h"

#include <QApplication>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeView>

#include <algorithm>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace bench {

namespace {

constexpr int beatMs = 10;
constexpr double bytesPerMegabyte = 1e6;

/// Links, so that nothing is measured of the disk.
QList<QUrl> manyNames(const QString &film, const QTemporaryDir &folder, int count)
{
    QList<QUrl> urls;
    const QString first = folder.filePath(u"first.mkv"_s);
    QFile::copy(film, first);
    for (int i = 1; i <= count; ++i) {
        const QString name = folder.filePath(u"%1.mkv"_s.arg(i, 4, 10, QLatin1Char('0')));
        if (::link(QFile::encodeName(first).constData(), QFile::encodeName(name).constData()) != 0)
            return {};
        urls.append(QUrl::fromLocalFile(name));
    }
    return urls;
}

void dropOn(QWidget *target, const QList<QUrl> &urls)
{
    QMimeData data;
    data.setUrls(urls);
    const QPoint place = target->rect().center();
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    QDropEvent dropped(QPointF(place), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &dropped);
}

/// The times between beats, in milliseconds.
class Heart final : public QObject
{
public:
    Heart()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        connect(&m_timer, &QTimer::timeout, this, [this] { m_gaps.append(m_clock.restart()); });
    }
    void start()
    {
        m_clock.start();
        m_timer.start(beatMs);
    }
    QList<qint64> stop()
    {
        m_timer.stop();
        m_gaps.append(m_clock.elapsed());
        std::sort(m_gaps.begin(), m_gaps.end());
        return m_gaps;
    }

private:
    QTimer m_timer;
    QElapsedTimer m_clock;
    QList<qint64> m_gaps;
};

} // namespace

int drop(const QString &film, int count)
{
    const QTemporaryDir folder;
    qputenv("HOME", QFile::encodeName(folder.path()));
    app::Program::Options options;
    options.defaultsPath = folder.filePath(u"defaults.json"_s);
    window::WindowProgram program(options);
    program.start({});
    QApplication::processEvents();
    const QList<QUrl> urls = manyNames(film, folder, count);
    auto *table = program.mainWindow().findChild<QTreeView *>(u"ConvertTrackTable"_s);
    auto &open = program.delegate().openQueue();
    const double before = static_cast<double>(peakResidentBytes()) / bytesPerMegabyte;
    Heart heart;
    QElapsedTimer clock;
    clock.start();
    heart.start();
    qint64 firstShown = -1;
    dropOn(table->viewport(), urls);
    while (!urls.isEmpty() && open.openFileCount() < count) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        if (firstShown < 0 && table->isVisible() && table->model()->rowCount() > 0)
            firstShown = clock.elapsed();
    }
    while (program.delegate().intake().isBusy())
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QApplication::processEvents();
    const QList<qint64> gaps = heart.stop();
    say(u"drop: the first film is shown with its tracks after %1 ms (aim: 1000)"_s.arg(firstShown));
    say(u"drop: %1 files open after %2 s; %3 heartbeats, largest gap %4 ms, next %5 ms, median %6 ms; aim: "
        "at most 50 ms; peak memory %7 MB (%8 MB before), aim: below 150 MB"_s.arg(open.openFileCount())
            .arg(static_cast<double>(clock.elapsed()) / 1000, 0, 'f', 1)
            .arg(gaps.size())
            .arg(gaps.constLast())
            .arg(gaps.value(gaps.size() - 2))
            .arg(gaps.at(gaps.size() / 2))
            .arg(static_cast<double>(peakResidentBytes()) / bytesPerMegabyte, 0, 'f', 1)
            .arg(before, 0, 'f', 1));
    return open.openFileCount() == count ? 0 : 1;
}

} // namespace bench
