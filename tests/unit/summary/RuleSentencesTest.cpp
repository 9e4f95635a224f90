// Presets as sentences.
#include "summary/RuleSentences.h"
#include "presets/KXPresetSettings.h"
#include "support/TestMain.h"

#include <QTest>

using namespace Qt::StringLiterals;
using presets::FilterKind;

class RuleSentencesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filtersAreSentences_data()
    {
        QTest::addColumn<FilterKind>("kind");
        QTest::addColumn<QStringList>("values");
        QTest::addColumn<QString>("sentence");
        const QString properties = u"Tracks w/ Properties ..."_s;
        QTest::newRow("none") << FilterKind::Audio << QStringList{u"None"_s} << u"Take no audio tracks."_s;
        QTest::newRow("all") << FilterKind::Subtitle << QStringList{u"All"_s}
                             << u"Take all subtitle tracks."_s;
        QTest::newRow("number") << FilterKind::Audio << QStringList{u"Audio Track Number"_s, u"2"_s}
                                << u"Take audio track 2."_s;
        QTest::newRow("properties")
            << FilterKind::Audio << QStringList{properties, u"1"_s, u"German"_s, u"ac3"_s, u"Surround Only"_s}
            << u"Take audio tracks where language is German, codec is ac3 and channels are "
               "Surround Only."_s;
        QTest::newRow("anything")
            << FilterKind::Audio
            << QStringList{properties, u"1"_s, u"English"_s, u"Any Codec"_s, u"Any Type"_s}
            << u"Take audio tracks where language is English, any codec and any channels."_s;
        QTest::newRow("subtitles") << FilterKind::Subtitle
                                   << QStringList{properties, u"1"_s, u"German"_s, u"srt"_s}
                                   << u"Take subtitle tracks where language is German and codec is srt."_s;
    }

    void filtersAreSentences()
    {
        QFETCH(FilterKind, kind);
        QFETCH(QStringList, values);
        QFETCH(QString, sentence);
        const QStringList words{u"currentTrackChoice"_s, u"currentTrackNumber"_s, u"currentLanguage"_s,
                                u"currentCodec"_s, u"currentChannels"_s};
        QVariantMap filter;
        for (qsizetype i = 0; i < values.size(); ++i)
            filter.insert(words.at(i), values.at(i));
        QCOMPARE(summary::plainText(summary::filterSentence(kind, filter)), sentence);
    }

    void modesAndTargetsAreExplained()
    {
        QCOMPARE(summary::modeText(u"Apply All"_s), u"Every filter adds its tracks."_s);
        QCOMPARE(summary::modeText(u"Prioritized"_s), u"The first filter that finds a track wins."_s);
        QCOMPARE(summary::targetText(u"General"_s), u"M4V"_s);
        QCOMPARE(summary::targetText(u"Xbox"_s), u"MP4 for Xbox"_s);
        QCOMPARE(summary::targetText(u"MKV"_s), u"MKV"_s);
    }

    void ticksAreNamed()
    {
        const auto track = [](const QString &type, const QString &codec, bool ticked) {
            auto made = std::make_shared<KXVideoTrack>();
            made->setTrackType(type);
            made->setTrackCodec(codec);
            made->setTrackLanguage(u"English"_s);
            made->setTrackNumberOfChannels(u"6"_s);
            made->setTrackSelected(ticked);
            return made;
        };
        const TrackList tracks{track(u"Video"_s, u"h264"_s, true), track(u"Audio"_s, u"ac3"_s, true),
                               track(u"Audio"_s, u"aac"_s, false), track(u"Subtitle"_s, u"srt"_s, false)};
        QCOMPARE(summary::ticksText(tracks), u"Video 1 · Audio 1 (English AC3 5.1) · no subtitle"_s);
    }
};

TESSARAY_TEST(RuleSentencesTest)
#include "RuleSentencesTest.moc"
