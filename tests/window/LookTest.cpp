// What can be measured of the look: contrast, where areas stand, that nothing is cut and that every control
// says what it is.
#include "support/Clips.h"
#include "support/TestMain.h"
#include "window/AppStyle.h"
#include "window/LayoutRules.h"
#include "window/QueueDriver.h"
#include "window/Theme.h"

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QStyleFactory>

#include <cmath>

using namespace Qt::StringLiterals;
using window::Arrangement;
using window::Role;

namespace {

double linear(double part)
{
    return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

double brightness(const QColor &color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrastOf(const QColor &one, const QColor &other)
{
    const double a = brightness(one) + 0.05;
    const double b = brightness(other) + 0.05;
    return std::max(a, b) / std::min(a, b);
}

/// The window's controls that a person can use now.
QList<QWidget *> controlsOf(QWidget &window)
{
    QList<QWidget *> controls;
    for (QWidget *widget : window.findChildren<QWidget *>()) {
        if (widget->isVisible() && widget->focusPolicy() & Qt::TabFocus)
            controls.append(widget);
    }
    return controls;
}

} // namespace

class LookTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsAndMarksStandOutFromTheirGround_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::newRow("light") << false;
        QTest::newRow("dark") << true;
    }

    void textsAndMarksStandOutFromTheirGround()
    {
        QFETCH(bool, dark);
        const QPalette palette = window::themePalette(dark);
        window::AppStyle::install();
        const auto measured = [&](Role ink, Role ground) {
            return contrastOf(window::color(ink, palette), window::color(ground, palette));
        };
        for (const Role ground : {Role::Window, Role::Base, Role::Side, Role::Soft}) {
            QVERIFY(measured(Role::Text, ground) >= 4.5);
            QVERIFY(measured(Role::Second, ground) >= 4.5);
            QVERIFY(measured(Role::Link, ground) >= 4.5);
        }
        for (const auto &[ink, ground] :
             {std::pair(Role::Off, Role::Window), std::pair(Role::Off, Role::Base),
              std::pair(Role::OnAccent, Role::Accent), std::pair(Role::OnAccent, Role::AccentHover),
              std::pair(Role::OnAccent, Role::AccentDown), std::pair(Role::Ok, Role::OkSoft),
              std::pair(Role::Warn, Role::WarnSoft), std::pair(Role::Bad, Role::BadSoft),
              std::pair(Role::Text, Role::OkSoft), std::pair(Role::Text, Role::WarnSoft),
              std::pair(Role::Text, Role::BadSoft), std::pair(Role::Video, Role::VideoSoft),
              std::pair(Role::Audio, Role::AudioSoft), std::pair(Role::Subtitle, Role::SubtitleSoft),
              std::pair(Role::Bad, Role::Window), std::pair(Role::Warn, Role::Base)})
            QVERIFY2(measured(ink, ground) >= 4.5, qPrintable(u"%1 on %2: %3"_s.arg(static_cast<int>(ink))
                                                                  .arg(static_cast<int>(ground))
                                                                  .arg(measured(ink, ground))));
        for (const auto &[mark, ground] :
             {std::pair(Role::Edge, Role::Base), std::pair(Role::Edge, Role::Window),
              std::pair(Role::Bar, Role::Groove), std::pair(Role::Accent, Role::Base)})
            QVERIFY(measured(mark, ground) >= 2.99);
    }

    void areasStandWhereTheSizeAllows_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<bool>("drawer");
        QTest::addColumn<Arrangement>("wanted");
        using enum Arrangement::OpenFiles;
        QTest::newRow("wanted size") << QSize(1280, 800) << false << Arrangement{};
        QTest::newRow("with the queue")
            << QSize(1280, 800) << true << Arrangement{Rail, 304, false, false, true, false, false};
        QTest::newRow("large with the queue") << QSize(1920, 1080) << true << Arrangement{};
        QTest::newRow("just enough") << QSize(1120, 700) << false << Arrangement{};
        QTest::newRow("a pixel less")
            << QSize(1119, 700) << false << Arrangement{Rail, 304, false, false, true, false, false};
        QTest::newRow("smallest") << QSize(800, 600) << false
                                  << Arrangement{Hidden, 328, true, false, true, true, false};
        QTest::newRow("smallest with the queue")
            << QSize(800, 600) << true << Arrangement{Hidden, 328, true, false, true, true, true};
        QTest::newRow("middle with the queue")
            << QSize(1024, 700) << true << Arrangement{Hidden, 328, true, false, true, false, false};
    }

    void areasStandWhereTheSizeAllows()
    {
        QFETCH(QSize, size);
        QFETCH(bool, drawer);
        QFETCH(Arrangement, wanted);
        QVERIFY(window::arrangementFor(size, drawer) == wanted);
    }

    void everyControlSaysWhatItIs()
    {
        WindowFixture fixture;
        fixture.start();
        QVERIFY(fixture.open(
            {fixture.film(support::fullMkv(), u"1.mkv"_s), fixture.film(support::fullMkv(), u"2.mkv"_s)}));
        driver::tick(fixture, {u"h264"_s, u"ac3"_s, u"srt"_s});
        for (const int tab : {0, 1}) {
            fixture.chooseTab(tab);
            for (QWidget *control : controlsOf(fixture.window())) {
                QAccessibleInterface *told = QAccessible::queryAccessibleInterface(control);
                QVERIFY(told != nullptr && told->isValid());
                const QString name = told->text(QAccessible::Name);
                QVERIFY2(!name.isEmpty(), qPrintable(control->objectName() +
                                                     QLatin1String(control->metaObject()->className())));
                QVERIFY2(told->role() != QAccessible::NoRole && told->role() != QAccessible::Client,
                         qPrintable(control->objectName()));
                QCOMPARE(bool(told->state().disabled), !control->isEnabled());
            }
        }
    }

    void nothingIsCutOrCovered_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("smallest") << QSize(800, 600);
        QTest::newRow("middle") << QSize(1024, 700);
        QTest::newRow("wanted") << QSize(1280, 800);
        QTest::newRow("large") << QSize(1920, 1080);
    }

    /// Buttons have room for their words, and no two controls of an area overlap.
    void nothingIsCutOrCovered()
    {
        QFETCH(QSize, size);
        WindowFixture fixture;
        fixture.start();
        QVERIFY(fixture.open({fixture.film(support::fullMkv(), u"A film with a rather long name.mkv"_s)}));
        driver::tick(fixture, {u"h264"_s, u"ac3"_s, u"srt"_s});
        fixture.window().resize(size);
        QTest::qWait(50);
        QCOMPARE(fixture.window().size(), size);
        const QList<QWidget *> controls = controlsOf(fixture.window());
        for (const QWidget *control : controls) {
            const auto *button = qobject_cast<const QPushButton *>(control);
            if (button != nullptr)
                QVERIFY2(button->width() >= button->minimumSizeHint().width(), qPrintable(button->text()));
            for (const QWidget *other : controls) {
                if (other == control || other->parentWidget() != control->parentWidget())
                    continue;
                QVERIFY2(!control->geometry().intersects(other->geometry()),
                         qPrintable(control->objectName() + u' ' + other->objectName()));
            }
        }
        for (const char *word : {"ConvertButton", "ConvertTrackTable", "FilmHeader", "ActionBar"})
            QVERIFY2(fixture.find<QWidget>(word)->isVisible(), word);
    }
};

TESSARAY_TEST(LookTest)
#include "LookTest.moc"
