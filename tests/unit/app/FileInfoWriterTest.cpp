// "Save File Info": what ffprobe says of files, in text files.
#include "app/FileInfoWriter.h"

#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/app/AppFixture.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::AppFixture;

class FileInfoWriterTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_fixture = std::make_unique<AppFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void liesBesideTheFileWithTheFilesWholeName()
    {
        QCOMPARE(writer().infoFileFor(QUrl::fromLocalFile(u"/v/My film.mkv"_s)).toLocalFile(),
                 u"/v/My film.mkv.info.txt"_s);
    }

    void liesInTheSaveFolderWhereOneIsSet()
    {
        m_fixture->program().preferences().setSaveDirectoryPath(u"/out"_s);
        QCOMPARE(writer().infoFileFor(QUrl::fromLocalFile(u"/v/a.mkv"_s)).toLocalFile(),
                 u"/out/a.mkv.info.txt"_s);
    }

    void holdsWhatFfprobePrints()
    {
        const QString film = m_fixture->film(support::fullMkv(), u"Amélie's film.mkv"_s);
        QVERIFY(writer().write(support::urlsOf({film})).isNull());
        const QJsonArray streams =
            QJsonDocument::fromJson(m_fixture->scratch().read(u"Amélie's film.mkv.info.txt"_s))
                .object()
                .value(u"streams"_s)
                .toArray();
        QCOMPARE(streams.size(), 6);
        QCOMPARE(streams.at(1).toObject().value(u"codec_name"_s).toString(), u"ac3"_s);
        QCOMPARE(streams.at(1).toObject().value(u"tags"_s).toObject().value(u"title"_s).toString(),
                 u"Surround, five"_s);
    }

    void aListOfOtherFilesIsNotRead()
    {
        m_fixture->film(support::fullMkv(), u"private.mkv"_s);
        const QString list =
            m_fixture->scratch().write(u"film.mkv"_s, "ffconcat version 1.0\nfile private.mkv\n");
        QVERIFY(writer().write(support::urlsOf({list})).contains(u"film.mkv.info.txt"_s));
        QVERIFY(!QFileInfo::exists(list + u".info.txt"_s));
    }

    void nothingIsWrittenThroughALink()
    {
        const QString film = m_fixture->film(support::fullMkv(), u"a.mkv"_s);
        m_fixture->scratch().write(u"theirs"_s, "theirs");
        QVERIFY(QFile::link(m_fixture->scratch().path(u"theirs"_s),
                            m_fixture->scratch().path(u"a.mkv.info.txt"_s)));
        QVERIFY(writer().write(support::urlsOf({film})).contains(u"a.mkv.info.txt"_s));
        QCOMPARE(m_fixture->scratch().read(u"theirs"_s), QByteArray("theirs"));
        QVERIFY(QFileInfo(m_fixture->scratch().path(u"a.mkv.info.txt"_s)).isSymLink());
    }

    void replacesAnOldFile()
    {
        const QString film = m_fixture->film(support::fullMkv(), u"a.mkv"_s);
        m_fixture->scratch().write(u"a.mkv.info.txt"_s, QByteArray(100'000, 'x'));
        QVERIFY(writer().write(support::urlsOf({film})).isNull());
        QVERIFY(!m_fixture->scratch().read(u"a.mkv.info.txt"_s).contains("xxx"));
        QVERIFY(m_fixture->scratch().read(u"a.mkv.info.txt"_s).contains("h264"));
    }

    void whatCouldNotBeWrittenIsNamedAndTheOthersAreWritten()
    {
        const QString first = m_fixture->film(support::audioOnly(), u"locked/a.m4a"_s);
        const QString second = m_fixture->film(support::audioOnly(), u"b.m4a"_s);
        QVERIFY(QDir().mkpath(m_fixture->path(u"locked/a.m4a.info.txt"_s))); // a folder bears the name
        const QString problem = writer().write(support::urlsOf({first, second}));
        QCOMPARE(problem, u"Not written: "_s + m_fixture->path(u"locked/a.m4a.info.txt"_s));
        QVERIFY(m_fixture->scratch().read(u"b.m4a.info.txt"_s).contains("aac"));
    }

    void aFolderThatMayNotBeWrittenIsToldInTheBottomLine()
    {
        m_fixture->drop({m_fixture->film(support::audioOnly(), u"a.m4a"_s)});
        m_fixture->program().preferences().setSaveDirectoryPath(m_fixture->path(u"gone"_s));
        QSignalSpy said(&m_fixture->delegate(), &KXAppDelegate::noteWorthy);
        m_fixture->delegate().helpMenuItemSelected(u"Save File Info"_s);
        QCOMPARE(said.size(), 1);
        QCOMPARE(said.constFirst().constFirst().toString(),
                 u"Not written: "_s + m_fixture->path(u"gone/a.m4a.info.txt"_s));
    }

    void theMenuWritesEveryFileThatCameInLast()
    {
        m_fixture->drop({m_fixture->film(support::audioOnly(), u"old.m4a"_s)});
        // Also what was refused: it came in.
        m_fixture->drop({m_fixture->film(support::fullMkv(), u"a.mkv"_s), m_fixture->text(u"b.txt"_s)});
        m_fixture->delegate().helpMenuItemSelected(u"Save File Info"_s);
        QVERIFY(exists(u"a.mkv.info.txt"_s));
        QVERIFY(exists(u"b.txt.info.txt"_s));
        QVERIFY(!exists(u"old.m4a.info.txt"_s));
    }

    /// "Edit Tracks" is compared though the tab is named "Edit Files": meant. There, what came in last is
    /// written, also what was not gathered.
    void theTabNamesThatTellTheGatheredFiles_data()
    {
        QTest::addColumn<QString>("tab");
        QTest::addColumn<bool>("gatheredOnly");
        QTest::newRow("Edit Files") << u"Edit Files"_s << false;
        QTest::newRow("Edit Tracks") << u"Edit Tracks"_s << true;
        QTest::newRow("MKV") << u"MKV"_s << false;
    }

    void theTabNamesThatTellTheGatheredFiles()
    {
        QFETCH(QString, tab);
        QFETCH(bool, gatheredOnly);
        m_fixture->controller().setCurrentTab(u"Edit Files"_s);
        m_fixture->drop({m_fixture->film(support::fullMkv(), u"a.mkv"_s),
                         m_fixture->film(support::textMp4(), u"b.mp4"_s)});
        m_fixture->controller().setCurrentTab(tab);
        m_fixture->delegate().helpMenuItemSelected(u"Save File Info"_s);
        QVERIFY(exists(u"a.mkv.info.txt"_s));
        QCOMPARE(exists(u"b.mp4.info.txt"_s), !gatheredOnly);
    }

private:
    app::FileInfoWriter &writer()
    {
        m_writer = std::make_unique<app::FileInfoWriter>(m_fixture->program().preferences());
        return *m_writer;
    }
    bool exists(const QString &name) const { return QFile::exists(m_fixture->path(name)); }

    std::unique_ptr<AppFixture> m_fixture;
    std::unique_ptr<app::FileInfoWriter> m_writer;
};

TESSARAY_TEST(FileInfoWriterTest)
#include "FileInfoWriterTest.moc"
