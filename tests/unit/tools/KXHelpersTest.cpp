#include "tools/KXHelpers.h"
#include "platform/AlertPresenter.h"
#include "support/FakePlaces.h"
#include "support/Scratch.h"
#include "support/TestMain.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

class NotingPresenter final : public platform::AlertPresenter
{
public:
    void show(const platform::AlertPointer &alert, Answered answered) override
    {
        shown.append(alert);
        hadAction = static_cast<bool>(answered);
    }
    void close(const platform::AlertPointer &alert) override { closed.append(alert); }

    QList<platform::AlertPointer> shown;
    QList<platform::AlertPointer> closed;
    bool hadAction = true;
};

} // namespace

class KXHelpersTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bearsTheNameOfTheApplication()
    {
        KXHelpers helpers;
        QCOMPARE(helpers.appName(), u"Tessaray"_s);
        helpers.setAppName(u"Pollenta"_s);
        QCOMPARE(helpers.appName(), u"Pollenta"_s);
    }

    void quotingIsThatOfTheOptions()
    {
        QCOMPARE(KXHelpers::doubleQuotedFormOf(u"a\"$`"_s), u"\"a\\\"\\$`\""_s);
        QCOMPARE(KXHelpers::doubleQuotedFormOf({}), u"\"\""_s);
        QCOMPARE(KXHelpers::singleQuotedFormOf(u"it's"_s), u"'it\\'s'"_s);
        QCOMPARE(KXHelpers::singleQuotedFormOf({}), u"''"_s);
    }

    void toolsAreFoundByName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("path");
        const auto row = [](const char *name, const QString &path) {
            QTest::newRow(name) << QString::fromLatin1(name) << path;
        };
        row("ffmpeg.zip", u"Resources/ffmpeg.zip"_s);
        row("MKVtoolnix.ZIP", u"Resources/mkvtoolnix.zip"_s);
        row("gzip", u"Resources/gzip"_s);
        row("mkvmerge", u"tools/mkvtoolnix/mkvmerge"_s);
        row("MKVExtract", u"tools/mkvtoolnix/mkvextract"_s);
        row("mkvinfo", u"tools/mkvtoolnix/mkvinfo"_s);
        row("mp4box", u"tools/mp4box/mp4box"_s);
        row("mplayer", u"tools/mplayer/mplayer"_s);
        row("tesseract", u"tools/tesseract/tesseract"_s);
        row("ffmpeg", u"tools/ffmpeg/ffmpeg"_s);
        row("ffprobe", u"tools/ffmpeg/ffprobe"_s);
        row("atomicparsley", u"Resources/atomicparsley"_s);
        row("AtomicParsley", u"Resources/atomicparsley"_s);
        row("mediainfo", u"Resources/mediainfo"_s);
        row("mencoder", u"Resources/mencoder"_s);
        // Compared as passed: only the names in small letters have a folder.
        row("FFmpeg", u"Resources/ffmpeg"_s);
        row("MP4Box", u"Resources/mp4box"_s);
        row("MPlayer", u"Resources/mplayer"_s);
    }

    void toolsAreFoundByName()
    {
        const support::Scratch scratch;
        const support::FakePlaces places(scratch.path());
        QFETCH(QString, name);
        QFETCH(QString, path);
        QCOMPARE(KXHelpers(&places).urlOfApp(name), scratch.url(path));
    }

    void anythingAtAPathExists()
    {
        const support::Scratch scratch;
        scratch.write(u"folder/file"_s, {});
        QVERIFY(KXHelpers::fileExistsAtURL(scratch.url(u"folder/file"_s)));
        QVERIFY(KXHelpers::fileExistsAtURL(scratch.url(u"folder"_s)));
        QVERIFY(!KXHelpers::fileExistsAtURL(scratch.url(u"missing"_s)));
        QVERIFY(!KXHelpers::fileExistsAtURL(QUrl()));
        QVERIFY(!KXHelpers::fileExistsAtURL(QUrl::fromLocalFile({})));
    }

    void foldersAreToldFromFiles()
    {
        const support::Scratch scratch;
        scratch.write(u"folder/file"_s, {});
        QVERIFY(KXHelpers::directoryPathExistsFor(scratch.path(u"folder"_s)));
        QVERIFY(!KXHelpers::directoryPathExistsFor(scratch.path(u"folder/file"_s)));
        QVERIFY(!KXHelpers::directoryPathExistsFor(scratch.path(u"missing"_s)));
        QVERIFY(!KXHelpers::directoryPathExistsFor({}));
        QVERIFY(!KXHelpers::directoryPathExistsFor(u""_s));
    }

    void tildeIsTheHomeFolder()
    {
        const support::Scratch scratch;
        scratch.write(u"in home/file"_s, {});
        const QByteArray home = qgetenv("HOME");
        qputenv("HOME", scratch.path().toUtf8());
        const bool itself = KXHelpers::directoryPathExistsFor(u"~"_s);
        const bool below = KXHelpers::directoryPathExistsFor(u"~/in home"_s);
        const bool full = KXHelpers::directoryPathIsNotEmptyFor(u"~/in home"_s);
        const bool within = KXHelpers::directoryPathExistsFor(scratch.path() + u"/~"_s);
        qputenv("HOME", home);
        QVERIFY(itself);
        QVERIFY(below);
        QVERIFY(full);
        QVERIFY(!within);
    }

    void hiddenEntriesFillAFolder()
    {
        const support::Scratch scratch;
        QDir().mkpath(scratch.path(u"empty"_s));
        scratch.write(u"full/.hidden"_s, {});
        QVERIFY(KXHelpers::directoryPathIsNotEmptyFor(scratch.path(u"full"_s)));
        QVERIFY(!KXHelpers::directoryPathIsNotEmptyFor(scratch.path(u"empty"_s)));
        QVERIFY(!KXHelpers::directoryPathIsNotEmptyFor(scratch.path(u"full/.hidden"_s)));
        QVERIFY(!KXHelpers::directoryPathIsNotEmptyFor(scratch.path(u"missing"_s)));
        QVERIFY(!KXHelpers::directoryPathIsNotEmptyFor({}));
    }

    void brokenLinkFillsAFolder()
    {
        const support::Scratch scratch;
        QDir().mkpath(scratch.path(u"folder"_s));
        QVERIFY(QFile::link(u"/nowhere"_s, scratch.path(u"folder/link"_s)));
        QVERIFY(KXHelpers::directoryPathIsNotEmptyFor(scratch.path(u"folder"_s)));
    }

    void emptyIsWhatIsAbsentOrHoldsNothing_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<bool>("empty");
        const auto row = [](const char *name, const QVariant &value, bool empty) {
            QTest::newRow(name) << value << empty;
        };
        row("absent object", QVariant(), true);
        row("null placeholder", QVariant::fromValue(nullptr), true);
        row("null pointer", QVariant::fromValue<QObject *>(nullptr), true);
        row("pointer", QVariant::fromValue<QObject *>(this), false);
        row("absent text", QString(), true);
        row("empty text", u""_s, true);
        row("text 0", u"0"_s, false);
        row("blank", u" "_s, false);
        row("empty bytes", QByteArray(), true);
        row("bytes", QByteArray("x"), false);
        row("empty list", QVariantList(), true);
        row("list of an empty text", QVariantList{u""_s}, false);
        row("empty list of texts", QStringList(), true);
        row("list of texts", QStringList{u""_s}, false);
        row("empty list of locations", QVariant::fromValue(QList<QUrl>()), true);
        row("list of locations", QVariant::fromValue(QList<QUrl>{QUrl()}), false);
        row("empty dictionary", QVariantMap(), true);
        row("dictionary", QVariantMap{{u"a"_s, {}}}, false);
        row("empty hash", QVariantHash(), true);
        row("hash", QVariantHash{{u"a"_s, {}}}, false);
        row("empty dictionary of numbers", QVariant::fromValue(QMap<QString, int>()), true);
        row("dictionary of numbers", QVariant::fromValue(QMap<QString, int>{{u"a"_s, 0}}), false);
        row("no location", QUrl(), true);
        row("location without a path", QUrl::fromLocalFile({}), true);
        row("location", QUrl::fromLocalFile(u"/"_s), false);
        row("number", 1, false);
        row("number 0", 0, false);
        row("flag", false, false);
        row("fraction", 0.0, false);
    }

    void emptyIsWhatIsAbsentOrHoldsNothing()
    {
        QFETCH(QVariant, value);
        QTEST(KXHelpers::isEmpty(value), "empty");
    }

    void containingNeedsTwoTexts()
    {
        QVERIFY(KXHelpers::theStringContainsString(u"Stream #0:1"_s, u"#0:1"_s));
        QVERIFY(!KXHelpers::theStringContainsString(u"Stream"_s, u"stream"_s));
        QVERIFY(!KXHelpers::theStringContainsString(u"a"_s, u"ab"_s));
        QVERIFY(!KXHelpers::theStringContainsString({}, u"a"_s));
        QVERIFY(!KXHelpers::theStringContainsString(u"a"_s, {}));
        QVERIFY(!KXHelpers::theStringContainsString(QString(), u"a"_s));
        QVERIFY(!KXHelpers::theStringContainsString(u"a"_s, QString()));
        QVERIFY(!KXHelpers::theStringContainsString(12, u"1"_s));
        QVERIFY(!KXHelpers::theStringContainsString(u"12"_s, 1));
        QVERIFY(!KXHelpers::theStringContainsString(QStringList{u"a"_s}, u"a"_s));
    }

    void integersAreToldLaxly()
    {
        for (const QString &text : {u"0"_s, u"7"_s, u"12abc"_s, u"-3"_s, u" 5"_s, u"1.5"_s})
            QVERIFY2(KXHelpers::isStringInteger(text), qPrintable(text));
        for (const QString &text : {u"abc"_s, u"00"_s, u"0abc"_s, u" 0"_s, u""_s, QString(), u"a1"_s})
            QVERIFY2(!KXHelpers::isStringInteger(text), qPrintable(text));
    }

    void timesBecomeSeconds_data()
    {
        QTest::addColumn<QString>("time");
        QTest::addColumn<qint64>("seconds");
        const auto row = [](const char *time, qint64 seconds) {
            QTest::newRow(time) << QString::fromLatin1(time) << seconds;
        };
        row("01:02:03.99", 3723);
        row("1:2:3", 3723);
        row("100:00:00", 360000);
        row("00:00:00.71", 0);
        row("00:00:59", 59);
        row("00:61:00", 3660);
        row("-00:00:00.07", 0);
        row("02:03", 0);
        row("1:2:3:4", 0);
        row("N/A", 0);
        row("", 0);
        row("3723", 0);
        row("a:b:c", 0);
        row("::", 0);
    }

    void timesBecomeSeconds()
    {
        QFETCH(QString, time);
        QTEST(KXHelpers::convertToTimeInSecondsFrom(time), "seconds");
    }

    void absurdTimesDoNotOverflow()
    {
        const QString huge = u"99999999999999999999"_s;
        QVERIFY(KXHelpers::convertToTimeInSecondsFrom(huge + u':' + huge + u':' + huge) > 0);
        QVERIFY(KXHelpers::convertToTimeInSecondsFrom(u"-%1:-%1:-%1"_s.arg(huge)) < 0);
    }

    void alertsGoToThePresenterWithoutAnAction()
    {
        NotingPresenter presenter;
        const KXHelpers helpers(nullptr, &presenter);
        const auto alert = std::make_shared<const platform::Alert>();
        helpers.openAlertSheet(alert);
        QCOMPARE(presenter.shown, QList<platform::AlertPointer>({alert}));
        QVERIFY(!presenter.hadAction);
        QVERIFY(presenter.closed.isEmpty());
        helpers.alertTimedOut(alert);
        QCOMPARE(presenter.closed, QList<platform::AlertPointer>({alert}));
    }

    void withoutAPresenterNoAlertIsShown()
    {
        const KXHelpers helpers;
        helpers.openAlertSheet(std::make_shared<const platform::Alert>());
        helpers.alertTimedOut({});
        helpers.logString(u"nothing"_s);
        helpers.logObjectWithString({}, u"nothing"_s);
        helpers.logIntegerWithString(0, u"nothing"_s);
    }
};

TESSARAY_TEST(KXHelpersTest)
#include "KXHelpersTest.moc"
