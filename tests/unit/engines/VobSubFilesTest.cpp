// A subtitle of pictures is extracted into two files, the index and the pictures.
#include "engines/ffmpeg/KXTrackDumper.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/jobs/MkvFixture.h"
#include "support/selection/HandMade.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using Keeping = KXConverter::Keeping;

namespace {

class PictureDumpFixture final : public MkvFixture
{
public:
    explicit PictureDumpFixture(Keeping keeping)
    {
        setScript(u"mkvtoolnix/mkvextract"_s, {u"hang"_s});
        dumper.inititializeForTrackWithStepLabelKeepingTheOutput(0, u"Extracting Subtitle Track"_s, keeping);
    }
    ~PictureDumpFixture()
    {
        dumper.terminatePIDWaitUntilTerminated(dumper.doShell_ID(), KXHelpers::Wait::No);
        if (dumper.converterTask())
            dumper.converterTask()->terminate();
    }
    Q_DISABLE_COPY_MOVE(PictureDumpFixture)

    SelectionPointer pictures() const
    {
        const TrackPointer track = subtitleTrack(u"2"_s, u"vobsub"_s);
        track->setTrackExtension(u"idx"_s);
        return selection(u"MKV Track Extraction"_s, {track});
    }
    QStringList shownNames(const QList<QUrl> &files) const
    {
        QStringList names;
        for (const QUrl &file : files)
            names << shown(file.toLocalFile());
        return names;
    }

    KXTrackDumper dumper{context()};
};

const QStringList both{u"/v/a.mkv.stream2.idx"_s, u"/v/a.mkv.stream2.sub"_s};

} // namespace

class VobSubFilesTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bothAreNamedAsOutputs()
    {
        PictureDumpFixture fixture(Keeping::TheOutput);
        QVERIFY(!fixture.dumper.startConversionFor(fixture.pictures()).isEmpty());
        QCOMPARE(fixture.shownNames(fixture.dumper.outputFiles()), both);
        QVERIFY(fixture.dumper.temporaryFiles().isEmpty());
    }

    void bothAreTemporaryWhenOneIs()
    {
        PictureDumpFixture fixture(Keeping::Temporary);
        QVERIFY(!fixture.dumper.startConversionFor(fixture.pictures()).isEmpty());
        QCOMPARE(fixture.shownNames(fixture.dumper.temporaryFiles()), both);
    }

    void theSameAsAProcessObject()
    {
        PictureDumpFixture fixture(Keeping::Temporary);
        QVERIFY(fixture.dumper.startConversionForSelectionWithSaveDirectoryURL(fixture.pictures(), {}));
        QCOMPARE(fixture.shownNames(fixture.dumper.outputFiles()), both);
        QCOMPARE(fixture.shownNames(fixture.dumper.temporaryFiles()), both);
    }

    void theSecondOneNeverTakesAFileThatWasThere()
    {
        PictureDumpFixture fixture(Keeping::Temporary);
        fixture.base.scratch.write(u"a.mkv.stream2.sub"_s, "of another");
        QVERIFY(fixture.dumper.startConversionFor(fixture.pictures()).isEmpty());
        QCOMPARE(fixture.shown(fixture.dumper.refusal()),
                 u"/v/a.mkv.stream2.sub exists already, so nothing was started."_s);
        QVERIFY(fixture.calls(u"mkvextract"_s).isEmpty());
        QVERIFY(fixture.dumper.temporaryFiles().isEmpty()); // nothing of another's is deleted
    }

    void anotherSubtitleIsOneFile()
    {
        PictureDumpFixture fixture(Keeping::Temporary);
        const auto chosen = fixture.selection(u"MKV Track Extraction"_s, {subtitleTrack(u"2"_s, u"srt"_s)});
        QVERIFY(!fixture.dumper.startConversionFor(chosen).isEmpty());
        QCOMPARE(fixture.shownNames(fixture.dumper.outputFiles()), QStringList{u"/v/a.mkv.stream2.srt"_s});
        QCOMPARE(fixture.shownNames(fixture.dumper.temporaryFiles()), QStringList{u"/v/a.mkv.stream2.srt"_s});
    }
};

TESSARAY_TEST(VobSubFilesTest)
#include "VobSubFilesTest.moc"
