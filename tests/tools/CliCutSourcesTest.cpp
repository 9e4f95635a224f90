// A source that somebody cut is told of once, with the place where it ends, though its tool complains of it
// too.
#include "support/CliFixture.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/jobs/CheckClips.h"
#include "support/jobs/CheckRun.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;

class CliCutSourcesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theEndIsToldOnce_data()
    {
        QTest::addColumn<QString>("container");
        QTest::addColumn<QString>("command");
        const QList<std::pair<QString, QString>> rows{{u"mkv"_s, u"convert"_s}, {u"avi"_s, u"convert"_s},
                                                      {u"flv"_s, u"convert"_s}, {u"mkv"_s, u"remux"_s},
                                                      {u"mkv"_s, u"extract"_s}};
        for (const auto &[container, command] : support::drawn(rows, 3))
            QTest::addRow("%s, %s", qPrintable(container), qPrintable(command)) << container << command;
    }

    void theEndIsToldOnce()
    {
        QFETCH(QString, container);
        QFETCH(QString, command);
        const CliFixture cli;
        const QString film = cli.media(u"film."_s + container);
        support::cutTo(support::minuteOf(container), film, 60);
        const auto run = cli.run({u"--json"_s, command, film});
        QCOMPARE(run.status, 1);
        const QString message = run.objects().constLast().value(u"message"_s).toString();
        static const QRegularExpression form(u"^The source ends at 0:[34]\\d of 1:00\\.$"_s);
        QVERIFY2(form.match(message).hasMatch(), qPrintable(message));
    }
};

TESSARAY_TEST(CliCutSourcesTest)
#include "CliCutSourcesTest.moc"
