#include "platform/Power.h"
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;
using platform::PowerSource;

class PowerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void suppliesAreRead_data()
    {
        QTest::addColumn<QStringList>("facts"); ///< "SUPPLY/FILE=CONTENT"
        QTest::addColumn<PowerSource>("source");
        const auto row = [](const char *name, const QString &facts, PowerSource source) {
            QTest::newRow(name) << facts.split(u' ', Qt::SkipEmptyParts) << source;
        };
        row("no supplies", {}, PowerSource::None);
        row("mains alone", u"AC/type=Mains AC/online=1"_s, PowerSource::Mains);
        row("charging", u"AC/type=Mains AC/online=1 BAT0/type=Battery BAT0/status=Charging"_s,
            PowerSource::Mains);
        row("on battery", u"AC/type=Mains AC/online=0 BAT0/type=Battery BAT0/status=Discharging"_s,
            PowerSource::Battery);
        row("two batteries, one in use",
            u"BAT0/type=Battery BAT0/status=Full BAT1/type=Battery BAT1/status=Discharging"_s,
            PowerSource::Battery);
        row("fed by USB", u"BAT0/type=Battery BAT0/status=Discharging UCSI/type=USB UCSI/online=1"_s,
            PowerSource::Mains);
        row("full, and nothing said of mains", u"BAT0/type=Battery BAT0/status=Full"_s, PowerSource::Mains);
        row("a mouse", u"hid/type=Battery hid/scope=Device hid/status=Discharging"_s, PowerSource::None);
        row("a supply that says nothing", u"AC/uevent=x"_s, PowerSource::None);
    }

    void suppliesAreRead()
    {
        QFETCH(QStringList, facts);
        QFETCH(PowerSource, source);
        const support::Scratch scratch;
        for (const QString &fact : facts)
            scratch.write(fact.section(u'=', 0, 0), fact.section(u'=', 1).toUtf8() + '\n');
        QCOMPARE(platform::powerSourceIn(scratch.path()), source);
    }

    void noFolderCannotBeRead()
    {
        const support::Scratch scratch;
        QCOMPARE(platform::powerSourceIn(scratch.path(u"none"_s)), PowerSource::Unreadable);
    }
};

TESSARAY_TEST(PowerTest)
#include "PowerTest.moc"
