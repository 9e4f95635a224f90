// Choices by hand where a settings preset chose too, or where files were added.
#include "support/TestMain.h"
#include "unit/cli/ChoicesFilm.h"

#include <QTest>

using cli::Choices;

namespace {

/// The same as a settings preset left it: for a PS3, re-encoded in two passes, its subtitle burned.
SelectionPointer presetFilm(const QString &device = u"PS3"_s)
{
    const SelectionPointer selection = film();
    selection->setTheDevice(device);
    selection->setUserPassNumber(u"2"_s);
    selection->setUserVideoBitRate(u"700"_s);
    selection->setUserWidth(u"640"_s);
    const TrackList tracks = selection->trackList();
    tracks.at(0)->setUserCodec(u"h264"_s);
    tracks.at(1)->setUserAudioSettingsDictionaryArray({support::audioSettings(u"ac3"_s, u"6"_s, u"448"_s)});
    tracks.at(3)->setUserCodec(u"burn"_s);
    return selection;
}

/// Device, passes, bit rate, width, video, the outputs of stream 1, subtitle.
QString shown(const KXSelection &selection)
{
    const TrackList tracks = selection.trackList();
    QStringList outputs;
    for (const QVariantMap &setting : tracks.at(1)->userAudioSettingsDictionaryArray())
        outputs.append(setting.value(u"userCodec"_s).toString() +
                       setting.value(u"userNumberOfChannels"_s).toString());
    return QStringList{selection.theDevice(),    selection.userPassNumber(), selection.userVideoBitRate(),
                       selection.userWidth(),    tracks.at(0)->userCodec(),  outputs.join(u'+'),
                       tracks.at(3)->userCodec()}
        .join(u' ');
}

/// The film with two added files, an audio file and a subtitle, and then another audio file.
SelectionPointer filmWithAdded()
{
    using namespace support;
    const SelectionPointer selection = film();
    selection->setTrackList(selection->trackList()
                            << external(audioTrack(u"0"_s, u"ac3"_s, u"6"_s, {}), u"/v/b.ac3"_s)
                            << external(subtitleTrack(u"0"_s, u"srt"_s), u"/v/c.srt"_s)
                            << external(audioTrack(u"0"_s, u"aac"_s, u"1"_s, {}), u"/v/d.m4a"_s));
    return selection;
}

AudioSettingsList outputsOf(const KXSelection &selection, qsizetype track)
{
    return selection.trackList().at(track)->userAudioSettingsDictionaryArray();
}

} // namespace

class ChoicesBesidePresetsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSettingsPresetKeepsWhatIsNotGiven_data()
    {
        QTest::addColumn<QString>("options");
        QTest::addColumn<QString>("result");
        QTest::newRow("nothing given") << QString() << u"PS3 2 700 640 h264 ac36 burn"_s;
        QTest::newRow("tracks") << u"--tracks 0,1"_s << u"PS3 2 700 640 h264 ac36 burn"_s;
        QTest::newRow("device") << u"--device Xbox"_s << u"Xbox 2 700 640 h264 ac36 burn"_s;
        QTest::newRow("no device in particular")
            << u"--device General"_s << u"General 2 700 640 h264 ac36 burn"_s;
        QTest::newRow("kind mkv") << u"--kind mkv"_s << u"MKV 2 700 640 h264 ac36 burn"_s;
        QTest::newRow("kind avi") << u"--kind avi"_s << u"AVI 2 700 640 h264 ac36 burn"_s;
        QTest::newRow("the kind it has") << u"--kind mp4"_s << u"PS3 2 700 640 h264 ac36 burn"_s;
        QTest::newRow("passthru") << u"--video passthru"_s << u"PS3 1 700 640 passthru ac36 burn"_s;
        QTest::newRow("1pass") << u"--video 1pass"_s << u"PS3 1 700 640 h264 ac36 burn"_s;
        QTest::newRow("bit rate") << u"--video-bitrate 900"_s << u"PS3 2 900 640 h264 ac36 burn"_s;
        QTest::newRow("width") << u"--width 320"_s << u"PS3 2 700 320 h264 ac36 burn"_s;
        QTest::newRow("audio") << u"--audio 1=passthru,aac:2:96"_s
                               << u"PS3 2 700 640 h264 passthru6+aac2 burn"_s;
        QTest::newRow("another track's audio")
            << u"--audio 2=aac:2:96"_s << u"PS3 2 700 640 h264 ac36 burn"_s;
        QTest::newRow("subtitles") << u"--subtitles mux"_s << u"PS3 2 700 640 h264 ac36 mux"_s;
    }

    void aSettingsPresetKeepsWhatIsNotGiven()
    {
        QFETCH(QString, options);
        const Choices choices = choicesOf(u"--settings-preset Mine "_s + options);
        QCOMPARE(choices.error(), QString());
        QVERIFY(choices.note().isNull());
        const SelectionPointer selection = presetFilm();
        apply(choices, *selection);
        QTEST(shown(*selection), "result");
    }

    void theKindMp4LeavesAPresetsMatroska_data()
    {
        QTest::addColumn<QString>("preset");
        QTest::addColumn<QString>("device");
        QTest::newRow("Matroska") << u"MKV"_s << u"General"_s;
        QTest::newRow("AVI") << u"AVI"_s << u"General"_s;
        QTest::newRow("a device") << u"Apple TV (3 and Later)"_s << u"Apple TV (3 and Later)"_s;
        QTest::newRow("an unknown device") << u"Apple TV"_s << u"Apple TV"_s;
    }

    void theKindMp4LeavesAPresetsMatroska()
    {
        QFETCH(QString, preset);
        const SelectionPointer selection = presetFilm(preset);
        apply(choicesOf(u"--settings-preset Mine --kind mp4"_s), *selection);
        QTEST(selection->theDevice(), "device");
    }

    void withASettingsPresetBurningIsJudgedWhenItIsKnown()
    {
        const Choices burning = choicesOf(u"--settings-preset Mine --subtitles burn"_s);
        QCOMPARE(burning.error(), QString());
        const SelectionPointer selection = presetFilm();
        apply(burning, *selection);
        QVERIFY(refusal(burning, selection).isNull());
        selection->trackList().at(0)->setUserCodec(u"passthru"_s);
        QVERIFY(refusal(burning, selection).contains(u"re-encoded"_s));
        QVERIFY(choicesOf(u"--settings-preset Mine --subtitles burn --video passthru"_s)
                    .error()
                    .contains(u"--subtitles"_s));
    }

    void aPresetsBurningIsJudgedLikeOneByHand()
    {
        const Choices choices = choicesOf(u"--settings-preset Mine"_s);
        const SelectionPointer selection = presetFilm();
        QVERIFY(refusal(choices, selection).isNull());
        const TrackList tracks = selection->trackList();
        const TrackPointer second = support::subtitleTrack(u"4"_s, u"ass"_s, u"burn"_s);
        selection->setTrackList(tracks + TrackList{second});
        QVERIFY(refusal(choices, selection).contains(u"2 are chosen"_s));
        selection->setTrackList(tracks.first(3)); // nothing to burn is no fault of a preset's
        QVERIFY(refusal(choices, selection).isNull());
        selection->setTrackList(tracks);
        apply(choicesOf(u"--settings-preset Mine --video passthru"_s), *selection);
        QVERIFY(refusal(choices, selection).contains(u"re-encoded"_s));
        apply(choicesOf(u"--settings-preset Mine --subtitles mux"_s), *selection);
        QVERIFY(refusal(choices, selection).isNull());
    }

    void numbersForAVideoThatPassesThroughByHandAreNoted()
    {
        QVERIFY(choicesOf(u"--settings-preset Mine --width 320"_s).note().isNull());
        QVERIFY(choicesOf(u"--settings-preset Mine --video passthru --width 320"_s)
                    .note()
                    .contains(u"--width"_s));
    }

    void whatWasGivenIsKnown_data()
    {
        QTest::addColumn<QString>("options");
        QTest::addColumn<QStringList>("given");
        QTest::newRow("nothing") << QString() << QStringList();
        QTest::newRow("which tracks and presets is no conversion")
            << u"--tracks 0 --track-preset A --settings-preset B --force --dry-run --json"_s << QStringList();
        QTest::newRow("all in a fixed order")
            << u"--add b.srt --subtitles mux --audio 1=passthru --width 2 --video-bitrate 1 --video 1pass "
               "--kind mp4 --device PS3"_s
            << QStringList{u"--device"_s, u"--kind"_s,  u"--video"_s,     u"--video-bitrate"_s,
                           u"--width"_s,  u"--audio"_s, u"--subtitles"_s, u"--add"_s};
        QTest::newRow("twice is once") << u"--add b.srt --add c.srt"_s << QStringList{u"--add"_s};
    }

    void whatWasGivenIsKnown()
    {
        QFETCH(QString, options);
        QTEST(choicesOf(options).given(), "given");
    }

    void addedFilesAreNamedByTheirOrder()
    {
        using support::audioSettings;
        const Choices choices =
            choicesOf(u"--audio +1=aac:2:96 --audio +3=passthru,ac3:1:64 --audio 1=mp3:2:128"_s);
        QCOMPARE(choices.error(), QString());
        const SelectionPointer selection = filmWithAdded();
        QCOMPARE(choices.errorFor(*selection), QString());
        apply(choices, *selection);
        QCOMPARE(outputsOf(*selection, 4), AudioSettingsList({audioSettings(u"aac"_s, u"2"_s, u"96"_s)}));
        QCOMPARE(outputsOf(*selection, 6), AudioSettingsList({audioSettings(u"passthru"_s, u"1"_s, u"0"_s),
                                                              audioSettings(u"ac3"_s, u"1"_s, u"64"_s)}));
        QCOMPARE(outputsOf(*selection, 1), AudioSettingsList({audioSettings(u"mp3"_s, u"2"_s, u"128"_s)}));
    }

    void aStreamIndexNeverMeansAnAddedFile()
    {
        // Each added file has a stream 0 of its own; the film's own may be none of the chosen.
        const SelectionPointer selection = filmWithAdded();
        selection->setTrackList(selection->trackList().mid(1));
        QVERIFY(choicesOf(u"--audio 0=passthru"_s).errorFor(*selection).contains(u"track 0,"_s));
        QVERIFY(choicesOf(u"--audio +0=passthru"_s).errorFor(*selection).contains(u"track +0,"_s));
        const Choices choices = choicesOf(u"--audio 0=passthru"_s);
        QVERIFY(choices.errorFor(*filmWithAdded()).contains(u"track 0,"_s));
    }

    void addedFilesThatAreNotThereAreNamed_data()
    {
        QTest::addColumn<QString>("track");
        QTest::newRow("none before the first") << u"+0"_s;
        QTest::newRow("a subtitle") << u"+2"_s;
        QTest::newRow("behind the last") << u"+4"_s;
        QTest::newRow("far behind") << u"+9"_s;
        QTest::newRow("another spelling") << u"+01"_s;
    }

    void addedFilesThatAreNotThereAreNamed()
    {
        QFETCH(QString, track);
        const Choices choices = choicesOf(u"--audio %1=passthru"_s.arg(track));
        QCOMPARE(choices.error(), QString());
        const QString error = choices.errorFor(*filmWithAdded());
        QVERIFY2(error.contains(u"track %1,"_s.arg(track)), qPrintable(error));
        QVERIFY(!choices.errorFor(*film()).isNull());
    }

    void anAddedFileHasAName()
    {
        QVERIFY(choicesOf(QStringList{u"--add"_s, u""_s}).error().contains(u"--add"_s));
        QVERIFY(choicesOf(QStringList{u"--add"_s, u"b.srt"_s, u"--add="_s}).error().contains(u"--add"_s));
        QVERIFY(choicesOf(QStringList{u"--add"_s, u" "_s}).error().isNull());
    }

    void onlyAFilmsOwnSubtitlesAreLeftOutOfAnAvi()
    {
        const SelectionPointer selection = film();
        selection->setTheDevice(u"AVI"_s);
        selection->trackList().at(3)->setUserCodec(u"mux"_s);
        QVERIFY(cli::leavesOutSubtitles(*selection));
        selection->trackList().at(3)->setUserCodec(u"burn"_s);
        QVERIFY(!cli::leavesOutSubtitles(*selection));
    }
};

TESSARAY_TEST(ChoicesBesidePresetsTest)
#include "ChoicesBesidePresetsTest.moc"
