// Many files at once, hundreds in the long form: the window goes on answering, says how far it is, and can be
// stopped.
#include "support/Clips.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "window/QueueDriver.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QTimer>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace driver;
using support::waitFor;

class ManyFilesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<WindowFixture>();
        m_fixture->start();
    }
    void cleanup() { m_fixture.reset(); }

    void theWindowAnswersWhileFilesAreProbed()
    {
        const QStringList films = manyFilms(count);
        QTimer heart;
        QElapsedTimer clock;
        qint64 largest = 0;
        int beats = 0;
        connect(&heart, &QTimer::timeout, this, [&] {
            if (!m_fixture->delegate().intake().isBusy())
                return;
            ++beats;
            largest = std::max(largest, clock.restart());
        });
        QStringList lines;
        connect(&m_fixture->delegate().intake(), &app::FileIntake::probing, this,
                [&] { lines.append(m_fixture->find<QLabel>("ProbingText")->text()); });
        clock.start();
        heart.start(20);
        QVERIFY(m_fixture->drop("ConvertTrackTable", films));
        QVERIFY(
            waitFor([this] { return m_fixture->delegate().openQueue().openFileCount() == count; }, 500000));
        heart.stop();
        qInfo("%d heartbeats while files were probed, the largest gap was %lld ms", beats, largest);
        QVERIFY(beats >= count); // a probe takes longer than a beat
        QCOMPARE(m_fixture->delegate().openQueue().openFileCount(), count);
        QVERIFY2(lines.contains(u"Opening %1 of %1: %2.mkv"_s.arg(count).arg(count, 3, 10, QLatin1Char('0'))),
                 qPrintable(lines.value(lines.size() - 1)));
        QVERIFY(lines.contains(u"Opening 1 of %1: 001.mkv"_s.arg(count)));
        QTRY_VERIFY(!m_fixture->find<QLabel>("ProbingText")->isVisible());
        QTRY_COMPARE(m_fixture->find<QLabel>("ConvertFileField")->text(), films.constFirst());
    }

    void stopKeepsWhatIsProbed()
    {
        const QStringList films = manyFilms(count);
        auto *text = m_fixture->find<QLabel>("ProbingText");
        bool stopped = false;
        bool couldOpen = true;
        QTimer person; // looks at the line and presses the button, while the program is at work
        connect(&person, &QTimer::timeout, this, [&] {
            if (stopped || !text->isVisible() || !text->text().startsWith(u"Opening 6 of "_s))
                return;
            stopped = true;
            couldOpen = m_fixture->isEnabled("OpenButton");
            m_fixture->click("ProbingStopButton");
        });
        person.start(5);
        QVERIFY(m_fixture->drop("ConvertTrackTable", films));
        QVERIFY(waitFor([&] { return stopped && !m_fixture->delegate().intake().isBusy(); }, 200000));
        QVERIFY(!couldOpen); // one thing after the other
        const int open = m_fixture->delegate().openQueue().openFileCount();
        QVERIFY2(open >= 5 && open < 20, qPrintable(QString::number(open)));
        QTRY_VERIFY(!text->isVisible());
        QTRY_COMPARE(m_fixture->find<QLabel>("ConvertFileField")->text(), films.constFirst());
        QTRY_VERIFY(m_fixture->isEnabled("OpenFilesQueueButton"));
        QVERIFY(!m_fixture->hasAlert());
    }

private:
    /// The same small film under many names.
    QStringList manyFilms(int films)
    {
        const QString film = m_fixture->film(support::longMkv(2), u"001.mkv"_s);
        QStringList paths{film};
        for (int i = 2; i <= films; ++i) {
            const QString name = m_fixture->path(u"%1.mkv"_s.arg(i, 3, 10, QLatin1Char('0')));
            if (::link(QFile::encodeName(film).constData(), QFile::encodeName(name).constData()) != 0)
                qFatal("A film can't be linked.");
            paths.append(name);
        }
        return paths;
    }

    const int count = support::times(300, 40);
    std::unique_ptr<WindowFixture> m_fixture;
};

TESSARAY_TEST(ManyFilesTest)
#include "ManyFilesTest.moc"
