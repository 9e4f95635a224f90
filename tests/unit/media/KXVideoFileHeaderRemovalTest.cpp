// Whether a Matroska file uses header-removal compression, by what mkvinfo prints.
#include "media/KXVideoFile.h"
#include "support/FakePlaces.h"
#include "support/FakeTool.h"
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

class InfoFixture final
{
public:
    explicit InfoFixture(const QStringList &output)
    {
        QStringList script{u"record "_s + scratch.path(u"runs"_s)};
        for (const QString &line : output)
            script << u"out "_s + line;
        FakeTool::install(places.toolsLocation().toLocalFile() + u"/mkvtoolnix/mkvinfo"_s, script);
    }

    bool check(const QString &name = u"a.mkv"_s)
    {
        scratch.write(name, "film");
        return file.checkForHeaderRemovalFor(scratch.url(name));
    }
    QList<FakeTool::Run> runs() const { return FakeTool::recordedRuns(scratch.path(u"runs"_s)); }

    Scratch scratch;
    FakePlaces places{scratch.path(u"home"_s)};
    KXVideoFile file{&places};
};

const QStringList compressed{u"+ Segment: size 90210"_s,
                             u"|+ Tracks"_s,
                             u"| + Track"_s,
                             u"|  + Content encodings"_s,
                             u"|   + Content encoding"_s,
                             u"|    + Content compression"_s,
                             u"|     + Algorithm: 3 (header removal)"_s};

} // namespace

class KXVideoFileHeaderRemovalTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatTheAnswerSays_data()
    {
        QTest::addColumn<QStringList>("output");
        QTest::addColumn<bool>("answer");
        QTest::newRow("header removal") << compressed << true;
        QTest::newRow("in one of two tracks")
            << QStringList{u"| + Track"_s, u"|     + Algorithm: 0 (ZLIB)"_s, u"| + Track"_s,
                           u"|     + Algorithm: 3 (header removal)"_s}
            << true;
        QTest::newRow("another compression") << QStringList{u"|     + Algorithm: 0 (ZLIB)"_s} << false;
        QTest::newRow("no compression") << QStringList{u"+ Segment: size 90210"_s, u"| + Track"_s} << false;
        QTest::newRow("other letters") << QStringList{u"Header Removal"_s} << false;
        QTest::newRow("nothing") << QStringList{} << false;
        // The words count wherever they stand, which is meant.
        QTest::newRow("in a title") << QStringList{u"| + Title: header removal"_s} << true;
    }

    void whatTheAnswerSays()
    {
        QFETCH(QStringList, output);
        QFETCH(bool, answer);
        InfoFixture fixture(output);
        QCOMPARE(fixture.check(), answer);
    }

    void theFileIsTheOnlyOption_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << u"a.mkv"_s;
        QTest::newRow("a blank and an apostrophe") << u"it's a.mkv"_s;
        QTest::newRow("a command") << u"$(touch x) `touch x` \".mkv"_s;
        QTest::newRow("not ASCII") << u"Élise.mkv"_s;
    }

    void theFileIsTheOnlyOption()
    {
        QFETCH(QString, name);
        InfoFixture fixture(compressed);
        QVERIFY(fixture.check(name));
        QCOMPARE(fixture.runs().size(), 1);
        QCOMPARE(fixture.runs().first().arguments, QByteArrayList{fixture.scratch.path(name).toUtf8()});
    }

    void theAnswerIsNotKept()
    {
        InfoFixture fixture(compressed);
        QVERIFY(fixture.check());
        QVERIFY(!fixture.file.headerRemovalFlag()); // the caller sets it
    }

    void aFileThatIsNotThereIsNotAskedFor()
    {
        InfoFixture fixture(compressed);
        QVERIFY(!fixture.file.checkForHeaderRemovalFor(fixture.scratch.url(u"gone.mkv"_s)));
        QVERIFY(!fixture.file.checkForHeaderRemovalFor(fixture.scratch.url(u"home"_s)));
        QVERIFY(!fixture.file.checkForHeaderRemovalFor(QUrl()));
        QVERIFY(fixture.runs().isEmpty());
    }
};

TESSARAY_TEST(KXVideoFileHeaderRemovalTest)
#include "KXVideoFileHeaderRemovalTest.moc"
