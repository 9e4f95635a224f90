// What the installed mkvinfo says of real files.
#include "media/KXVideoFile.h"
#include "support/Clips.h"
#include "support/Scratch.h"
#include "support/TestMain.h"
#include "support/TestPlaces.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

class HeaderRemovalCheckTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFileWithHeaderRemovalIsFound_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << u"a.mkv"_s;
        QTest::newRow("blank and apostrophe") << u"it's a.mkv"_s;
        QTest::newRow("a command") << u"$(touch x)`touch x`\".mkv"_s;
        QTest::newRow("not ASCII") << u"Élise.mkv"_s;
    }

    void aFileWithHeaderRemovalIsFound()
    {
        QFETCH(QString, name);
        const support::Scratch scratch;
        QVERIFY(QFile::copy(support::headerRemovalMkv(), scratch.path(name)));
        const support::TestPlaces places;
        const KXVideoFile file(&places);
        QVERIFY(file.checkForHeaderRemovalFor(scratch.url(name)));
        QCOMPARE(scratch.names(), QStringList{name});
    }

    void aFileWithoutItIsNot()
    {
        const support::Scratch scratch;
        const support::TestPlaces places;
        const KXVideoFile file(&places);
        QVERIFY(!file.checkForHeaderRemovalFor(QUrl::fromLocalFile(support::vobsubMkv())));
        scratch.write(u"damaged.mkv"_s, "header removal"); // the words are no answer of mkvinfo's
        QVERIFY(!file.checkForHeaderRemovalFor(scratch.url(u"damaged.mkv"_s)));
    }
};

TESSARAY_TEST(HeaderRemovalCheckTest)
#include "HeaderRemovalCheckTest.moc"
