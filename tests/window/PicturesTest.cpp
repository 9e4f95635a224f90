// Pictures from films: they come by themselves, and nothing waits for them.
#include "support/Clips.h"
#include "support/FakeTool.h"
#include "support/TestMain.h"
#include "window/QueueDriver.h"
#include "window/Thumbnails.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QSignalSpy>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace driver;
using support::waitFor;

class PicturesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFilmHasItsPictureInHeaderAndList()
    {
        WindowFixture fixture(WindowFixture::Pictures::Taken);
        fixture.start();
        QVERIFY(fixture.open(
            {fixture.film(support::fullMkv(), u"1.mkv"_s), fixture.film(support::textMp4(), u"2.mp4"_s)}));
        auto *header = fixture.find<QWidget>("FilmPicture");
        QTRY_VERIFY(coloursOf(header->grab().toImage()) > 50); // the drawing has few
        const auto *list = fixture.find<QListWidget>("OpenFilesQueuePanelTable");
        QTRY_VERIFY(hasPicture(*list, 0) && hasPicture(*list, 1));
        fixture.chooseTab(1);
        QVERIFY(fixture.open({fixture.path(u"1.mkv"_s)}));
        auto *files = fixture.find<QTreeView>("EditFilesTable");
        QTRY_VERIFY(
            coloursOf(files->viewport()->grab(files->visualRect(files->model()->index(0, 0))).toImage()) >
            50);
    }

    void withoutAPictureThereIsTheDrawing_data()
    {
        QTest::addColumn<QString>("script");
        QTest::newRow("ffmpeg fails") << u"exit 1"_s;
        QTest::newRow("ffmpeg prints no picture") << u"echo nothing"_s;
    }

    void withoutAPictureThereIsTheDrawing()
    {
        QFETCH(QString, script);
        window::Thumbnails::setSwitchedOff(false);
        support::Scratch scratch;
        window::Thumbnails pictures(nullptr);
        pictures.setTool(toolThat(scratch, script));
        const QUrl one = QUrl::fromLocalFile(u"/films/one.mkv"_s);
        const QUrl two = QUrl::fromLocalFile(u"/films/two.mkv"_s);
        QSignalSpy taken(&pictures, &window::Thumbnails::taken);
        QVERIFY(pictures.of(one, 10).isNull());
        QVERIFY(pictures.of(two, 10).isNull());
        QVERIFY(waitFor([&] { return scratch.read(u"asked"_s).count('\n') >= 2; })); // one after the other
        QTest::qWait(100);
        QVERIFY(taken.isEmpty());
        QVERIFY(pictures.of(one, 10).isNull());
        QCOMPARE(scratch.read(u"asked"_s).count('\n'), 2); // once for each
        QImage drawn(128, 72, QImage::Format_RGB32);
        drawn.fill(Qt::magenta);
        QPainter painter(&drawn);
        window::paintThumbnail(painter, drawn.rect(), pictures.of(one, 10));
        painter.end();
        QVERIFY(coloursOf(drawn) >= 2); // the film on its ground
    }

    void aToolThatHangsHoldsNothingUp()
    {
        window::Thumbnails::setSwitchedOff(false);
        support::Scratch scratch;
        window::Thumbnails pictures(nullptr);
        pictures.setTool(toolThat(scratch, u"exec sleep 600"_s));
        int beats = 0;
        QTimer heart;
        connect(&heart, &QTimer::timeout, this, [&] { ++beats; });
        heart.start(20);
        QVERIFY(pictures.of(QUrl::fromLocalFile(u"/films/one.mkv"_s), 10).isNull());
        QVERIFY(pictures.of(QUrl::fromLocalFile(u"/films/two.mkv"_s), 10).isNull());
        // The second one's turn comes once the first was given up.
        QVERIFY(waitFor([&] { return scratch.read(u"asked"_s).count('\n') >= 2; }));
        QVERIFY2(beats > 20, qPrintable(QString::number(beats)));
    }

private:
    static qsizetype coloursOf(const QImage &image)
    {
        QSet<QRgb> colours;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                colours.insert(image.pixel(x, y));
        }
        return colours.size();
    }

    static bool hasPicture(const QListWidget &list, int row)
    {
        return !list.item(row)->data(Qt::UserRole + 2).value<QImage>().isNull();
    }

    /// A tool that writes down that it was asked.
    static QString toolThat(const support::Scratch &scratch, const QString &script)
    {
        const QString path = scratch.path(u"tool"_s);
        support::installScript(path, u"echo asked >> \"%1\"\n%2"_s.arg(scratch.path(u"asked"_s), script));
        return path;
    }
};

TESSARAY_TEST(PicturesTest)
#include "PicturesTest.moc"
