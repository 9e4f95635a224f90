// A plugin for measuring: it watches the program for its first painted window, prints the peak of its memory
// there and ends it.
#include "Memory.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGenericPlugin>
#include <QTimer>

#include <cstdio>
#include <unistd.h>

namespace {

class PaintWatch final : public QObject
{
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && watched->isWidgetType() && !m_seen) {
            m_seen = true;
            QTimer::singleShot(0, this, &PaintWatch::end); // when all of the window is on the screen
        }
        return false;
    }

private:
    static void end()
    {
        std::printf("painted %lld\n", static_cast<long long>(bench::peakResidentBytes()));
        std::fflush(stdout);
        ::_exit(0);
    }

    bool m_seen = false;
};

} // namespace

class FirstPaint final : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "firstpaint.json")

public:
    QObject *create(const QString &, const QString &) override
    {
        auto *watch = new PaintWatch(QCoreApplication::instance());
        QCoreApplication::instance()->installEventFilter(watch);
        return watch;
    }
};

#include "FirstPaint.moc"
