// The fields themselves: names, defaults, and setters with a rule.
#include "selection/KXSelectionController.h"

#include "support/TestMain.h"
#include "support/selection/ControllerFixture.h"

#include <QMetaProperty>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using support::ControllerFixture;

namespace {

struct FieldValue
{
    const char *name;
    QVariant value;
};

/// What a new controller says once it is initialised.
const QList<FieldValue> &defaults()
{
    static const QString time = u"00:00:00"_s;
    static const QList<FieldValue> values{
        {"hideTrackTogglesFlag", false},
        {"hideTrackTable", false},
        {"hideFileTable", true},
        {"hideAudioTrackPopupFlag", true},
        {"subtitleSelected", false},
        {"canMuxSubtitles", false},
        {"canBurnSubtitles", false},
        {"mustConvertVideoTrack", false},
        {"mustConvertAudioTrack", false},
        {"canAddStereoTrack", false},
        {"canEditTracks", false},
        {"canEditPAR", false},
        {"canSplit", false},
        {"canJoin", false},
        {"oneSubSelected", false},
        {"userMadeAudioSelection", false},
        {"mp4Device", u"General"_s},
        {"enteredSplitStartTime", time},
        {"enteredSplitEndTime", time},
        {"enteredSplitDuration", time},
        {"enteredSplitSize", u"0"_s},
        {"enteredParWidth", u"1"_s},
        {"enteredParHeight", u"1"_s},
        {"enteredUserVideoBitRate", u"0"_s},
        {"enteredUserFPS", u"23.976"_s},
        {"enteredUserWidth", u"0"_s},
        {"enteredAAC2BitRate", u"128 kbps"_s},
        {"enteredAAC51BitRate", u"384 kbps"_s},
        {"enteredAC351BitRate", u"448 kbps"_s},
        {"addStereoTrackButton", 0},
        {"videoMatrixIndex", 0},
        {"audioMatrixIndex", 0},
        {"subtitleMatrixIndex", 0},
        {"editTrackMatrixIndex", 0},
        {"audioTrackPopupIndex", 0},
        {"audioTrackLabels", QStringList{u""_s}},
        {"editTrackLabel", u"Tessaray will extract the tracks selected above into separate files."_s},
    };
    return values;
}

/// The fields that have no default of their own, as they are before anything was opened.
const QList<FieldValue> &unset()
{
    static const QList<FieldValue> values{
        {"canConvertAudioTrack", false},
        {"popupAudioIsSurround", false},
        {"canAddTrack", false},
        {"canConvert", false},
        {"appIsUpdatingTabs", false},
        {"userBitRateOK", false},
        {"userWidthOK", false},
        {"userFPSOK", false},
        {"passthruState", false},
        {"aac2State", false},
        {"aac51State", false},
        {"ac351State", false},
        {"audioMatrixSelections", QStringList()},
        {"splitTypeMatrixIndex", 0},
        {"openQueueMatrixIndex", 0},
        {"mkvVideoPassThruColor", QString()},
        {"mkvAudioPassThruColor", QString()},
        {"currentTab", QString()},
    };
    return values;
}

QVariant otherValue(const QVariant &value)
{
    if (value.typeId() == QMetaType::Bool)
        return !value.toBool();
    if (value.typeId() == QMetaType::Int)
        return value.toInt() + 1;
    if (value.typeId() == QMetaType::QStringList)
        return QStringList{u"another"_s, u"one more"_s};
    return u"77"_s;
}

QString said(const FieldValue &field, const QVariant &value)
{
    QString text;
    QDebug(&text) << field.name << value << "instead of" << field.value;
    return text;
}

} // namespace

class KXSelectionControllerTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyFieldIsAPropertyOfItsName()
    {
        QStringList expected{u"currentSelection"_s,    u"currentVideoFile"_s, u"presetsController"_s,
                             u"audioBitRateContent"_s, u"fpsList"_s,          u"deviceList"_s};
        for (const QList<FieldValue> &list : {defaults(), unset()}) {
            for (const FieldValue &field : list)
                expected.append(QString::fromLatin1(field.name));
        }
        QCOMPARE(expected.size(), 61);
        const QMetaObject &meta = KXSelectionController::staticMetaObject;
        for (const QString &name : expected)
            QVERIFY2(meta.indexOfProperty(qPrintable(name)) >= meta.propertyOffset(), qPrintable(name));
    }

    void defaultsOfAFreshController()
    {
        KXNotificationCenter center;
        KXSelectionController controller(center, std::make_shared<KXVideoFile>(nullptr),
                                         std::make_shared<KXSelection>());
        controller.initialize();
        for (const QList<FieldValue> &list : {defaults(), unset()}) {
            for (const FieldValue &field : list) {
                const QVariant value = controller.property(field.name);
                QVERIFY2(value.isValid() && value == field.value, qPrintable(said(field, value)));
            }
        }
    }

    void initializePutsEveryDefaultBack()
    {
        const TrackPointer surround = support::probedAudio(u"dts"_s, u"6"_s);
        ControllerFixture fixture({support::probedVideo(), support::probedAudio(), surround});
        fixture.selectAll();
        // From the end, as the popup's fields have the others computed anew.
        for (auto field = defaults().rbegin(); field != defaults().rend(); ++field)
            fixture.controller.setProperty(field->name, otherValue(field->value));
        for (const FieldValue &field : defaults())
            QVERIFY2(fixture.controller.property(field.name) != field.value, field.name);
        fixture.controller.initialize();
        for (const FieldValue &field : defaults()) {
            const QVariant value = fixture.controller.property(field.name);
            QVERIFY2(value == field.value, qPrintable(said(field, value)));
        }
    }

    void initializeAnnouncesItself()
    {
        ControllerFixture fixture;
        QSignalSpy changes(&fixture.controller, &KXSelectionController::stateChanged);
        fixture.controller.initialize();
        QCOMPARE(changes.count(), 1);
    }

    void collaboratorsAreReadByName()
    {
        ControllerFixture fixture;
        const QObject &controller = fixture.controller;
        QCOMPARE(controller.property("currentSelection").value<SelectionPointer>(), fixture.selection);
        QCOMPARE(controller.property("currentVideoFile").value<VideoFilePointer>(), fixture.file);
        QCOMPARE(controller.property("presetsController").value<PresetDriver *>(), &fixture.presets);
    }

    void offeredListsAreTheseTexts()
    {
        ControllerFixture fixture;
        QCOMPARE(fixture.controller.audioBitRateContent(),
                 QStringList({u"128 kbps"_s, u"160 kbps"_s, u"192 kbps"_s, u"224 kbps"_s, u"256 kbps"_s,
                              u"320 kbps"_s, u"384 kbps"_s, u"448 kbps"_s, u"512 kbps"_s, u"640 kbps"_s}));
        QCOMPARE(fixture.controller.fpsList(), QStringList({u"23.976"_s, u"25"_s, u"29.97"_s}));
        QCOMPARE(fixture.controller.deviceList(),
                 QStringList({u"General"_s, u"Apple TV 2"_s, u"Apple TV 3"_s, u"iPad (2 and Earlier)"_s,
                              u"iPad 3/iPhone 4S"_s, u"iPhone 4/iPod Touch (4G and Later)"_s,
                              u"iPhone/iPod Touch (3G and Earlier)"_s, u"iPod"_s, u"PS3"_s, u"Xbox"_s}));
    }

    void everySetterAnnouncesAChange()
    {
        int tried = 0;
        const QMetaObject &meta = KXSelectionController::staticMetaObject;
        for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
            const QMetaProperty property = meta.property(i);
            if (!property.isWritable() || !property.hasNotifySignal())
                continue;
            ControllerFixture fixture;
            QSignalSpy changes(&fixture.controller, &KXSelectionController::stateChanged);
            QVERIFY(property.write(&fixture.controller, otherValue(property.read(&fixture.controller))));
            QVERIFY2(!changes.isEmpty(), property.name());
            ++tried;
        }
        QVERIFY(tried > 50);
    }

    void plainSetterKeepsTheValueAndIsSilentAboutTheSameOne()
    {
        ControllerFixture fixture;
        fixture.controller.setVideoMatrixIndex(2);
        fixture.controller.setCanSplit(true);
        QSignalSpy changes(&fixture.controller, &KXSelectionController::stateChanged);
        fixture.controller.setVideoMatrixIndex(2);
        fixture.controller.setCanSplit(true);
        QCOMPARE(changes.count(), 0);
        QCOMPARE(fixture.controller.videoMatrixIndex(), 2);
        QVERIFY(fixture.controller.canSplit());
    }

    void chosenDeviceIsTheSelectionsDevice()
    {
        ControllerFixture fixture;
        QSignalSpy changes(&fixture.controller, &KXSelectionController::stateChanged);
        fixture.controller.setMp4Device(u"Apple TV (3 and Later)"_s);
        QCOMPARE(fixture.controller.mp4Device(), u"Apple TV (3 and Later)"_s);
        QCOMPARE(fixture.selection->theDevice(), u"Apple TV (3 and Later)"_s);
        QCOMPARE(changes.count(), 1);
    }

    void sameDeviceIsNoChangeButReachesTheSelection()
    {
        ControllerFixture fixture;
        fixture.controller.setMp4Device(u"PS3"_s);
        fixture.selection->setTheDevice(u"none"_s);
        QSignalSpy changes(&fixture.controller, &KXSelectionController::stateChanged);
        fixture.controller.setMp4Device(u"PS3"_s);
        QCOMPARE(changes.count(), 0);
        QCOMPARE(fixture.selection->theDevice(), u"PS3"_s);
    }

    void splitSizeAndPixelShapeReachTheSelection()
    {
        ControllerFixture fixture;
        fixture.controller.setEnteredSplitSize(u"700"_s);
        fixture.controller.setEnteredParWidth(u"16"_s);
        fixture.controller.setEnteredParHeight(u"15"_s);
        QCOMPARE(fixture.controller.enteredSplitSize(), u"700"_s);
        QCOMPARE(fixture.controller.enteredParWidth(), u"16"_s);
        QCOMPARE(fixture.controller.enteredParHeight(), u"15"_s);
        QCOMPARE(fixture.selection->splitSize(), u"700"_s);
        QCOMPARE(fixture.selection->userParWidth(), u"16"_s);
        QCOMPARE(fixture.selection->userParHeight(), u"15"_s);
    }

    void typedNumbers_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("whole"); // of bit rate and width
        QTest::addColumn<QString>("rate");  // of frames
        QTest::addColumn<bool>("isNumber");
        QTest::newRow("whole") << u"1280"_s << u"1280"_s << u"1280"_s << true;
        QTest::newRow("fraction") << u"23.976"_s << u"24"_s << u"23.976"_s << true;
        QTest::newRow("long fraction") << u"29.97049"_s << u"30"_s << u"29.97"_s << true;
        QTest::newRow("half") << u"0.5"_s << u"1"_s << u"0.5"_s << true;
        QTest::newRow("zero is a number") << u"0"_s << u"0"_s << u"0"_s << true;
        QTest::newRow("below zero") << u"-3"_s << u"-3"_s << u"-3"_s << true;
        QTest::newRow("leading zeros") << u"0025"_s << u"25"_s << u"25"_s << true;
        QTest::newRow("absent") << QString() << u"0"_s << u"0"_s << false;
        QTest::newRow("empty") << u""_s << u"0"_s << u"0"_s << false;
        QTest::newRow("word") << u"wide"_s << u"0"_s << u"0"_s << false;
        QTest::newRow("unit behind") << u"1280 px"_s << u"0"_s << u"0"_s << false;
        QTest::newRow("grouping") << u"1,280"_s << u"0"_s << u"0"_s << false;
        QTest::newRow("no frame rate") << u"nan"_s << u"0"_s << u"0"_s << false;
    }

    void typedNumbers()
    {
        QFETCH(QString, typed);
        QFETCH(QString, whole);
        QFETCH(QString, rate);
        QFETCH(bool, isNumber);
        ControllerFixture fixture;
        KXSelectionController &controller = fixture.controller;
        controller.setUserBitRateOK(!isNumber);
        controller.setUserWidthOK(!isNumber);
        controller.setUserFPSOK(!isNumber);
        controller.setEnteredUserVideoBitRate(typed);
        controller.setEnteredUserWidth(typed);
        controller.setEnteredUserFPS(typed);
        QCOMPARE(controller.enteredUserVideoBitRate(), whole);
        QCOMPARE(controller.enteredUserWidth(), whole);
        QCOMPARE(controller.enteredUserFPS(), rate);
        QCOMPARE(fixture.selection->userVideoBitRate(), whole);
        QCOMPARE(fixture.selection->userWidth(), whole);
        QCOMPARE(fixture.selection->userFPS(), rate);
        QCOMPARE(controller.userBitRateOK(), isNumber);
        QCOMPARE(controller.userWidthOK(), isNumber);
        QCOMPARE(controller.userFPSOK(), isNumber);
    }

    void eachNumberFieldChangesItsOwnAlone()
    {
        ControllerFixture fixture;
        KXSelectionController &controller = fixture.controller;
        controller.setEnteredUserVideoBitRate(u"1"_s);
        controller.setEnteredUserWidth(u"2"_s);
        controller.setEnteredUserFPS(u"3"_s);
        controller.setEnteredUserWidth(u"none"_s);
        QCOMPARE(controller.enteredUserVideoBitRate(), u"1"_s);
        QCOMPARE(controller.enteredUserWidth(), u"0"_s);
        QCOMPARE(controller.enteredUserFPS(), u"3"_s);
        QCOMPARE(fixture.selection->userVideoBitRate(), u"1"_s);
        QCOMPARE(fixture.selection->userWidth(), u"0"_s);
        QCOMPARE(fixture.selection->userFPS(), u"3"_s);
        QVERIFY(controller.userBitRateOK() && !controller.userWidthOK() && controller.userFPSOK());
    }

    void editTrackLabelSaysWhatWillHappen_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("label");
        // Two blanks after each full stop within are meant.
        QTest::newRow("extract")
            << 0
            << u"Tessaray will extract the tracks selected above into separate files.  You can not extract "
               "tracks that are added to the above table using the Add Tracks button."_s;
        QTest::newRow("remove")
            << 1
            << u"Tessaray will create a copy of the video file with the selected tracks removed.  You can "
               "not remove the video track so the Go button will be disabled if you select a video track."_s;
        QTest::newRow("add")
            << 2
            << u"Tessaray will create a copy of the video file with the selected external audio tracks "
               "added.  You can only add external tracks, that is, tracks that are added to the above table "
               "using the Add Tracks button."_s;
    }

    void editTrackLabelSaysWhatWillHappen()
    {
        QFETCH(int, index);
        QFETCH(QString, label);
        ControllerFixture fixture;
        fixture.controller.setEditTrackMatrixIndex(index);
        QCOMPARE(fixture.controller.editTrackMatrixIndex(), index);
        QCOMPARE(fixture.controller.editTrackLabel(), label);
        // An index that stands for nothing is kept, the text stays.
        fixture.controller.setEditTrackMatrixIndex(3);
        QCOMPARE(fixture.controller.editTrackMatrixIndex(), 3);
        QCOMPARE(fixture.controller.editTrackLabel(), label);
    }

    void encoderFollowsItsCheckBox()
    {
        ControllerFixture fixture;
        fixture.controller.useNewEncoderCheckBox(false);
        QCOMPARE(fixture.selection->currentEncoder(), u"mencoder"_s);
        fixture.controller.useNewEncoderCheckBox(true);
        QCOMPARE(fixture.selection->currentEncoder(), u"ffmpeg"_s);
    }
};

TESSARAY_TEST(KXSelectionControllerTest)
#include "KXSelectionControllerTest.moc"
