#include "support/TestMain.h"
#include "support/selection/ControllerFixture.h"

#include <QSignalSpy>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using support::ControllerFixture;
using support::outputsOf;
using support::probedAudio;
using support::probedSubtitle;
using support::probedVideo;
using support::setOutputs;

namespace {

TrackPointer audioWith(const QString &outputs)
{
    const TrackPointer track = probedAudio(u"dts"_s, u"6"_s);
    setOutputs(*track, outputs);
    return track;
}

/// A video and one stereo track for each language; the audio tracks start at row 1.
struct Languages : ControllerFixture
{
    explicit Languages(const QStringList &languages)
        : ControllerFixture(tracks(languages))
    {
        selectAll();
    }
    static TrackList tracks(const QStringList &languages)
    {
        TrackList list{probedVideo()};
        for (const QString &language : languages)
            list.append(probedAudio(u"aac"_s, u"2"_s, language));
        return list;
    }
    /// Ticks nothing but these rows.
    void selectRows(const QList<int> &rows)
    {
        for (int row = 0; row < file->trackList().size(); ++row)
            file->trackList().at(row)->setTrackSelected(rows.contains(row));
        controller.trackTableSelectionChanged(KXSelectionController::Sender::TrackTable);
    }
    QString shown() const { return controller.audioTrackLabels().value(controller.audioTrackPopupIndex()); }
};

QString ticks(const KXSelectionController &controller)
{
    return controller.audioMatrixSelections().join(u", "_s);
}

QString states(const KXSelectionController &controller)
{
    QString text;
    for (const char *name : {"passthruState", "aac2State", "aac51State", "ac351State"})
        text += controller.property(name).toBool() ? u'1' : u'0';
    return text;
}

QString rates(const KXSelectionController &controller)
{
    return controller.enteredAAC2BitRate() + u" | "_s + controller.enteredAAC51BitRate() + u" | "_s +
           controller.enteredAC351BitRate();
}

} // namespace

/// The popup of selected audio tracks, and the four actions of the track that it shows.
class AudioPopupTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void labelsSayChannelsCodecAndLanguage()
    {
        ControllerFixture fixture({probedVideo(), probedAudio(u"dtshd"_s, u"8"_s, u"German"_s),
                                   probedAudio(u"aac"_s, u"2"_s, u"undetermined"_s), probedSubtitle()});
        fixture.selectAll();
        QCOMPARE(fixture.controller.audioTrackLabels(),
                 QStringList({u"8 Ch. DTSHD - German"_s, u"2 Ch. AAC - undetermined"_s}));
    }

    void popupIsShownFromTwoTracksOn()
    {
        Languages fixture({u"English"_s, u"French"_s});
        QVERIFY(!fixture.controller.hideAudioTrackPopupFlag());
        fixture.tick(1, false);
        QCOMPARE(fixture.controller.audioTrackLabels(), QStringList{u"2 Ch. AAC - French"_s});
        QVERIFY(fixture.controller.hideAudioTrackPopupFlag());
        fixture.tick(1);
        QVERIFY(!fixture.controller.hideAudioTrackPopupFlag());
        fixture.selectRows({0});
        QVERIFY(fixture.controller.audioTrackLabels().isEmpty());
        QVERIFY(fixture.controller.hideAudioTrackPopupFlag());
    }

    void shownTrackStaysShownWhenTheListGrows()
    {
        Languages fixture({u"English"_s, u"French"_s, u"German"_s});
        fixture.selectRows({0, 2, 3});
        fixture.controller.setAudioTrackPopupIndex(1);
        QCOMPARE(fixture.shown(), u"2 Ch. AAC - German"_s);
        fixture.tick(1);
        QCOMPARE(fixture.controller.audioTrackPopupIndex(), 2);
        QCOMPARE(fixture.shown(), u"2 Ch. AAC - German"_s);
    }

    void firstTrackIsShownWhenTheGrownListLacksTheShownOne()
    {
        Languages fixture({u"English"_s, u"French"_s});
        fixture.controller.setAudioTrackPopupIndex(1);
        fixture.setFile(u"/v/b.mkv"_s, Languages::tracks({u"Greek"_s, u"Latin"_s, u"Welsh"_s}));
        fixture.selectAll();
        QCOMPARE(fixture.controller.audioTrackPopupIndex(), 0);
    }

    /// Meant: labels are all that is compared, so the first of the tracks that are alike is shown.
    void tracksWithOneLabelAreNotToldApart()
    {
        Languages fixture({u"English"_s, u"English"_s, u"French"_s});
        fixture.selectRows({0, 1, 2});
        fixture.controller.setAudioTrackPopupIndex(1);
        fixture.tick(3);
        QCOMPARE(fixture.controller.audioTrackPopupIndex(), 0);
    }

    /// Meant: only a list that grew moves the index.
    void indexStaysWhenTheListShrinks()
    {
        Languages fixture({u"English"_s, u"French"_s, u"German"_s});
        fixture.controller.setAudioTrackPopupIndex(1);
        fixture.tick(1, false);
        QCOMPARE(fixture.controller.audioTrackPopupIndex(), 1);
        QCOMPARE(fixture.shown(), u"2 Ch. AAC - German"_s);
    }

    /// Meant: the same.
    void indexStaysWhenTheListIsAsLong()
    {
        Languages fixture({u"English"_s, u"French"_s, u"German"_s});
        fixture.selectRows({1, 2});
        fixture.controller.setAudioTrackPopupIndex(1);
        fixture.selectRows({2, 3});
        QCOMPARE(fixture.controller.audioTrackPopupIndex(), 1);
        QCOMPARE(fixture.shown(), u"2 Ch. AAC - German"_s);
    }

    void indexOutsideTheListIsTheFirst()
    {
        Languages fixture({u"English"_s, u"French"_s, u"German"_s});
        fixture.controller.setAudioTrackPopupIndex(2);
        fixture.tick(1, false);
        QCOMPARE(fixture.controller.audioTrackPopupIndex(), 0);
        for (const int outside : {-1, 2, 99}) {
            fixture.controller.setAudioTrackPopupIndex(1);
            QCOMPARE(fixture.controller.audioTrackPopupIndex(), 1);
            fixture.controller.setAudioTrackPopupIndex(outside);
            QCOMPARE(fixture.controller.audioTrackPopupIndex(), 0);
        }
    }

    void noIndexOutsideTheLabelsIsEverAnnounced()
    {
        Languages fixture({u"English"_s, u"French"_s, u"German"_s});
        fixture.controller.setAudioTrackPopupIndex(2);
        QStringList wrong;
        int announced = 0;
        connect(&fixture.controller, &KXSelectionController::stateChanged, this, [&] {
            ++announced;
            const int index = fixture.controller.audioTrackPopupIndex();
            const qsizetype labels = fixture.controller.audioTrackLabels().size();
            if (index < 0 || index >= std::max<qsizetype>(labels, 1))
                wrong.append(u"%1 of %2"_s.arg(index).arg(labels));
        });
        fixture.selectRows({0, 2});
        fixture.selectRows({1, 3});
        fixture.selectRows({});
        fixture.selectRows({1, 2, 3});
        QCOMPARE(wrong, QStringList());
        QVERIFY(announced > 0);
    }

    void controlsAreLoadedFromTheShownTrack_data()
    {
        QTest::addColumn<QString>("outputs");
        QTest::addColumn<QString>("actions");
        QTest::addColumn<QString>("boxes"); // pass through, AAC stereo, AAC surround, AC3
        QTest::addColumn<QString>("bitRates");
        const QString entered = u"128 kbps | 384 kbps | 448 kbps"_s;
        QTest::newRow("none") << u""_s << u""_s << u"0000"_s << entered;
        QTest::newRow("pass through") << u"passthru 6 0"_s << u"Pass Thru"_s << u"1000"_s << entered;
        QTest::newRow("aac stereo") << u"aac 2 192"_s << u"AAC (2-Ch.)"_s << u"0100"_s
                                    << u"192 kbps | 384 kbps | 448 kbps"_s;
        QTest::newRow("aac surround")
            << u"aac 6 512"_s << u"AAC (5.1)"_s << u"0010"_s << u"128 kbps | 512 kbps | 448 kbps"_s;
        QTest::newRow("ac3") << u"ac3 6 640"_s << u"AC3 (5.1)"_s << u"0001"_s
                             << u"128 kbps | 384 kbps | 640 kbps"_s;
        QTest::newRow("all") << u"passthru 6 0, aac 2 160, aac 6 320, ac3 6 512"_s
                             << u"Pass Thru, AAC (2-Ch.), AAC (5.1), AC3 (5.1)"_s << u"1111"_s
                             << u"160 kbps | 320 kbps | 512 kbps"_s;
        QTest::newRow("in their own order") << u"ac3 6 640, passthru 6 0"_s << u"AC3 (5.1), Pass Thru"_s
                                            << u"1001"_s << u"128 kbps | 384 kbps | 640 kbps"_s;
    }

    void controlsAreLoadedFromTheShownTrack()
    {
        QFETCH(QString, outputs);
        QFETCH(QString, actions);
        QFETCH(QString, boxes);
        QFETCH(QString, bitRates);
        const TrackPointer first = audioWith(u""_s);
        const TrackPointer second = audioWith(outputs);
        ControllerFixture fixture({probedVideo(), first, second});
        fixture.selectAll();
        fixture.controller.setAudioTrackPopupIndex(1);
        QCOMPARE(ticks(fixture.controller), actions);
        QCOMPARE(states(fixture.controller), boxes);
        QCOMPARE(rates(fixture.controller), bitRates);
        QCOMPARE(outputsOf(*second), outputs); // looking at a track does not change it
        QCOMPARE(outputsOf(*first), u""_s);
    }

    void ticksOfTheTrackBeforeAreCleared()
    {
        ControllerFixture fixture({probedVideo(), audioWith(u"passthru 6 0, ac3 6 640"_s), audioWith(u""_s)});
        fixture.selectAll();
        QCOMPARE(states(fixture.controller), u"1001"_s);
        fixture.controller.setAudioTrackPopupIndex(1);
        QCOMPARE(states(fixture.controller), u"0000"_s);
        fixture.controller.setAudioTrackPopupIndex(0);
        QCOMPARE(ticks(fixture.controller), u"Pass Thru, AC3 (5.1)"_s);
    }

    void withoutAnAudioTrackNothingIsTicked()
    {
        Languages fixture({u"English"_s});
        QCOMPARE(states(fixture.controller), u"1000"_s);
        fixture.selectRows({0});
        QCOMPARE(states(fixture.controller), u"0000"_s);
        QCOMPARE(fixture.controller.audioTrackPopupIndex(), 0);
    }

    void anotherTrackInThePopupUpdatesTheTabs()
    {
        ControllerFixture fixture({probedVideo(), probedAudio(), probedAudio(u"dts"_s, u"6"_s)});
        fixture.selectAll();
        QVERIFY(!fixture.controller.popupAudioIsSurround());
        fixture.controller.setAudioTrackPopupIndex(1);
        QVERIFY(fixture.controller.popupAudioIsSurround());
        QCOMPARE(fixture.controller.mkvAudioPassThruColor(), u"red"_s);
        QCOMPARE(fixture.openFiles.calls.size(), 1);
    }

    void popupDoesNotCallBackWhileTheTabsAreUpdated()
    {
        Languages fixture({u"English"_s, u"French"_s});
        int calls = 0;
        connect(&fixture.controller, &KXSelectionController::stateChanged, this, [&] {
            if (fixture.controller.appIsUpdatingTabs() && ++calls == 1)
                fixture.controller.setAudioTrackPopupIndex(1);
        });
        fixture.controller.setCanAddTrack(false); // so that the update has something to say
        fixture.forgetCalls();
        fixture.controller.updateTabs();
        QVERIFY(calls > 0);
        QCOMPARE(fixture.openFiles.calls.size(), 1);
        QCOMPARE(fixture.controller.audioTrackPopupIndex(), 1);
        QVERIFY(!fixture.controller.appIsUpdatingTabs());
    }

    void sameLabelsLoadTheControlsAgain()
    {
        Languages fixture({u"English"_s});
        setOutputs(*fixture.file->trackList().at(1), u"aac 2 256"_s);
        fixture.controller.upddateAudioTrackPopupFor();
        QCOMPARE(ticks(fixture.controller), u"AAC (2-Ch.)"_s);
        QCOMPARE(fixture.controller.enteredAAC2BitRate(), u"256 kbps"_s);
    }

    void otherLabelsLoadTheControlsAgain()
    {
        Languages fixture({u"English"_s, u"French"_s});
        fixture.controller.setAudioTrackPopupIndex(1);
        setOutputs(*fixture.file->trackList().at(2), u"aac 2 256"_s);
        fixture.controller.setAudioTrackLabels({u"one"_s, u"two"_s});
        QCOMPARE(fixture.controller.audioTrackLabels(), QStringList({u"one"_s, u"two"_s}));
        QCOMPARE(fixture.controller.audioTrackPopupIndex(), 1);
        QCOMPARE(ticks(fixture.controller), u"AAC (2-Ch.)"_s);
    }

    void labelsThatAreSetAgainChangeNothing()
    {
        Languages fixture({u"English"_s});
        setOutputs(*fixture.file->trackList().at(1), u"aac 2 256"_s);
        QSignalSpy changes(&fixture.controller, &KXSelectionController::stateChanged);
        fixture.controller.setAudioTrackLabels({u"2 Ch. AAC - English"_s});
        QCOMPARE(changes.count(), 0);
        QCOMPARE(ticks(fixture.controller), u"Pass Thru"_s);
    }

    void tickingAacSurroundForTheSecondTrackGivesThatTrackTheOutput()
    {
        const TrackPointer first = probedAudio(u"dts"_s, u"6"_s, u"English"_s);
        const TrackPointer second = probedAudio(u"dts"_s, u"6"_s, u"French"_s);
        ControllerFixture fixture({probedVideo(), first, second});
        fixture.selectAll();
        fixture.controller.setAudioTrackPopupIndex(1);
        fixture.controller.tickAudioAction(u"Pass Thru"_s, false);
        fixture.controller.setEnteredAAC51BitRate(u"384 kbps"_s);
        fixture.controller.tickAudioAction(u"AAC (5.1)"_s, true);
        const QVariantMap expected{
            {u"userCodec"_s, u"aac"_s}, {u"userBitRate"_s, u"384"_s}, {u"userNumberOfChannels"_s, u"6"_s}};
        QCOMPARE(second->userAudioSettingsDictionaryArray(), AudioSettingsList{expected});
        QCOMPARE(outputsOf(*first), u"passthru 6 0"_s);
    }

    void tickedActionsStandInTheOfferedOrder()
    {
        ControllerFixture fixture({probedVideo(), audioWith(u""_s)});
        fixture.selectAll();
        for (const QString &action :
             {u"AC3 (5.1)"_s, u"AAC (2-Ch.)"_s, u"AAC (5.1)"_s, u"Pass Thru"_s, u"AAC (2-Ch.)"_s})
            fixture.controller.tickAudioAction(action, true);
        QCOMPARE(ticks(fixture.controller), u"Pass Thru, AAC (2-Ch.), AAC (5.1), AC3 (5.1)"_s);
        fixture.controller.tickAudioAction(u"AAC (5.1)"_s, false);
        QCOMPARE(ticks(fixture.controller), u"Pass Thru, AAC (2-Ch.), AC3 (5.1)"_s);
        QCOMPARE(outputsOf(*fixture.file->trackList().at(1)), u"passthru 6 0, aac 2 128, ac3 6 448"_s);
    }

    void tickPutsLoadedActionsIntoTheOfferedOrder()
    {
        const TrackPointer track = audioWith(u"ac3 6 640, passthru 6 0"_s);
        ControllerFixture fixture({probedVideo(), track});
        fixture.selectAll();
        QCOMPARE(ticks(fixture.controller), u"AC3 (5.1), Pass Thru"_s);
        fixture.controller.tickAudioAction(u"AAC (2-Ch.)"_s, true);
        QCOMPARE(ticks(fixture.controller), u"Pass Thru, AAC (2-Ch.), AC3 (5.1)"_s);
        QCOMPARE(outputsOf(*track), u"passthru 6 0, aac 2 128, ac3 6 640"_s);
    }

    void unknownActionIsNotTicked()
    {
        Languages fixture({u"English"_s});
        fixture.controller.tickAudioAction(u"MP3"_s, true);
        QCOMPARE(ticks(fixture.controller), u"Pass Thru"_s);
    }
};

TESSARAY_TEST(AudioPopupTest)
#include "AudioPopupTest.moc"
