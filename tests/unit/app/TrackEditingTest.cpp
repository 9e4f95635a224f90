// The Go button of the track editing: what it extracts, removes and adds, and why it can't.
#include "app/TrackEditing.h"

#include "selection/Refusals.h"

#include "support/TestMain.h"
#include "support/app/AppFixture.h"
#include "support/selection/ControllerFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;
using support::AppFixture;

namespace {

constexpr int extracts = 0;
constexpr int removes = 1;
constexpr int adds = 2;

const QString onlyTickedMkv = u"Tracks of MKV files can be edited, and at least one has to be ticked."_s;
const QString ownToExtract = u"Tick a track of the file itself: added tracks can't be extracted."_s;
const QString noVideo = u"A video track can't be removed."_s;
const QString ownToRemove = u"Tick the tracks of the file that are to go."_s;
const QString addedToAdd = u"Tick a track that was added with Add."_s;

TrackPointer added(const TrackPointer &track)
{
    track->setExternalTrackFlag(true);
    return track;
}

QStringList typesOf(const TrackList &tracks)
{
    QStringList types;
    for (const TrackPointer &track : tracks)
        types.append(track->trackType() + (track->externalTrackFlag() ? u" added"_s : QString()));
    return types;
}

} // namespace

class TrackEditingTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<AppFixture>();
        m_fixture->fakeTool(u"mkvtoolnix/mkvmerge"_s, {u"hang"_s});
        m_fixture->fakeTool(u"mkvtoolnix/mkvextract"_s, {u"hang"_s});
    }
    void cleanup() { m_fixture.reset(); }

    /// Rows 0 to 2 are the file's own video, audio and subtitle; 3 is an added audio track.
    void whatMayBeEdited_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("index");
        QTest::addColumn<QList<int>>("ticks");
        QTest::addColumn<QString>("refusal");
        using Ticks = QList<int>;
        const QString none;
        QTest::newRow("extract nothing") << u"a.mkv"_s << extracts << Ticks{} << onlyTickedMkv;
        QTest::newRow("extract of MP4") << u"a.mp4"_s << extracts << Ticks{0} << onlyTickedMkv;
        QTest::newRow("extract an own track") << u"a.mkv"_s << extracts << Ticks{1} << none;
        QTest::newRow("extract the video") << u"a.mkv"_s << extracts << Ticks{0} << none;
        QTest::newRow("extract an added one") << u"a.mkv"_s << extracts << Ticks{3} << ownToExtract;
        QTest::newRow("extract both kinds") << u"a.mkv"_s << extracts << Ticks{2, 3} << none;
        QTest::newRow("remove an own track") << u"a.mkv"_s << removes << Ticks{1, 2} << none;
        QTest::newRow("remove the video") << u"a.mkv"_s << removes << Ticks{0, 1} << noVideo;
        QTest::newRow("remove an added one") << u"a.mkv"_s << removes << Ticks{3} << ownToRemove;
        QTest::newRow("remove of MP4") << u"a.mp4"_s << removes << Ticks{1} << onlyTickedMkv;
        QTest::newRow("add an added one") << u"a.mkv"_s << adds << Ticks{3} << none;
        QTest::newRow("add an own one") << u"a.mkv"_s << adds << Ticks{0, 1} << addedToAdd;
        QTest::newRow("add nothing") << u"a.mkv"_s << adds << Ticks{} << onlyTickedMkv;
    }

    void whatMayBeEdited()
    {
        QFETCH(QString, name);
        QFETCH(int, index);
        QFETCH(QList<int>, ticks);
        QFETCH(QString, refusal);
        open(name, ticks);
        m_fixture->controller().setEditTrackMatrixIndex(index);
        QCOMPARE(m_fixture->starter().trackEditingRefusal(), refusal);
        m_fixture->starter().startTrackEditing();
        QCOMPARE(m_fixture->jobs().isEmpty(), !refusal.isNull());
    }

    void anIndexThatIsNoChoiceIsAskedFor()
    {
        QCOMPARE(selection::refusalToEdit(KXSelection(), std::nullopt),
                 u"Choose what is to be done with the tracks."_s);
    }

    void extractingStartsAsTheExtractButtonDoes()
    {
        open(u"a.mkv"_s, {1});
        m_fixture->controller().setEditTrackMatrixIndex(extracts);
        m_fixture->starter().startTrackEditing();
        QCOMPARE(m_fixture->jobs(), QStringList{u"MKV Track Extraction a.mkv"_s});
    }

    void removingTakesTheTickedTracksOfTheFileAndNoAddedOnes_data()
    {
        QTest::addColumn<QList<int>>("ticks");
        QTest::newRow("the added one is ticked") << QList<int>{1, 3};
        QTest::newRow("the added one is not ticked") << QList<int>{1};
    }

    void removingTakesTheTickedTracksOfTheFileAndNoAddedOnes()
    {
        QFETCH(QList<int>, ticks);
        open(u"a.mkv"_s, ticks);
        m_fixture->controller().setEditTrackMatrixIndex(removes);
        m_fixture->starter().startTrackEditing();
        QCOMPARE(m_fixture->jobs(), QStringList{u"MKV Track Removal a.mkv"_s});
        const KXSelection &job = *m_fixture->queue().qJobList().constFirst()->jobSelection();
        QCOMPARE(typesOf(job.trackList()), QStringList{u"Audio"_s});
        QCOMPARE(typesOf(job.keepTracksList()), (QStringList{u"Video"_s, u"Subtitle"_s}));
        QVERIFY(job.addedAudioTrackList().isEmpty());
    }

    void addingTakesAllOwnTracksAndTheTickedAddedOnes()
    {
        open(u"a.mkv"_s, {1, 3});
        TrackList tracks = m_fixture->file().trackList();
        tracks.append(added(support::probedSubtitle())); // not ticked
        m_fixture->program().currentFile().file()->setTrackList(tracks);
        m_fixture->controller().setEditTrackMatrixIndex(adds);
        m_fixture->starter().startTrackEditing();
        QCOMPARE(m_fixture->jobs(), QStringList{u"MKV Conversion a.mkv"_s});
        const JobPointer job = m_fixture->queue().qJobList().constFirst();
        QCOMPARE(job->metaObject()->className(), "KXConvertToMkvJob");
        QCOMPARE(typesOf(job->jobSelection()->trackList()),
                 (QStringList{u"Video"_s, u"Audio"_s, u"Subtitle"_s, u"Audio added"_s}));
    }

    void whatIsAddedPassesThroughWhateverIsChosenForAConversion()
    {
        open(u"a.mkv"_s, {0, 1, 2, 3});
        for (const TrackPointer &track : m_fixture->file().trackList()) {
            track->setUserCodec(track->trackType() == u"Subtitle"_s ? u"burn"_s : u"h264"_s);
            track->setCreateStereoCopyFlag(true);
            support::setOutputs(*track, u"aac 2 160"_s);
        }
        const SelectionPointer job = app::selectionForAdding(m_fixture->file(), m_fixture->selection());
        QStringList codecs;
        for (const TrackPointer &track : job->trackList()) {
            codecs.append(track->userCodec());
            QVERIFY(!track->createStereoCopyFlag());
            QVERIFY(support::outputsOf(*track).isEmpty());
        }
        QCOMPARE(codecs, (QStringList{u"passthru"_s, u"passthru"_s, u"mux"_s, u"passthru"_s}));
        // What is chosen for a conversion stays in the window.
        QCOMPARE(m_fixture->file().trackList().at(2)->userCodec(), u"burn"_s);
        QCOMPARE(support::outputsOf(*m_fixture->file().trackList().at(1)), u"aac 2 160"_s);
    }

    void aFolderThatCannotBeWrittenIsToldHereToo()
    {
        open(u"a.mkv"_s, {1});
        m_fixture->program().preferences().setSaveDirectoryPath(m_fixture->path(u"gone"_s));
        for (const int index : {extracts, removes}) {
            m_fixture->controller().setEditTrackMatrixIndex(index);
            m_fixture->starter().startTrackEditing();
            QCOMPARE(m_fixture->alerts().shown().size(), index + 1);
        }
        QVERIFY(m_fixture->jobs().isEmpty());
    }

private:
    void open(const QString &name, const QList<int> &ticks)
    {
        const QString path = m_fixture->scratch().write(name, "film");
        const TrackList tracks{support::probedVideo(), support::probedAudio(), support::probedSubtitle(),
                               added(support::probedAudio(u"ac3"_s, u"6"_s))};
        for (const int row : ticks)
            tracks.at(row)->setTrackSelected(true);
        m_fixture->openByHand({{path, tracks}});
    }

    std::unique_ptr<AppFixture> m_fixture;
};

TESSARAY_TEST(TrackEditingTest)
#include "TrackEditingTest.moc"
