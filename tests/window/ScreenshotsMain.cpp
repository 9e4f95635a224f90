// Takes pictures of the windows and sheets in the states that people see, for the documentation and to be
// looked at: ScreenshotsMain FOLDER light|dark. The scale is that of QT_SCALE_FACTOR, the style that of
// TESSARAY_STYLE; -reverse turns the layout from right to left, QT_FONT_DPI makes the text larger.
#include "platform/KeeperProcess.h"
#include "summary/JobLook.h"
#include "support/Clips.h"
#include "support/Waiting.h"
#include "window/AppStyle.h"
#include "window/Theme.h"
#include "window/WindowFixture.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFrame>
#include <QImage>
#include <QListWidget>
#include <QPalette>
#include <QStyleFactory>
#include <QTest>

using namespace Qt::StringLiterals;
using support::waitFor;

namespace {

class Photographer final
{
public:
    Photographer(const QString &folder, const QString &look)
        : m_folder(folder)
        , m_look(look)
    {
        QDir().mkpath(folder);
    }

    void take(QWidget &widget, const QString &name) const
    {
        QTest::qWait(200);
        const QString scale = qEnvironmentVariable("QT_SCALE_FACTOR", u"1"_s);
        const QString path = u"%1/%2-%3-%4x.png"_s.arg(m_folder, name, m_look, scale);
        if (!widget.grab().save(path))
            qFatal("%s could not be written.", qPrintable(path));
    }

private:
    QString m_folder;
    QString m_look;
};

/// An option is hit at its button, not in the middle of its row.
void choose(WindowFixture &fixture, const char *option)
{
    auto *button = fixture.find<QAbstractButton>(option);
    QTest::mouseClick(button, Qt::LeftButton, Qt::NoModifier, QPoint(8, button->height() / 2));
    QTest::qWait(50);
}

/// Until the film in front has its picture.
void waitForPicture(WindowFixture &fixture)
{
    const QListWidget *list = fixture.find<QListWidget>("OpenFilesQueuePanelTable");
    waitFor(
        [&] {
            for (int row = 0; row < list->count(); ++row) {
                if (list->item(row)->data(Qt::UserRole + 2).value<QImage>().isNull())
                    return false;
            }
            return list->count() > 0;
        },
        10000);
}

void takeFiles(const Photographer &photographer)
{
    WindowFixture fixture(WindowFixture::Pictures::Taken);
    fixture.start();
    photographer.take(fixture.window(), u"empty"_s);
    fixture.open({fixture.film(support::fullMkv(), u"Holiday by the sea.mkv"_s)});
    waitForPicture(fixture);
    photographer.take(fixture.window(), u"one-file"_s);
    for (const int row : {0, 3, 4})
        fixture.tick(row);
    choose(fixture, "TheSubtitleMatrix0");
    photographer.take(fixture.window(), u"red-options"_s);
    for (const QSize &size : {QSize(1024, 700), QSize(800, 600), QSize(1920, 1080)}) {
        fixture.window().resize(size);
        photographer.take(fixture.window(), u"film-%1x%2"_s.arg(size.width()).arg(size.height()));
    }
    fixture.window().resize(1280, 800);
    fixture.chooseTab(1);
    fixture.open({fixture.film(support::longMkv(8), u"Lighthouse part 1.mkv"_s),
                  fixture.film(support::longMkv(20), u"Lighthouse part 2.mkv"_s),
                  fixture.film(support::fullMkv(), u"Lighthouse extra.mkv"_s)});
    QTest::qWait(2000);
    photographer.take(fixture.window(), u"edit-files"_s);
}

void takeQueue(const Photographer &photographer)
{
    WindowFixture fixture(WindowFixture::Pictures::Taken);
    fixture.start();
    fixture.open({fixture.film(support::film1920(), u"Holiday by the sea.mkv"_s),
                  fixture.film(support::fullMkv(), u"Birthday.mkv"_s),
                  fixture.film(support::textMp4(), u"Concert.mp4"_s)});
    waitForPicture(fixture);
    photographer.take(fixture.window(), u"several-files"_s);
    fixture.pick("PresetSelectionsPopUp", u"First Track"_s);
    fixture.click("SeasonButton");
    photographer.take(fixture.window(), u"season"_s);
    fixture.click("CloseSeasonButton");
    choose(fixture, "TheVideoMatrix2");
    fixture.click("ConvertButton");
    waitFor([&] { return fixture.queue().qJobList().size() >= 3; });
    waitFor(
        [&] {
            const QString progress = fixture.queue().jobProgressList().value(0).progress;
            return progress.startsWith(u"Pass #1"_s) && summary::percentageOf(progress) > 30;
        },
        20000);
    photographer.take(fixture.window(), u"queue"_s);
    for (const QSize &size : {QSize(1024, 700), QSize(800, 600), QSize(1920, 1080)}) {
        fixture.window().resize(size);
        photographer.take(fixture.window(), u"queue-%1x%2"_s.arg(size.width()).arg(size.height()));
    }
}

template <typename Open>
void takeSheet(const Photographer &photographer, const QString &name, Open open)
{
    WindowFixture fixture;
    fixture.start();
    open(fixture);
    QWidget *sheet = nullptr;
    if (!waitFor([&] { return (sheet = QApplication::activeModalWidget()) != nullptr; }))
        qFatal("No sheet came.");
    if (auto *add = sheet->findChild<QAbstractButton *>(u"AddPresetButton"_s))
        QTest::mouseClick(add, Qt::LeftButton);
    for (QAbstractButton *button : sheet->findChildren<QAbstractButton *>()) {
        if (button->text().startsWith(u"Filter #1"_s)) {
            button->setFocus(Qt::TabFocusReason);
            break;
        }
    }
    photographer.take(*sheet, name);
}

void takeWatching(const Photographer &photographer)
{
    WindowFixture fixture;
    fixture.start();
    const QString folder = fixture.path(u"Incoming"_s);
    QDir().mkpath(folder);
    fixture.film(support::fullMkv(), u"Incoming/Already there.mkv"_s);
    fixture.pick("PresetSelectionsPopUp", u"First Track"_s);
    fixture.pick("PresetSettingsPopUp", u"Extract Tracks"_s);
    fixture.click("WatchFolderButton");
    photographer.take(*fixture.find<QFrame>("WatchPopover"), u"watch-popover"_s);
    fixture.click("ChooseWatchFolderButton");
    fixture.answerDialog({folder});
    fixture.click("StartWatchingFolderButton");
    waitFor([&] { return fixture.program().watchWindow().isVisible(); });
    fixture.film(support::fullMkv(), u"Incoming/Holiday by the sea.mkv"_s);
    QTest::qWait(7000);
    photographer.take(fixture.program().watchWindow(), u"watching"_s);
}

} // namespace

int main(int argc, char *argv[])
{
    if (platform::keeper::isWanted(argc, argv))
        return platform::keeper::run();
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"Videos"_s);
    if (argc < 3)
        qFatal("ScreenshotsMain FOLDER light|dark");
    const QString style = qEnvironmentVariable("TESSARAY_STYLE", u"Fusion"_s);
    QApplication::setStyle(QStyleFactory::create(style));
    window::AppStyle::install();
    const QString look = QString::fromLocal8Bit(argv[2]);
    if (look == u"dark"_s)
        QApplication::setPalette(window::themePalette(true));
    const Photographer photographer(QString::fromLocal8Bit(argv[1]), look);
    takeFiles(photographer);
    takeQueue(photographer);
    takeSheet(photographer, u"track-presets"_s,
              [](WindowFixture &fixture) { fixture.click("EditPresetSelectionsButton"); });
    takeSheet(photographer, u"settings-presets"_s,
              [](WindowFixture &fixture) { fixture.click("EditPresetSettingsButton"); });
    takeSheet(photographer, u"preferences"_s,
              [](WindowFixture &fixture) { fixture.command(u"File"_s, u"Preferences…"_s); });
    takeWatching(photographer);
    return 0;
}
