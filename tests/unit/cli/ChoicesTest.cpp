#include "support/TestMain.h"
#include "unit/cli/ChoicesFilm.h"

#include <QTest>

using cli::Choices;

namespace {

SelectionPointer filmWith(const QStringList &options)
{
    const SelectionPointer selection = film();
    apply(choicesOf(options), *selection);
    return selection;
}

SelectionPointer filmWith(const QString &options)
{
    return filmWith(options.split(u' ', Qt::SkipEmptyParts));
}

} // namespace

class ChoicesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutChoices()
    {
        const Choices choices = choicesOf(QString());
        QVERIFY(choices.error().isNull());
        QVERIFY(!choices.tracks().has_value());
        const SelectionPointer selection = film();
        selection->setUserVideoBitRate(u"4321"_s);
        selection->setUserWidth(u"1920"_s);
        apply(choices, *selection);
        QCOMPARE(selection->theDevice(), u"General"_s);
        QCOMPARE(selection->userPassNumber(), u"1"_s);
        QCOMPARE(selection->userVideoBitRate(), u"4321"_s);
        QCOMPARE(selection->userWidth(), u"1920"_s);
        const TrackList tracks = selection->trackList();
        QCOMPARE(tracks.at(0)->userCodec(), u"passthru"_s);
        QCOMPARE(tracks.at(2)->userAudioSettingsDictionaryArray(),
                 AudioSettingsList({support::audioSettings(u"passthru"_s, u"2"_s)}));
        QCOMPARE(tracks.at(3)->userCodec(), u"mux"_s);
    }

    void everyTargetIsTaken_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QString>("device");
        for (const QString &name :
             {u"General"_s, u"iPod (All non-Touch)"_s, u"iPhone (3 and Earlier)"_s,
              u"iPod Touch (3 and Earlier)"_s, u"iPad (2 and Earlier)"_s, u"Apple TV 2"_s, u"iPhone 4"_s,
              u"iPod Touch (4 and Later)"_s, u"Apple TV (3 and Later)"_s, u"iPad (3 and Later)"_s,
              u"iPad Mini (All)"_s, u"iPhone (4S and Later)"_s, u"PS3"_s, u"Xbox"_s}) {
            QTest::newRow(qPrintable(name)) << QStringList{u"--device"_s, name} << name;
            QTest::newRow(qPrintable(name + u" mp4"_s))
                << QStringList{u"--device"_s, name, u"--kind"_s, u"mp4"_s} << name;
        }
        QTest::newRow("kind mp4") << QStringList{u"--kind"_s, u"mp4"_s} << u"General"_s;
        QTest::newRow("kind mkv") << QStringList{u"--kind"_s, u"mkv"_s} << u"MKV"_s;
        QTest::newRow("kind avi") << QStringList{u"--kind"_s, u"avi"_s} << u"AVI"_s;
    }

    void everyTargetIsTaken()
    {
        QFETCH(QStringList, options);
        QCOMPARE(choicesOf(options).error(), QString());
        QTEST(filmWith(options)->theDevice(), "device");
    }

    void wrongTargetsAreNamed_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QString>("named");
        QTest::newRow("unknown device") << QStringList{u"--device"_s, u"Toaster"_s} << u"Toaster"_s;
        QTest::newRow("other letters") << QStringList{u"--device"_s, u"ps3"_s} << u"ps3"_s;
        QTest::newRow("no device") << QStringList{u"--device"_s, u""_s} << u"device \"\""_s;
        QTest::newRow("unknown kind") << QStringList{u"--kind"_s, u"mov"_s} << u"mov"_s;
        QTest::newRow("kind in capitals") << QStringList{u"--kind"_s, u"MKV"_s} << u"MKV"_s;
        QTest::newRow("no kind") << QStringList{u"--kind"_s, u""_s} << u"kind \"\""_s;
        for (const QString &device : {u"PS3"_s, u"General"_s, u"MKV"_s, u"AVI"_s}) {
            for (const QString &kind : {u"mkv"_s, u"avi"_s})
                QTest::newRow(qPrintable(device + u' ' + kind))
                    << QStringList{u"--device"_s, device, u"--kind"_s, kind} << u"exclude each other"_s;
        }
        QTest::newRow("MKV mp4") << QStringList{u"--device"_s, u"MKV"_s, u"--kind"_s, u"mp4"_s}
                                 << u"exclude each other"_s;
    }

    void wrongTargetsAreNamed()
    {
        QFETCH(QStringList, options);
        QFETCH(QString, named);
        const QString error = choicesOf(options).error();
        QVERIFY2(error.contains(named), qPrintable(error));
    }

    void videoIsCopiedOrReencoded_data()
    {
        QTest::addColumn<QString>("options");
        QTest::addColumn<QString>("codec");
        QTest::addColumn<QString>("passes");
        QTest::newRow("passthru") << u"--video passthru"_s << u"passthru"_s << u"1"_s;
        QTest::newRow("1pass") << u"--video 1pass"_s << u"h264"_s << u"1"_s;
        QTest::newRow("2pass") << u"--video 2pass"_s << u"h264"_s << u"2"_s;
    }

    void videoIsCopiedOrReencoded()
    {
        QFETCH(QString, options);
        QCOMPARE(choicesOf(options).error(), QString());
        const SelectionPointer selection = filmWith(options);
        QTEST(selection->trackList().at(0)->userCodec(), "codec");
        QTEST(selection->userPassNumber(), "passes");
    }

    void numbersAreTaken()
    {
        const SelectionPointer selection = filmWith(u"--video 1pass --video-bitrate 2500 --width 0640"_s);
        QCOMPARE(selection->userVideoBitRate(), u"2500"_s);
        QCOMPARE(selection->userWidth(), u"640"_s);
    }

    void numbersForAVideoThatPassesThroughChangeNothing()
    {
        const Choices choices = choicesOf(u"--video passthru --video-bitrate 25000 --width 2560"_s);
        QCOMPARE(choices.error(), QString());
        QVERIFY2(choices.note().contains(u"--video-bitrate"_s), qPrintable(choices.note()));
        QVERIFY(choicesOf(u"--video 1pass --video-bitrate 25000"_s).note().isNull());
        QVERIFY(choicesOf(u"--video passthru"_s).note().isNull());
    }

    void wrongVideoIsNamed_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<QString>("value");
        QTest::newRow("no such mode") << u"video"_s << u"3pass"_s;
        QTest::newRow("empty mode") << u"video"_s << u""_s;
        QTest::newRow("a codec") << u"video"_s << u"h264"_s;
        for (const QString &option : {u"video-bitrate"_s, u"width"_s}) {
            for (const QString &value : {u"0"_s, u"00"_s, u"-5"_s, u"+5"_s, u"2.5"_s, u"2500k"_s, u"abc"_s,
                                         u""_s, u" 5"_s, u"1e3"_s, u"٣"_s, u"1234567890"_s})
                QTest::newRow(qPrintable(option + u'=' + value)) << option << value;
        }
    }

    void wrongVideoIsNamed()
    {
        QFETCH(QString, option);
        QFETCH(QString, value);
        QStringList options{u"--"_s + option, value};
        if (option != u"video"_s)
            options << u"--video"_s << u"1pass"_s;
        const QString error = choicesOf(options).error();
        QVERIFY2(error.contains(u"--"_s + option) && error.contains(u"\"%1\""_s.arg(value)),
                 qPrintable(error));
    }

    void audioSettings_data()
    {
        using support::audioSettings;
        QTest::addColumn<QString>("options");
        QTest::addColumn<AudioSettingsList>("settings");
        const QVariantMap copied = audioSettings(u"passthru"_s, u"6"_s, u"0"_s);
        QTest::newRow("aac") << u"--audio 1=aac:2:160"_s
                             << AudioSettingsList{audioSettings(u"aac"_s, u"2"_s, u"160"_s)};
        QTest::newRow("ac3") << u"--audio 1=ac3:6:448"_s
                             << AudioSettingsList{audioSettings(u"ac3"_s, u"6"_s, u"448"_s)};
        QTest::newRow("mp3") << u"--audio 1=mp3:1:64"_s
                             << AudioSettingsList{audioSettings(u"mp3"_s, u"1"_s, u"64"_s)};
        QTest::newRow("eight channels")
            << u"--audio 1=aac:8:640"_s << AudioSettingsList{audioSettings(u"aac"_s, u"8"_s, u"640"_s)};
        QTest::newRow("passthru") << u"--audio 1=passthru"_s << AudioSettingsList{copied};
        QTest::newRow("three outputs") << u"--audio 1=passthru,aac:2:160,ac3:6:448"_s
                                       << AudioSettingsList{copied, audioSettings(u"aac"_s, u"2"_s, u"160"_s),
                                                            audioSettings(u"ac3"_s, u"6"_s, u"448"_s)};
        QTest::newRow("repeated") << u"--audio 1=passthru --audio 2=mp3:2:128 --audio 1=aac:2:160"_s
                                  << AudioSettingsList{copied, audioSettings(u"aac"_s, u"2"_s, u"160"_s)};
        QTest::newRow("leading zeros")
            << u"--audio 1=aac:02:0160"_s << AudioSettingsList{audioSettings(u"aac"_s, u"2"_s, u"160"_s)};
    }

    void audioSettings()
    {
        QFETCH(QString, options);
        QCOMPARE(choicesOf(options).error(), QString());
        const SelectionPointer selection = filmWith(options);
        QVERIFY(choicesOf(options).errorFor(*selection).isNull());
        QTEST(selection->trackList().at(1)->userAudioSettingsDictionaryArray(), "settings");
    }

    void audioTracksThatAreNotNamedStay()
    {
        const SelectionPointer selection = filmWith(u"--audio 1=aac:2:160"_s);
        QCOMPARE(selection->trackList().at(2)->userAudioSettingsDictionaryArray(),
                 AudioSettingsList({support::audioSettings(u"passthru"_s, u"2"_s)}));
    }

    void wrongAudioIsNamed_data()
    {
        QTest::addColumn<QString>("value");
        for (const auto *value : {"",
                                  "1",
                                  "=aac:2:160",
                                  "x=aac:2:160",
                                  "-1=aac:2:160",
                                  "1.0=passthru",
                                  "1=",
                                  "1=aac",
                                  "1=aac:2",
                                  "1=aac:2:160:1",
                                  "1=opus:2:96",
                                  "1=AAC:2:160",
                                  "1=Passthru",
                                  "1=passthru:2:160",
                                  "1=aac:0:160",
                                  "1=aac:9:160",
                                  "1=aac:x:160",
                                  "1=aac::160",
                                  "1=aac:2:",
                                  "1=aac:2:0",
                                  "1=aac:2:-1",
                                  "1=aac:2:160k",
                                  "1=aac:2:1.5",
                                  "1=aac:2:160,",
                                  "1=,aac:2:160",
                                  "1=aac:2:160,,passthru",
                                  "1=aac:2:160 ",
                                  " 1=aac:2:160",
                                  "1=aac:2:160;ac3:6:448",
                                  "1==passthru",
                                  "+=passthru",
                                  "+x=passthru",
                                  "++1=passthru",
                                  "+-1=passthru",
                                  "1+=passthru",
                                  "+1",
                                  "+1=",
                                  "+1=opus:2:96",
                                  "+ 1=passthru",
                                  "+٣=passthru"})
            QTest::newRow(value) << QString::fromUtf8(value);
    }

    void wrongAudioIsNamed()
    {
        QFETCH(QString, value);
        const QString error = choicesOf(QStringList{u"--audio"_s, value}).error();
        QVERIFY2(error.contains(u"--audio"_s), qPrintable(error));
    }

    void audioMustNameAChosenAudioTrack_data()
    {
        QTest::addColumn<QString>("track");
        QTest::newRow("video") << u"0"_s;
        QTest::newRow("subtitle") << u"3"_s;
        QTest::newRow("not there") << u"4"_s;
        QTest::newRow("another spelling") << u"01"_s;
    }

    void audioMustNameAChosenAudioTrack()
    {
        QFETCH(QString, track);
        const Choices choices = choicesOf(u"--audio %1=passthru"_s.arg(track));
        QCOMPARE(choices.error(), QString());
        const QString error = choices.errorFor(*film());
        QVERIFY2(error.contains(u"track %1,"_s.arg(track)), qPrintable(error));
    }

    void ofSeveralWrongTracksTheFirstOneGivenIsNamed()
    {
        const SelectionPointer selection = film();
        for (int first = 7; first < 15; ++first) {
            for (int second = 7; second < 15; ++second) {
                const Choices choices =
                    choicesOf(u"--audio %1=passthru --audio %2=passthru"_s.arg(first).arg(second));
                QVERIFY2(choices.errorFor(*selection).contains(u"names track %1,"_s.arg(first)),
                         qPrintable(choices.errorFor(*selection)));
            }
        }
    }

    void subtitlesAreMuxedOrBurned()
    {
        QCOMPARE(filmWith(u"--subtitles mux"_s)->trackList().at(3)->userCodec(), u"mux"_s);
        for (const QString &mode : {u"1pass"_s, u"2pass"_s}) {
            const QString options = u"--subtitles burn --video "_s + mode;
            QCOMPARE(choicesOf(options).error(), QString());
            QCOMPARE(filmWith(options)->trackList().at(3)->userCodec(), u"burn"_s);
        }
    }

    void wrongSubtitlesAreNamed_data()
    {
        QTest::addColumn<QString>("options");
        QTest::newRow("no such way") << u"--subtitles draw"_s;
        QTest::newRow("empty") << u"--subtitles="_s;
        QTest::newRow("burned into a copy") << u"--subtitles burn"_s;
        QTest::newRow("burned into a copy, said") << u"--subtitles burn --video passthru"_s;
    }

    void wrongSubtitlesAreNamed()
    {
        QFETCH(QString, options);
        const QString error = choicesOf(options).error();
        QVERIFY2(error.contains(u"--subtitles"_s), qPrintable(error));
    }

    void burningNeedsOneSubtitle()
    {
        const Choices burning = choicesOf(u"--subtitles burn --video 1pass"_s);
        const SelectionPointer selection = film();
        QVERIFY(refusal(burning, selection).isNull());
        const TrackList tracks = selection->trackList();
        selection->setTrackList(tracks.first(3));
        QVERIFY(refusal(burning, selection).contains(u"0 are chosen"_s));
        selection->setTrackList(tracks + TrackList{support::subtitleTrack(u"4"_s, u"ass"_s)});
        QVERIFY(refusal(burning, selection).contains(u"2 are chosen"_s));
        QVERIFY(refusal(choicesOf(u"--subtitles mux"_s), selection).isNull());
    }

    void aConversionNeedsOneVideo()
    {
        const Choices choices = choicesOf(QString());
        const SelectionPointer selection = film();
        QVERIFY(refusal(choices, selection).isNull());
        const TrackList tracks = selection->trackList();
        selection->setTrackList(tracks.mid(1));
        QVERIFY(refusal(choices, selection).contains(u"0 are chosen"_s));
        selection->setTrackList(TrackList{support::videoTrack()} + tracks);
        QVERIFY(refusal(choices, selection).contains(u"2 are chosen"_s));
    }

    void trackLists_data()
    {
        QTest::addColumn<QString>("list");
        QTest::addColumn<QStringList>("indexes");
        QTest::newRow("one") << u"0"_s << QStringList{u"0"_s};
        QTest::newRow("several") << u"0,2,10"_s << QStringList{u"0"_s, u"2"_s, u"10"_s};
        QTest::newRow("order stays") << u"2,0"_s << QStringList{u"2"_s, u"0"_s};
        QTest::newRow("twice") << u"1,1,1"_s << QStringList{u"1"_s};
        QTest::newRow("blanks") << u"0, 1"_s << QStringList{u"0"_s, u"1"_s};
    }

    void trackLists()
    {
        QFETCH(QString, list);
        QFETCH(QStringList, indexes);
        QString error;
        QCOMPARE(cli::trackIndexes(list, error).value_or(QStringList()), indexes);
        QVERIFY(error.isNull());
        QCOMPARE(choicesOf(QStringList{u"--tracks"_s, list}).tracks().value_or(QStringList()), indexes);
    }

    void wrongTrackListsAreNamed_data()
    {
        QTest::addColumn<QString>("list");
        for (const auto *list :
             {"", ",", "0,", ",0", "0,,1", "-1", "a", "0-2", "1.0", "0x1", "all", "+1", "٣"})
            QTest::newRow(list) << QString::fromUtf8(list);
    }

    void wrongTrackListsAreNamed()
    {
        QFETCH(QString, list);
        QString error;
        QVERIFY(!cli::trackIndexes(list, error).has_value());
        QVERIFY2(error.contains(u"--tracks"_s), qPrintable(error));
        QVERIFY(choicesOf(QStringList{u"--tracks"_s, list}).error().contains(u"--tracks"_s));
    }

    void onlyAnAviThatGetsNoPictureLeavesSubtitlesOut()
    {
        QVERIFY(cli::leavesOutSubtitles(*filmWith(u"--kind avi"_s)));
        QVERIFY(cli::leavesOutSubtitles(*filmWith(u"--device AVI"_s)));
        QVERIFY(!cli::leavesOutSubtitles(*filmWith(u"--kind avi --subtitles burn --video 1pass"_s)));
        QVERIFY(!cli::leavesOutSubtitles(*filmWith(u"--kind mkv"_s)));
        QVERIFY(!cli::leavesOutSubtitles(*filmWith(QString())));
    }

    void theFirstFaultIsTold()
    {
        const QString error = choicesOf(u"--device Toaster --video 9pass --tracks x"_s).error();
        QVERIFY2(error.contains(u"Toaster"_s), qPrintable(error));
        QVERIFY(!error.contains(u"9pass"_s));
    }
};

TESSARAY_TEST(ChoicesTest)
#include "ChoicesTest.moc"
