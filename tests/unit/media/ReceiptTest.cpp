#include "media/Receipt.h"

#include "support/TestMain.h"
#include "support/media/Fates.h"

#include <QTest>

using namespace Qt::StringLiterals;
using media::Became;
using media::MeantOutput;
using media::TrackFate;
using support::told;

namespace {

const QUrl film = QUrl::fromLocalFile(u"/v/a.mkv"_s);
const QUrl text = QUrl::fromLocalFile(u"/v/s.srt"_s);

TrackFate fate(const QUrl &source, int index, const QString &kind, Became became)
{
    TrackFate made;
    made.source = source;
    made.index = index;
    made.kind = kind;
    made.became = became;
    if (became != Became::LeftOut)
        made.output = QUrl::fromLocalFile(u"/v/out.mkv"_s);
    return made;
}

MeantOutput outputOf(const QList<TrackFate> &tracks)
{
    MeantOutput meant;
    meant.sources = {film, text};
    meant.tracks = tracks;
    return meant;
}

QString lineOf(const TrackFate &made)
{
    return media::linesOf({{made}}).join(u'|');
}

} // namespace

class ReceiptTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tracksStandBySourceAndIndex()
    {
        const auto receipt = media::receiptOf({outputOf(
            {fate(text, 0, u"subtitle"_s, Became::Copied), fate(film, -1, u"chapters"_s, Became::Copied),
             fate(film, 2, u"audio"_s, Became::Copied), fate(film, 0, u"video"_s, Became::Copied)})});
        QCOMPARE(told(receipt.tracks),
                 QStringList({u"a.mkv:0 video copied"_s, u"a.mkv:2 audio copied"_s,
                              u"a.mkv:- chapters copied"_s, u"s.srt:0 subtitle copied"_s}));
    }

    void whatIsInAnyOutputWasNotLeftOut()
    {
        const auto receipt = media::receiptOf(
            {outputOf({fate(film, 0, u"video"_s, Became::Copied), fate(film, 1, u"audio"_s, Became::LeftOut),
                       fate(film, 2, u"subtitle"_s, Became::LeftOut)}),
             outputOf({fate(film, 1, u"audio"_s, Became::Reencoded),
                       fate(film, 0, u"video"_s, Became::LeftOut),
                       fate(film, 2, u"subtitle"_s, Became::LeftOut)})});
        QCOMPARE(told(receipt.tracks), QStringList({u"a.mkv:0 video copied"_s, u"a.mkv:1 audio > "_s,
                                                    u"a.mkv:2 subtitle left: "_s}));
    }

    void aTrackInTwoOutputsStandsTwice()
    {
        const auto part = outputOf({fate(film, 0, u"video"_s, Became::Copied)});
        QCOMPARE(media::receiptOf({part, part}).tracks.size(), 2);
    }

    void whatEverybodyIsToldOfIsASentence()
    {
        const auto left = [](int index, const QString &reason, media::Told told) {
            TrackFate one = fate(film, index, u"attachment"_s, Became::LeftOut);
            one.codec = u"ttf"_s;
            one.reason = reason;
            one.told = told;
            return one;
        };
        const auto receipt = media::receiptOf({outputOf(
            {left(3, u"One."_s, media::Told::AsANote), left(4, u"Two."_s, media::Told::AsANote),
             left(5, u"One."_s, media::Told::AsANote), left(6, u"One."_s, media::Told::AsAWarning),
             left(7, u"One."_s, media::Told::InTheReceipt), fate(film, 0, u"video"_s, Became::Copied)})});
        QCOMPARE(media::sentencesOf(receipt, media::Told::AsANote),
                 QStringList({u"2 attachments of a.mkv were left out. One."_s,
                              u"The attachment 4 (ttf) of a.mkv was left out. Two."_s}));
        QCOMPARE(media::sentencesOf(receipt, media::Told::AsAWarning),
                 QStringList({u"The attachment 6 (ttf) of a.mkv was left out. One."_s}));
    }

    void wordsOfTheRecord()
    {
        QCOMPARE(media::wordOf(Became::Copied), u"copied"_s);
        QCOMPARE(media::wordOf(Became::Reencoded), u"reencoded"_s);
        QCOMPARE(media::wordOf(Became::Burned), u"burned"_s);
        QCOMPARE(media::wordOf(Became::LeftOut), u"leftOut"_s);
        QCOMPARE(media::wordOf(media::Proof::NotProven), u"notProven"_s);
        QCOMPARE(media::wordOf(media::Proof::Lengths), u"lengths"_s);
        QCOMPARE(media::wordOf(media::Proof::Packets), u"packets"_s);
        QCOMPARE(media::wordOf(media::Proof::Bits), u"bits"_s);
    }

    void aLineIsForAPerson()
    {
        TrackFate one = fate(film, 1, u"audio"_s, Became::Reencoded);
        one.codec = u"ac3"_s;
        one.to = u"aac"_s;
        QCOMPARE(lineOf(one), u"audio 1 (ac3) of a.mkv: re-encoded to aac into out.mkv"_s);
        one.became = Became::Copied;
        one.sourceSeconds = 60.019;
        one.outputSeconds = 60;
        one.sourceBytes = 1000;
        one.outputBytes = 990;
        one.proof = media::Proof::Packets;
        QCOMPARE(lineOf(one), u"audio 1 (ac3) of a.mkv: copied into out.mkv; 60.00 s of 60.02 s; "
                              "990 bytes of 1000; packets counted"_s);
        TrackFate left = fate(film, -1, u"chapters"_s, Became::LeftOut);
        left.reason = u"An AVI carries no chapters."_s;
        QCOMPARE(lineOf(left), u"chapters of a.mkv: left out. An AVI carries no chapters."_s);
        QCOMPARE(lineOf(fate(text, 0, u"subtitle"_s, Became::Burned)),
                 u"subtitle 0 of s.srt: drawn into the picture of out.mkv"_s);
    }
};

TESSARAY_TEST(ReceiptTest)
#include "ReceiptTest.moc"
