// Presets that are made, changed, renamed and removed from the command line.
#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/PresetLists.h"
#include "support/PresetRecords.h"
#include "support/TestMain.h"
#include "support/Words.h"

#include <QTest>

using namespace Qt::StringLiterals;
using support::CliFixture;
using support::listedPresets;
using support::listOfPresets;
using support::objectIn;
using support::settingsPreset;
using support::storedPresets;
using support::storePresets;
using support::trackPreset;
using support::words;

class CliPresetEditTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_cli = std::make_unique<CliFixture>(); }

    void addedPresetsAreStoredAndConvert()
    {
        m_cli->clip(support::manyTracksMkv(), u"film.mkv"_s);
        compareRun({u"add"_s, u"tracks"_s, u"Evening"_s, u"audio1.language=German"_s, u"audio2.number=1"_s,
                    u"audio.mode=Prioritized"_s, u"subtitle1.choice=All"_s, u"subtitle2.codec=srt"_s});
        compareRun({u"add"_s, u"settings"_s, u"Telly"_s, u"pDevice=PS3"_s,
                    u"pVideoActionIndex=H264 (2-pass)"_s, u"pVideoBitRate=800"_s, u"pWidth=160"_s,
                    u"pStereoActionIndex=1"_s, u"pSubAction=Mux (soft)"_s});
        QJsonObject rule = trackPreset(u"Evening"_s, u"first of: German/*/*; #1"_s, u"all; */srt"_s);
        QCOMPARE(stored(), objectIn(storedPresets({rule}, {settingsPreset(u"Telly"_s, u"PS3"_s,
                                                                          u"video=2 rate=800 width=160 "
                                                                          "stereo=1"_s)})));
        const auto run = m_cli->run({u"convert"_s, u"film.mkv"_s, u"--track-preset"_s, u"Evening"_s,
                                     u"--settings-preset"_s, u"Telly"_s, u"--dry-run"_s});
        QVERIFY2(run.status == 0, run.error.constData());
        for (const auto *part : {" -map 0:0 ", " -map 0:2 ", " -b:v 800k ", " -pass 2 ", "aac"})
            QVERIFY2(run.output.contains(part), run.output.constData());
    }

    void everyDeviceHasAReadyPreset()
    {
        const auto tablet = compareRun(
            {u"add"_s, u"settings"_s, u"Tablet"_s, u"--for"_s, u"iPad (3 and Later)"_s, u"--json"_s});
        const QJsonObject shown = tablet.objects().constFirst();
        QCOMPARE(
            shown.value(u"sentence"_s).toString(),
            u"For iPad (3 and Later). The video becomes H.264 in one pass at the original's bit rate. Stereo "
            "sound becomes AAC stereo at 160 kb/s. Surround sound becomes AAC stereo at 160 kb/s. Subtitles "
            "stay tracks."_s);
        compareRun({u"add"_s, u"settings"_s, u"Box"_s, u"--for=Apple TV 2"_s, u"pVideoBitRate=900"_s});
        QJsonObject box = settingsPreset(u"Box"_s, u"Apple TV 2"_s, u"video=1 rate=900 stereo=1 addStereo"_s);
        QJsonObject expected =
            settingsPreset(u"Tablet"_s, u"iPad (3 and Later)"_s, u"video=1 stereo=1 surround=1"_s);
        expected.insert(u"pVideoBitRate"_s, u""_s);
        QCOMPARE(stored().value(u"presetSettingsArray"_s).toArray(), QJsonArray({expected, box}));
    }

    void presetsAreChangedRenamedAndRemoved()
    {
        storePresets(*m_cli, {trackPreset(u"Mine"_s, u"#1"_s), trackPreset(u"Other"_s, u"all"_s)},
                     {settingsPreset(u"Mine"_s, u"PS3"_s)});
        compareRun({u"set"_s, u"settings"_s, u"Mine"_s, u"pDevice=Xbox"_s, u"pAudioAddStereo=true"_s});
        compareRun({u"set"_s, u"Other"_s, u"audio1.choice=None"_s});
        compareRun({u"rename"_s, u"tracks"_s, u"Mine"_s, u"Näxt one"_s});
        QCOMPARE(stored(), objectIn(storedPresets(
                               {trackPreset(u"Näxt one"_s, u"#1"_s), trackPreset(u"Other"_s, u"none"_s)},
                               {settingsPreset(u"Mine"_s, u"Xbox"_s, u"addStereo"_s)})));
        const auto removed = compareRun({u"remove"_s, u"Mine"_s, u"--json"_s});
        QCOMPARE(removed.objects(),
                 QList<QJsonObject>({{{u"removed"_s, u"Mine"_s}, {u"kind"_s, u"settings"_s}}}));
        compareRun({u"remove"_s, u"tracks"_s, u"Other"_s});
        QCOMPARE(listedPresets(*m_cli), listOfPresets({u"Näxt one"_s}, {}));
    }

    void whatIsWrongChangesNothing_data()
    {
        QTest::addColumn<QStringList>("line");
        QTest::addColumn<QString>("told");
        const auto row = [](const QStringList &line, const QString &told) {
            QTest::newRow(qPrintable(line.join(u' '))) << line << told;
        };
        row({u"add"_s, u"rules"_s, u"X"_s}, u"add tracks|settings NAME"_s);
        row({u"add"_s, u"tracks"_s, u"Mine"_s}, u"\"Mine\" already"_s);
        row({u"add"_s, u"settings"_s, u"Manual"_s}, u"\"Manual\" already"_s);
        row({u"add"_s, u"settings"_s, u"Remove Tracks"_s}, u"built-in"_s);
        row({u"add"_s, u"tracks"_s, u" "_s}, u"needs a name"_s);
        row({u"add"_s, u"tracks"_s, QString(10001, u'x')}, u"that long"_s);
        row({u"add"_s, u"tracks"_s, u"X"_s, u"pDevice=PS3"_s}, u"There is no field \"pDevice\""_s);
        row({u"add"_s, u"tracks"_s, u"X"_s, u"--for"_s, u"PS3"_s}, u"Only a settings preset"_s);
        row({u"add"_s, u"settings"_s, u"X"_s, u"--for"_s, u"MKV"_s}, u"no device \"MKV\""_s);
        row({u"add"_s, u"settings"_s, u"X"_s, u"pWidth"_s}, u"no FIELD=VALUE"_s);
        row({u"add"_s, u"settings"_s, u"X"_s, u"pWidth=720"_s, u"pSubAction=Draw"_s}, u"\"Burn (hard)\""_s);
        row({u"set"_s, u"Mine"_s, u"pWidth=720"_s}, u"both kinds"_s);
        row({u"set"_s, u"Nobody"_s, u"pWidth=720"_s}, u"no preset \"Nobody\""_s);
        row({u"set"_s, u"First Track"_s, u"audio1.number=2"_s}, u"built in"_s);
        row({u"set"_s, u"settings"_s, u"Mine"_s, u"audio1.number=2"_s},
            u"There is no field \"audio1.number\""_s);
        row({u"rename"_s, u"Other"_s, u"Mine"_s}, u"\"Mine\" already"_s);
        row({u"rename"_s, u"Other"_s, u"All Tracks"_s}, u"\"All Tracks\" already"_s);
        row({u"rename"_s, u"Extract Tracks"_s, u"X"_s}, u"built in"_s);
        row({u"remove"_s, u"All Tracks"_s}, u"built in"_s);
        row({u"remove"_s, u"settings"_s, u"Other"_s}, u"no preset \"Other\""_s);
        row({u"list"_s, u"--for"_s, u"PS3"_s}, u"--for belongs to"_s);
    }

    void whatIsWrongChangesNothing()
    {
        QFETCH(const QStringList, line);
        QFETCH(const QString, told);
        storePresets(*m_cli, {trackPreset(u"Mine"_s, u"#1"_s), trackPreset(u"Other"_s, u"all"_s)},
                     {settingsPreset(u"Mine"_s, u"PS3"_s)});
        const QByteArray before = m_cli->scratch().read(u"defaults.json"_s);
        const auto run = m_cli->run(QStringList{u"presets"_s} + line);
        QCOMPARE(run.status, 64);
        QVERIFY2(run.output.isEmpty(), run.output.constData());
        QVERIFY2(run.said().contains(told), run.error.constData());
        QCOMPARE(m_cli->scratch().read(u"defaults.json"_s), before);
    }

private:
    CliFixture::Run compareRun(const QStringList &line) const
    {
        const auto run = m_cli->run(QStringList{u"presets"_s} + line);
        if (run.status != 0 || !run.error.isEmpty())
            qFatal("%s: %s", qPrintable(line.join(u' ')), run.error.constData());
        return run;
    }
    QJsonObject stored() const { return objectIn(m_cli->scratch().read(u"defaults.json"_s)); }

    std::unique_ptr<CliFixture> m_cli;
};

TESSARAY_TEST(CliPresetEditTest)
#include "CliPresetEditTest.moc"
