// At twice the size everything is drawn anew: rows are twice as high to the pixel, no drawing is a picture
// that was blown up, and no text is cut that is whole at once the size.
#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/TestMain.h"
#include "window/QueueDriver.h"

#include <QAbstractButton>
#include <QHeaderView>
#include <QJsonObject>
#include <QLabel>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace driver;

namespace {

const QString roleName = u"--measure-window"_s;

QStringList cutTexts(QWidget &window)
{
    QStringList cut;
    for (const QLabel *label : window.findChildren<QLabel *>()) {
        const bool fits = label->wordWrap() || label->sizeHint().width() <= label->width();
        if (label->isVisible() && !label->text().isEmpty() && !fits)
            cut.append(label->text());
    }
    for (const QAbstractButton *button : window.findChildren<QAbstractButton *>()) {
        if (button->isVisible() && button->width() < button->minimumSizeHint().width())
            cut.append(button->text());
    }
    return cut;
}

QJsonArray placeOf(const QRect &rect)
{
    return {rect.x(), rect.y(), rect.width(), rect.height()};
}

/// What the test's own program does at the scale that it is started with: it opens a film and writes down
/// what it looks like, in pixels of the screen.
int measureWindow(const QString &film, const QString &folder)
{
    WindowFixture fixture;
    fixture.start();
    if (!fixture.open({film}))
        return 1;
    tick(fixture, {u"h264"_s, u"ac3"_s, u"srt"_s});
    QTest::qWait(100);
    const double ratio = fixture.window().devicePixelRatioF();
    auto *table = fixture.find<QTreeView>("ConvertTrackTable");
    QJsonArray heights{qint64(std::lround(table->header()->height() * ratio))};
    for (int row = 0; row < table->model()->rowCount(); ++row)
        heights.append(
            qint64(std::lround(table->visualRect(table->model()->index(row, 0)).height() * ratio)));
    for (const char *word : {"ActionBar", "ToolRow", "ConvertButton", "OpenButton", "AddButton"})
        heights.append(qint64(std::lround(fixture.find<QWidget>(word)->height() * ratio)));
    const QRect kind = table->visualRect(table->model()->index(0, 0));
    const QPoint corner = table->viewport()->mapTo(&fixture.window(), kind.topLeft());
    QJsonArray drawings{placeOf(QRect(corner + QPoint(40, 8), QSize(24, 20)))};
    for (const char *word : {"PreferencesButton", "OpenFilesQueueButton", "PlayButton"}) {
        const auto *button = fixture.find<QWidget>(word);
        drawings.append(placeOf(QRect(button->mapTo(&fixture.window(), QPoint(4, 4)), QSize(24, 20))));
    }
    const QJsonObject told{{u"drawings"_s, drawings},
                           {u"heights"_s, heights},
                           {u"cut"_s, QJsonArray::fromStringList(cutTexts(fixture.window()))}};
    support::writeContent(folder + u"/told.json"_s, QJsonDocument(told).toJson());
    return fixture.window().grab().save(folder + u"/window.png"_s) ? 0 : 2;
}

struct Measured
{
    QJsonObject told;
    QImage image;
};

/// In blocks of two by two pixels: how many are not of one colour. A picture that was blown up has none.
int fineBlocks(const QImage &image)
{
    int count = 0;
    for (int y = 0; y + 1 < image.height(); y += 2) {
        for (int x = 0; x + 1 < image.width(); x += 2) {
            const QRgb first = image.pixel(x, y);
            if (image.pixel(x + 1, y) != first || image.pixel(x, y + 1) != first ||
                image.pixel(x + 1, y + 1) != first)
                ++count;
        }
    }
    return count;
}

} // namespace

TESSARAY_ROLE("--measure-window", measureWindow(words.value(1), words.value(2)))

class SharpTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void twiceTheSizeIsTwiceAsFine()
    {
        const Measured once = measure(u"1"_s);
        const Measured twice = measure(u"2"_s);
        const QJsonArray low = once.told[u"heights"_s].toArray();
        const QJsonArray high = twice.told[u"heights"_s].toArray();
        QCOMPARE(low.size(), high.size());
        QVERIFY(low.size() >= 12);
        QCOMPARE(low.at(1).toInt(), 36);
        for (qsizetype i = 0; i < low.size(); ++i)
            QCOMPARE(high.at(i).toInt(), 2 * low.at(i).toInt());
        for (const QJsonValue &text : twice.told[u"cut"_s].toArray())
            QVERIFY2(once.told[u"cut"_s].toArray().contains(text), qPrintable(text.toString()));
        QCOMPARE(twice.image.size(), 2 * once.image.size());
        const QJsonArray drawings = once.told[u"drawings"_s].toArray();
        QCOMPARE(drawings.size(), 4);
        for (const QJsonValue &place : drawings) {
            const QRect shown(2 * place[0].toInt(), 2 * place[1].toInt(), 2 * place[2].toInt(),
                              2 * place[3].toInt());
            QVERIFY2(fineBlocks(twice.image.copy(shown)) > 12, qPrintable(QString::number(shown.x())));
        }
    }

private:
    Measured measure(const QString &scale)
    {
        const support::Scratch scratch;
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"QT_SCALE_FACTOR"_s, scale);
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedChannels);
        process.start(QCoreApplication::applicationFilePath(),
                      {roleName, support::fullMkv(), scratch.path()});
        process.waitForFinished(120000);
        return {QJsonDocument::fromJson(support::contentOf(scratch.path(u"told.json"_s))).object(),
                QImage(scratch.path(u"window.png"_s)).convertToFormat(QImage::Format_RGB32)};
    }
};

TESSARAY_TEST(SharpTest)
#include "SharpTest.moc"
