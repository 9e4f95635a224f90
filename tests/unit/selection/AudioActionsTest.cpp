#include "selection/AudioActions.h"

#include "support/TestMain.h"
#include "support/selection/ControllerFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using selection::AudioBitRates;
using selection::AudioOutputs;

namespace {

const AudioBitRates entered{u"128 kbps"_s, u"384 kbps"_s, u"448 kbps"_s};

AudioOutputs listOf(const QString &outputs)
{
    KXVideoTrack track;
    support::setOutputs(track, outputs);
    return selection::outputsOf(track);
}

/// As a surround track has them.
QString textOf(const AudioOutputs &outputs)
{
    const TrackPointer track = support::probedAudio(u"dts"_s, u"6"_s);
    selection::writeOutputs(*track, outputs);
    return support::outputsOf(*track);
}

QString textOf(const AudioBitRates &rates)
{
    return rates.aac2 + u" | "_s + rates.aac51 + u" | "_s + rates.ac351;
}

/// What a surround track gets for actions that are written "Pass Thru, AAC (5.1)".
QString madeOf(const QString &actions, const AudioBitRates &rates = entered)
{
    return textOf(selection::outputsFor(actions.split(u", "_s, Qt::SkipEmptyParts), rates, u"77"_s));
}

} // namespace

/// From the ticked actions to a track's outputs and back.
class AudioActionsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void actionsAreOfferedInTheirOrder()
    {
        QCOMPARE(selection::audioActions(),
                 QStringList({u"Pass Thru"_s, u"AAC (2-Ch.)"_s, u"AAC (5.1)"_s, u"AC3 (5.1)"_s}));
    }

    void outputsAreActions_data()
    {
        QTest::addColumn<QString>("outputs");
        QTest::addColumn<QString>("actions");
        QTest::newRow("none") << u""_s << u""_s;
        QTest::newRow("pass through") << u"passthru 6 0"_s << u"Pass Thru"_s;
        QTest::newRow("pass through of any channels") << u"passthru 1 0"_s << u"Pass Thru"_s;
        QTest::newRow("aac stereo") << u"aac 2 160"_s << u"AAC (2-Ch.)"_s;
        QTest::newRow("aac surround") << u"aac 6 384"_s << u"AAC (5.1)"_s;
        QTest::newRow("aac mono is none") << u"aac 1 64"_s << u""_s;
        QTest::newRow("aac of eight channels is none") << u"aac 8 640"_s << u""_s;
        QTest::newRow("ac3 surround") << u"ac3 6 448"_s << u"AC3 (5.1)"_s;
        // Meant: ac3 is offered in 5.1 alone, so its channels are not looked at.
        QTest::newRow("ac3 of any channels") << u"ac3 2 192"_s << u"AC3 (5.1)"_s;
        QTest::newRow("mp3 is none") << u"mp3 2 128"_s << u""_s;
        QTest::newRow("capitals are another word") << u"AAC 2 160"_s << u""_s;
        QTest::newRow("all four") << u"passthru 6 0, aac 2 160, aac 6 384, ac3 6 448"_s
                                  << u"Pass Thru, AAC (2-Ch.), AAC (5.1), AC3 (5.1)"_s;
        QTest::newRow("in the order of the outputs")
            << u"ac3 6 448, aac 2 160, passthru 6 0"_s << u"AC3 (5.1), AAC (2-Ch.), Pass Thru"_s;
        QTest::newRow("each once") << u"aac 2 160, passthru 2 0, aac 2 128"_s << u"AAC (2-Ch.), Pass Thru"_s;
        QTest::newRow("an unknown one between")
            << u"ac3 6 448, mp3 2 128, aac 2 96"_s << u"AC3 (5.1), AAC (2-Ch.)"_s;
    }

    void outputsAreActions()
    {
        QFETCH(QString, outputs);
        QFETCH(QString, actions);
        QCOMPARE(selection::actionsOf(listOf(outputs)).join(u", "_s), actions);
    }

    void outputsGiveTheirBitRates_data()
    {
        QTest::addColumn<QString>("outputs");
        QTest::addColumn<QString>("rates");
        QTest::newRow("none: all stay") << u""_s << u"128 kbps | 384 kbps | 448 kbps"_s;
        QTest::newRow("pass through has none") << u"passthru 6 999"_s << u"128 kbps | 384 kbps | 448 kbps"_s;
        QTest::newRow("aac stereo") << u"aac 2 160"_s << u"160 kbps | 384 kbps | 448 kbps"_s;
        QTest::newRow("aac surround") << u"aac 6 512"_s << u"128 kbps | 512 kbps | 448 kbps"_s;
        QTest::newRow("ac3") << u"ac3 6 640"_s << u"128 kbps | 384 kbps | 640 kbps"_s;
        QTest::newRow("all") << u"ac3 6 224, aac 6 192, aac 2 320"_s << u"320 kbps | 192 kbps | 224 kbps"_s;
        QTest::newRow("aac mono has none") << u"aac 1 64"_s << u"128 kbps | 384 kbps | 448 kbps"_s;
        QTest::newRow("a rate that is not offered") << u"aac 2 97"_s << u"97 kbps | 384 kbps | 448 kbps"_s;
    }

    void outputsGiveTheirBitRates()
    {
        QFETCH(QString, outputs);
        QFETCH(QString, rates);
        QCOMPARE(textOf(selection::bitRatesOf(listOf(outputs), entered)), rates);
    }

    void actionsMakeOutputs_data()
    {
        QTest::addColumn<QString>("actions");
        QTest::addColumn<QString>("outputs");
        QTest::newRow("none") << u""_s << u""_s;
        QTest::newRow("pass through keeps the channels") << u"Pass Thru"_s << u"passthru 6 77"_s;
        QTest::newRow("aac stereo") << u"AAC (2-Ch.)"_s << u"aac 2 128"_s;
        QTest::newRow("aac surround") << u"AAC (5.1)"_s << u"aac 6 384"_s;
        QTest::newRow("ac3 surround") << u"AC3 (5.1)"_s << u"ac3 6 448"_s;
        QTest::newRow("in the order of the list") << u"AC3 (5.1), Pass Thru, AAC (5.1), AAC (2-Ch.)"_s
                                                  << u"ac3 6 448, passthru 6 77, aac 6 384, aac 2 128"_s;
        QTest::newRow("an unknown action makes none") << u"MP3, Pass Thru"_s << u"passthru 6 77"_s;
    }

    void actionsMakeOutputs()
    {
        QFETCH(QString, actions);
        QFETCH(QString, outputs);
        QCOMPARE(madeOf(actions), outputs);
    }

    void leadingNumberOfTheEnteredBitRateCounts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("output");
        QTest::newRow("as offered") << u"192 kbps"_s << u"aac 2 192"_s;
        QTest::newRow("bare") << u"192"_s << u"aac 2 192"_s;
        QTest::newRow("no blank") << u"192kbps"_s << u"aac 2 192"_s;
        QTest::newRow("fraction") << u"160.9 kbps"_s << u"aac 2 160"_s;
        QTest::newRow("no number") << u"Original kbps"_s << u"aac 2 0"_s;
        QTest::newRow("empty") << u""_s << u"aac 2 0"_s;
    }

    void leadingNumberOfTheEnteredBitRateCounts()
    {
        QFETCH(QString, text);
        QFETCH(QString, output);
        QCOMPARE(madeOf(u"AAC (2-Ch.)"_s, {text, u"1 kbps"_s, u"1 kbps"_s}), output);
    }

    void anOutputHasItsThreeWordsAndNoMore()
    {
        const TrackPointer track = support::probedAudio(u"dts"_s, u"6"_s);
        selection::writeOutputs(*track, selection::outputsFor({u"AAC (5.1)"_s}, entered, u"0"_s));
        const QVariantMap expected{
            {u"userCodec"_s, u"aac"_s}, {u"userBitRate"_s, u"384"_s}, {u"userNumberOfChannels"_s, u"6"_s}};
        QCOMPARE(track->userAudioSettingsDictionaryArray(), AudioSettingsList{expected});
    }

    void outputsOfActionsAreThoseActions()
    {
        const QStringList actions{u"AC3 (5.1)"_s, u"AAC (2-Ch.)"_s, u"Pass Thru"_s, u"AAC (5.1)"_s};
        const AudioOutputs made = selection::outputsFor(actions, entered, u"0"_s);
        QCOMPARE(selection::actionsOf(made), actions);
        QCOMPARE(textOf(selection::bitRatesOf(made, {})), textOf(entered));
    }
};

TESSARAY_TEST(AudioActionsTest)
#include "AudioActionsTest.moc"
