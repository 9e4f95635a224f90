// How presets move from one user to another: "presets export" and "presets import".
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/PresetLists.h"
#include "support/PresetRecords.h"
#include "support/TestMain.h"
#include "support/Words.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::listedPresets;
using support::listOfPresets;
using support::namesOf;
using support::objectIn;
using support::presetFile;
using support::settingsPreset;
using support::someRules;
using support::someSettings;
using support::storedPresets;
using support::storePresets;
using support::trackPreset;
using support::words;

class CliPresetExchangeTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_cli = std::make_unique<CliFixture>();
        storePresets(*m_cli, someRules(), someSettings());
    }

    void presetsMoveToAnotherUser()
    {
        const auto exported = m_cli->run(words(u"presets export mine.json --json"_s));
        QVERIFY2(exported.status == 0, exported.error.constData());
        QCOMPARE(exported.objects(), QList<QJsonObject>({{{u"exported"_s, m_cli->media(u"mine.json"_s)}}}));
        QCOMPARE(objectIn(content(u"mine.json"_s)), objectIn(presetFile(someRules(), someSettings())));
        CliFixture other;
        const QJsonObject own = trackPreset(u"My own"_s, u"#3"_s);
        other.scratch().write(u"defaults.json"_s, storedPresets({own}, {}));
        const auto imported =
            other.run({u"presets"_s, u"import"_s, m_cli->media(u"mine.json"_s), u"--json"_s});
        QVERIFY2(imported.status == 0 && imported.error.isEmpty(), imported.error.constData());
        QCOMPARE(imported.objects(), QList<QJsonObject>({{{u"imported"_s, m_cli->media(u"mine.json"_s)},
                                                          {u"tracks"_s, 3},
                                                          {u"settings"_s, 3}}}));
        QCOMPARE(listedPresets(other),
                 listOfPresets(QStringList{u"My own"_s} + namesOf(someRules()), namesOf(someSettings())));
        QJsonArray rules{own};
        for (const QJsonValue &rule : someRules())
            rules.append(rule);
        QCOMPARE(objectIn(other.scratch().read(u"defaults.json"_s)),
                 objectIn(storedPresets(rules, someSettings())));
        compareConversions(other);
    }

    void theExportIsPrintedWithoutAFile()
    {
        const auto text = m_cli->run(words(u"presets export"_s));
        QCOMPARE(text.status, 0);
        QCOMPARE(objectIn(text.output), objectIn(presetFile(someRules(), someSettings())));
        const auto json = m_cli->run(words(u"presets export --json"_s));
        QCOMPARE(json.objects(), QList<QJsonObject>({objectIn(text.output)}));
        QVERIFY(m_cli->mediaNames().isEmpty());
    }

    void builtInsAreNotExported()
    {
        const CliFixture cli;
        QCOMPARE(objectIn(cli.run(words(u"presets export"_s)).output), objectIn(presetFile({}, {})));
    }

    void aFileWithoutPresetsChangesNothing()
    {
        const QByteArray before = defaults();
        write(u"none.json"_s, presetFile({}, {}));
        const auto run = m_cli->run(words(u"presets import none.json"_s));
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(run.output, "0 track presets and 0 settings presets were imported.\n");
        QCOMPARE(defaults(), before);
    }

    void importedAgainNamesGetNumbers()
    {
        const QString odd = u"50%1 & %2"_s;
        storePresets(*m_cli, {}, {});
        write(u"mine.json"_s, presetFile({trackPreset(odd, u"#1"_s), trackPreset(u"Mine"_s, u"#2"_s),
                                          trackPreset(u"Mine"_s, u"#3"_s)},
                                         {settingsPreset(u"Mine"_s, u"PS3"_s)}));
        for (int time = 0; time < 3; ++time)
            QCOMPARE(m_cli->run(words(u"presets import mine.json"_s)).output,
                     "3 track presets and 1 settings presets were imported.\n");
        QCOMPARE(listedPresets(*m_cli),
                 listOfPresets({odd, u"Mine"_s, u"Mine (2)"_s, odd + u" (2)"_s, u"Mine (3)"_s, u"Mine (4)"_s,
                                odd + u" (3)"_s, u"Mine (5)"_s, u"Mine (6)"_s},
                               {u"Mine"_s, u"Mine (2)"_s, u"Mine (3)"_s}));
        const auto third = m_cli->run({u"presets"_s, u"show"_s, u"Mine (4)"_s, u"--json"_s}).objects();
        QJsonObject expected = trackPreset(u"Mine (4)"_s, u"#3"_s);
        QCOMPARE(third.constFirst().value(u"record"_s).toObject(), expected);
    }

    void aNumberedNameThatIsTakenIsPassedOver()
    {
        storePresets(*m_cli, {trackPreset(u"A"_s, u"#1"_s), trackPreset(u"A (2)"_s, u"#1"_s)}, {});
        write(u"mine.json"_s, presetFile({trackPreset(u"A"_s, u"#2"_s)}, {}));
        QCOMPARE(m_cli->run(words(u"presets import mine.json"_s)).status, 0);
        QCOMPARE(listedPresets(*m_cli), listOfPresets({u"A"_s, u"A (2)"_s, u"A (3)"_s}, {}));
    }

    void anExportReplacesNothing()
    {
        write(u"mine.json"_s, "mine");
        QVERIFY(QFile::link(m_cli->media(u"gone"_s), m_cli->media(u"link.json"_s)));
        QVERIFY(QDir().mkpath(m_cli->media(u"folder.json"_s)));
        const QStringList before = m_cli->mediaNames();
        for (const QString &name :
             {u"mine.json"_s, u"link.json"_s, u"folder.json"_s, u"no/such/folder.json"_s}) {
            const auto run = m_cli->run({u"presets"_s, u"export"_s, name, u"--json"_s});
            QCOMPARE(run.status, 2);
            QVERIFY(run.output.isEmpty());
            QVERIFY2(run.saidOneSentence(), run.error.constData());
            QVERIFY2(run.said().contains(m_cli->media(name)), run.error.constData());
        }
        QCOMPARE(m_cli->mediaNames(), before);
        QCOMPARE(content(u"mine.json"_s), "mine");
    }

    void anExportThatFindsNoRoomLeavesNothing_data()
    {
        QTest::addColumn<bool>("isDisk");
        QTest::newRow("a full disk") << true; // where the system lets us make one
        QTest::newRow("a limit on the size of files") << false;
    }

    void anExportThatFindsNoRoomLeavesNothing()
    {
        QFETCH(bool, isDisk);
        QVERIFY(QDir().mkpath(m_cli->media(u"disk"_s)));
        const auto run = exportIntoTinyPlace(isDisk);
        QCOMPARE(run.status, 2);
        QCOMPARE(run.output, "left:\n");
        QVERIFY2(run.saidOneSentence(), run.error.constData());
        QVERIFY2(run.said().startsWith(m_cli->media(u"disk/mine.json"_s) + u" can't be written: "_s),
                 run.error.constData());
    }

    void foldersThatCantBeWrittenAreSaid()
    {
        m_cli->useOwnTools();
        for (const auto &tool : {u"ffmpeg/ffmpeg"_s, u"ffmpeg/ffprobe"_s})
            m_cli->setTool(tool, u"exit 1"_s);
        write(u"more.json"_s, presetFile({trackPreset(u"More"_s, u"#1"_s)}, {}));
        QVERIFY(QDir().mkpath(m_cli->media(u"locked"_s)));
        m_cli->scratch().write(u"media/store/defaults.json"_s, storedPresets(someRules(), {}));
        m_cli->runUnprivileged();
        const auto locked = QFile::ReadOwner | QFile::ExeOwner;
        for (const QString &folder : {u"locked"_s, u"store"_s})
            QVERIFY(QFile::setPermissions(m_cli->media(folder), locked));
        const auto exported = m_cli->run(words(u"presets export locked/mine.json"_s));
        const auto imported = m_cli->run(words(u"presets import more.json --defaults store/defaults.json"_s));
        const QStringList left = QDir(m_cli->media(u"locked"_s)).entryList(QDir::Files);
        for (const QString &folder : {u"locked"_s, u"store"_s})
            QVERIFY(QFile::setPermissions(m_cli->media(folder), locked | QFile::WriteOwner));
        QCOMPARE(exported.status, 2);
        QVERIFY2(exported.said().contains(u"locked/mine.json can't be written"_s),
                 exported.error.constData());
        QVERIFY2(exported.saidOneSentence(), exported.error.constData());
        QVERIFY(left.isEmpty());
        QCOMPARE(imported.status, 2);
        QVERIFY2(imported.said().contains(u"was not imported"_s), imported.error.constData());
        QCOMPARE(content(u"store/defaults.json"_s), storedPresets(someRules(), {}));
    }

    void whatNoImportTakesIsLeftOutAndTold()
    {
        storePresets(*m_cli, {trackPreset(u"Good"_s, u"#1"_s)},
                     {settingsPreset(u"Bad"_s, u"Toaster"_s), settingsPreset(u"Fine"_s, u"PS3"_s)});
        const auto run = m_cli->run(words(u"presets export mine.json"_s));
        QCOMPARE(run.status, 1);
        QVERIFY2(run.said().startsWith(u"The preset \"Bad\" was left out: its \"pDevice\" is \"Toaster\""_s),
                 run.error.constData());
        const CliFixture other;
        QCOMPARE(other.run({u"presets"_s, u"import"_s, m_cli->media(u"mine.json"_s)}).status, 0);
        QCOMPARE(listedPresets(other), listOfPresets({u"Good"_s}, {u"Fine"_s}));
    }

    void anOldRecordGoesOutWhole()
    {
        storePresets(*m_cli,
                     {QJsonObject{{u"pName"_s, u"Old"_s},
                                  {u"pSelectedSubtitleTrack"_s, u"All Tracks"_s},
                                  {u"isEditable"_s, true}}},
                     {});
        QCOMPARE(m_cli->run(words(u"presets export old.json"_s)).status, 0);
        const CliFixture other;
        QCOMPARE(other.run({u"presets"_s, u"import"_s, m_cli->media(u"old.json"_s)}).status, 0);
        const auto show = words(u"presets show Old --json"_s);
        QCOMPARE(other.run(show).output, m_cli->run(show).output);
    }

private:
    QByteArray defaults() const { return m_cli->scratch().read(u"defaults.json"_s); }
    QByteArray content(const QString &name) const { return m_cli->scratch().read(u"media/"_s + name); }
    void write(const QString &name, const QByteArray &bytes) const
    {
        m_cli->scratch().write(u"media/"_s + name, bytes);
    }

    /// Both users' programs run the same, and the other's really converts.
    void compareConversions(const CliFixture &other) const
    {
        const QStringList line{u"convert"_s,       u"film.mkv"_s,          u"--track-preset"_s,
                               u"English first"_s, u"--settings-preset"_s, u"Phone"_s};
        for (const CliFixture *cli : QList<const CliFixture *>{m_cli.get(), &other})
            cli->clip(support::manyTracksMkv(), u"film.mkv"_s);
        const auto mine = m_cli->run(line + QStringList{u"--dry-run"_s});
        const auto theirs = other.run(line + QStringList{u"--dry-run"_s});
        QVERIFY(!mine.output.isEmpty());
        QCOMPARE(QByteArray(theirs.output).replace(other.media().toUtf8(), m_cli->media().toUtf8()),
                 mine.output);
        const auto run = other.run(line);
        QVERIFY2(run.status == 0, run.error.constData());
        QCOMPARE(support::codecsOf(other.media(u"film.m4v"_s)), u"h264 aac mov_text mov_text"_s);
    }

    CliFixture::Run exportIntoTinyPlace(bool isDisk) const
    {
        const QString tail = u"\"$0\" --defaults \"$1\" presets export \"$2/mine.json\"; status=$?; "
                             "echo left:; ls -A \"$2\"; exit $status"_s;
        const QString limit = u"trap '' XFSZ; (ulimit -f 1; "_s + tail + u')';
        const QString mount = u"mount -t tmpfs -o size=4k tmpfs \"$2\" && ("_s + tail + u')';
        const bool mounts = isDisk && QProcess::execute(u"unshare"_s, {u"-rm"_s, u"true"_s}) == 0;
        QProcess process;
        process.setProcessEnvironment(m_cli->environment());
        const QStringList shell{u"sh"_s,
                                u"-c"_s,
                                mounts ? mount : limit,
                                m_cli->program(),
                                m_cli->scratch().path(u"defaults.json"_s),
                                m_cli->media(u"disk"_s)};
        process.start(u"env"_s, (mounts ? QStringList{u"unshare"_s, u"-rm"_s} : QStringList()) + shell);
        return CliFixture::outcomeOf(process);
    }

    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliPresetExchangeTest)
#include "CliPresetExchangeTest.moc"
