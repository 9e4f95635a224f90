#include "cli/LiveLine.h"

#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using cli::fittedLine;

/// How a live line fits into a terminal.
class LiveLineTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theSubjectGivesUpItsMiddle_data()
    {
        QTest::addColumn<QString>("subject");
        QTest::addColumn<int>("columns");
        QTest::addColumn<QString>("shown");
        const auto row = [](const QString &subject, int columns, const QString &shown) {
            QTest::addRow("%s in %d", qPrintable(subject), columns) << subject << columns << shown;
        };
        row(u"film.mkv"_s, 40, u"film.mkv: Converting 45%"_s);
        row(u"film.mkv"_s, 24, u"film.mkv: Converting 45%"_s); // just fits
        row(u"film.mkv"_s, 23, u"film.mkv: Converting 45"_s);  // the name is short already
        row(u"0123456789abcdefghij"_s, 35, u"012345678…bcdefghij: Converting 45%"_s);
        row(u"0123456789abcdefghij"_s, 25, u"0123…ghij: Converting 45%"_s);
        row(u"0123456789abcdefghij"_s, 12, u"0123…ghij: C"_s);
        row(u"🎬🎬🎬🎬🎬🎬🎬"_s, 25, u"🎬🎬…🎬🎬: Converting 45%"_s);
        row(u"🎬🎬🎬🎬🎬🎬🎬"_s, 27, u"🎬🎬…🎬🎬: Converting 45%"_s); // none is divided
        row(u"film.mkv"_s, 0, u""_s);
    }

    void theSubjectGivesUpItsMiddle()
    {
        QFETCH(const QString, subject);
        QFETCH(const int, columns);
        QFETCH(const QString, shown);
        QCOMPARE(fittedLine(subject + u": Converting 45%"_s, subject, columns), shown);
    }
};

TESSARAY_TEST(LiveLineTest)
#include "LiveLineTest.moc"
