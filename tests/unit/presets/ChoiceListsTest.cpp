#include "presets/ChoiceLists.h"

#include "media/TrackBuilder.h"
#include "presets/TrackFilters.h"
#include "support/TestMain.h"
#include "support/presets/PresetFixture.h"
#include "tools/KXHelpers.h"

#include <QSet>
#include <QTest>

using namespace Qt::StringLiterals;
using media::TrackBuilder;
using presets::FilterKind;

namespace {

QString joined(const QStringList &list)
{
    return list.join(u" | "_s);
}

/// The track that a stream becomes which ffprobe tells like this.
TrackPointer trackOf(const QString &type, const QString &codec, const QString &languageCode = u"eng"_s)
{
    TrackBuilder builder(QUrl::fromLocalFile(u"/v/a.mkv"_s), 1);
    builder.add({{u"codec_type"_s, type},
                 {u"codec_name"_s, codec},
                 {u"index"_s, u"0"_s},
                 {u"tags"_s, QVariantMap{{u"language"_s, languageCode}}}},
                {});
    return builder.tracks().constFirst();
}

/// Whether a filter by these two takes the track.
bool isTaken(FilterKind kind, const TrackPointer &track, const QString &language, const QString &codec)
{
    QVariantMap filter = presets::makeFilter(kind, u"Tracks w/ Properties ..."_s, language);
    filter.insert(u"currentCodec"_s, codec);
    track->setTrackSelected(false);
    presets::applyFilters(kind, {filter}, {}, {track});
    return track->trackSelected();
}

} // namespace

/// What the preset sheets and the filter editor offer.
class ChoiceListsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsAreLiteral_data()
    {
        QTest::addColumn<QStringList>("list");
        QTest::addColumn<QString>("expected");
        QTest::newRow("audio choice") << presets::afTrackChoiceList()
                                      << u"All | None | Audio Track Number | Tracks w/ Properties ..."_s;
        QTest::newRow("subtitle choice")
            << presets::sfTrackChoiceList()
            << u"All | None | Subtitle Track Number | Tracks w/ Properties ..."_s;
        QTest::newRow("numbers") << presets::trackNumberList() << u"1 | 2 | 3 | 4 | 5 | 6 | 7 | 8 | 9"_s;
        QTest::newRow("audio codecs")
            << presets::afCodecList()
            << u"Any Codec | ogg | mp3 | mp2 | aac | ac3 | wav | dts | wma | flac | wv"_s;
        QTest::newRow("subtitle codecs")
            << presets::sfCodecList() << u"Any Codec | ssa | ass | srt | vobsub | sub | pgs | ttxt | txt"_s;
        QTest::newRow("channels") << presets::afChannelsList() << u"Any Type | Stereo Only | Surround Only"_s;
        // The two best guesses have indices and are not offered: meant.
        QTest::newRow("video") << presets::pVideoActionList()
                               << u"Pass Thru | H264 (1-pass) | H264 (2-pass)"_s;
        QTest::newRow("keep or custom") << presets::pVideoGenericList() << u"Original | Custom"_s;
        QTest::newRow("stereo") << presets::pStereoActionList() << u"Pass Thru | AAC (2-Ch.)"_s;
        QTest::newRow("stereo rates")
            << presets::pStereoBitRateList() << u"128 | 160 | 192 | 224 | 256 | 320"_s;
        QTest::newRow("surround") << presets::pSurroundActionList()
                                  << u"Pass Thru | AAC (2-Ch.) | AAC (5.1) | AC3 (5.1)"_s;
        QTest::newRow("surround rates")
            << presets::pSurroundBitRateList() << u"320 | 384 | 448 | 512 | 640"_s;
        QTest::newRow("subtitles") << presets::pSubActionList() << u"Burn (hard) | Mux (soft)"_s;
    }

    void listsAreLiteral()
    {
        QFETCH(const QStringList, list);
        QTEST(joined(list), "expected");
    }

    void languagesStartWithAnyAndTheCommonOnes()
    {
        const QStringList &list = presets::languageList();
        QCOMPARE(joined(list.mid(0, 41)),
                 u"Any Language | undetermined | Arabic | Bulgarian | Chinese | Croatian | Czech | Danish | "
                 "Dutch | English | Estonian | Finnish | French | German | Greek | Hebrew | Hindi | "
                 "Hungarian | Icelandic | Irish | Italian | Japanese | Korean | Latvian | Lithuanian | "
                 "Norwegian | Persian | Polish | Portuguese | Romanian | Russian | Serbian | Slovak | "
                 "Slovenian | Swedish | Spanish | Thai | Turkish | Urdu | Abkhazian | Afar"_s);
        QCOMPARE(list.size(), 184);
        QCOMPARE(QSet<QString>(list.begin(), list.end()).size(), 184);
        QCOMPARE(list.constLast(), u"Zulu"_s);
    }

    /// A filter compares whole words: a language under another wording would never match.
    void everyLanguageIsOneThatTracksCarry()
    {
        const QStringList languages = presets::languageList().mid(1);
        for (const QString &language : languages) {
            const QString code = KXHelpers::language3CodeFor(language);
            QCOMPARE(KXHelpers::languageForCode3(code), language);
            const TrackPointer sound = trackOf(u"audio"_s, u"aac"_s, code);
            QVERIFY2(isTaken(FilterKind::Audio, sound, language, u"Any Codec"_s), qPrintable(language));
            const TrackPointer subtitle = trackOf(u"subtitle"_s, u"subrip"_s, code);
            QVERIFY2(isTaken(FilterKind::Subtitle, subtitle, language, u"Any Codec"_s), qPrintable(language));
        }
        QCOMPARE(languages.size(), 183);
    }

    void offeredCodecsAreThoseThatTracksCarry_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("offered");
        const QString audio = u"audio"_s;
        const QString subtitle = u"subtitle"_s;
        QTest::newRow("vorbis") << audio << u"vorbis"_s << u"ogg"_s;
        QTest::newRow("mp3") << audio << u"mp3"_s << u"mp3"_s;
        QTest::newRow("mp2") << audio << u"mp2"_s << u"mp2"_s;
        QTest::newRow("aac") << audio << u"aac"_s << u"aac"_s;
        QTest::newRow("ac3") << audio << u"ac3"_s << u"ac3"_s;
        QTest::newRow("eac3") << audio << u"eac3"_s << u"ac3"_s;
        QTest::newRow("pcm") << audio << u"pcm_s16le"_s << u"wav"_s;
        QTest::newRow("wma") << audio << u"wmav2"_s << u"wma"_s;
        QTest::newRow("flac") << audio << u"flac"_s << u"flac"_s;
        QTest::newRow("ssa") << subtitle << u"ssa"_s << u"ssa"_s;
        QTest::newRow("ass") << subtitle << u"ass"_s << u"ass"_s;
        QTest::newRow("subrip") << subtitle << u"subrip"_s << u"srt"_s;
        QTest::newRow("microdvd") << subtitle << u"microdvd"_s << u"sub"_s;
        QTest::newRow("mov_text") << subtitle << u"mov_text"_s << u"ttxt"_s;
        // Meant: tracks carry other words than the lists offer for these.
        QTest::newRow("dts") << audio << u"dts"_s << QString();
        QTest::newRow("wavpack") << audio << u"wavpack"_s << QString();
        QTest::newRow("dvd subtitle") << subtitle << u"dvd_subtitle"_s << QString();
        QTest::newRow("pgs") << subtitle << u"hdmv_pgs_subtitle"_s << QString();
    }

    void offeredCodecsAreThoseThatTracksCarry()
    {
        QFETCH(const QString, type);
        QFETCH(const QString, name);
        QFETCH(const QString, offered);
        const bool isAudio = type == u"audio"_s;
        const QStringList codecs = (isAudio ? presets::afCodecList() : presets::sfCodecList()).mid(1);
        const TrackPointer track = trackOf(type, name);
        for (const QString &codec : codecs) {
            const FilterKind kind = isAudio ? FilterKind::Audio : FilterKind::Subtitle;
            QVERIFY2(isTaken(kind, track, u"Any Language"_s, codec) == (codec == offered), qPrintable(codec));
        }
    }

    void devicesAreTheTargetsAndWhatIsStored_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("added");
        QTest::newRow("none") << QString() << u""_s;
        QTest::newRow("empty") << u""_s << u""_s;
        QTest::newRow("a device") << u"PS3"_s << u""_s;
        QTest::newRow("the first target") << u"General"_s << u""_s;
        QTest::newRow("the last target") << u"AVI"_s << u""_s;
        QTest::newRow("what a new preset has") << u"Apple TV"_s << u" | Apple TV"_s;
        QTest::newRow("another one's own") << u"Factory radio"_s << u" | Factory radio"_s;
        QTest::newRow("other capitals") << u"ps3"_s << u" | ps3"_s;
    }

    void devicesAreTheTargetsAndWhatIsStored()
    {
        QFETCH(const QString, stored);
        QFETCH(const QString, added);
        QCOMPARE(joined(presets::deviceListWith(stored)),
                 u"General | iPod (All non-Touch) | iPhone (3 and Earlier) | iPod Touch (3 and Earlier) | "
                 "iPad (2 and Earlier) | Apple TV 2 | iPhone 4 | iPod Touch (4 and Later) | "
                 "Apple TV (3 and Later) | iPad (3 and Later) | iPad Mini (All) | iPhone (4S and Later) | "
                 "PS3 | Xbox | MKV | AVI"_s +
                     added);
    }
};

TESSARAY_TEST(ChoiceListsTest)
#include "ChoiceListsTest.moc"
