// A subtitle of pictures is extracted into two files, the index and the pictures.
#include "engines/KXTrackDumper.h"
#include "support/HandMade.h"
#include "support/MkvBench.h"
#include "support/Waiting.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace support;
using Keeping = KXConverter::Keeping;

namespace {

class DumperBench final : public MkvBench
{
public:
    explicit DumperBench(Keeping keeping)
    {
        setScript(u"mkvtoolnix/mkvextract"_s, {u"hang"_s});
        dumper.inititializeForTrackWithStepLabelKeepingTheOutput(0, u"Extracting Subtitle Track"_s, keeping);
    }
    ~DumperBench()
    {
        dumper.terminatePIDWaitUntilTerminated(dumper.doShell_ID(), KXHelpers::Wait::No);
        if (dumper.converterTask())
            dumper.converterTask()->terminate();
    }
    Q_DISABLE_COPY_MOVE(DumperBench)

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
        DumperBench bench(Keeping::TheOutput);
        QVERIFY(!bench.dumper.startConversionFor(bench.pictures()).isEmpty());
        QCOMPARE(bench.shownNames(bench.dumper.outputFiles()), both);
        QVERIFY(bench.dumper.temporaryFiles().isEmpty());
    }

    void bothAreTemporaryWhenOneIs()
    {
        DumperBench bench(Keeping::Temporary);
        QVERIFY(!bench.dumper.startConversionFor(bench.pictures()).isEmpty());
        QCOMPARE(bench.shownNames(bench.dumper.temporaryFiles()), both);
    }

    void theSameAsAProcessObject()
    {
        DumperBench bench(Keeping::Temporary);
        QVERIFY(bench.dumper.startConversionForSelectionWithSaveDirectoryURL(bench.pictures(), {}));
        QCOMPARE(bench.shownNames(bench.dumper.outputFiles()), both);
        QCOMPARE(bench.shownNames(bench.dumper.temporaryFiles()), both);
    }

    void theSecondOneNeverTakesAFileThatWasThere()
    {
        DumperBench bench(Keeping::Temporary);
        bench.world.scratch.write(u"a.mkv.stream2.sub"_s, "of another");
        QVERIFY(bench.dumper.startConversionFor(bench.pictures()).isEmpty());
        QCOMPARE(bench.shown(bench.dumper.refusal()),
                 u"/v/a.mkv.stream2.sub exists already, so nothing was started."_s);
        QVERIFY(bench.calls(u"mkvextract"_s).isEmpty());
        QVERIFY(bench.dumper.temporaryFiles().isEmpty()); // nothing of another's is deleted
    }

    void anotherSubtitleIsOneFile()
    {
        DumperBench bench(Keeping::Temporary);
        const auto chosen = bench.selection(u"MKV Track Extraction"_s, {subtitleTrack(u"2"_s, u"srt"_s)});
        QVERIFY(!bench.dumper.startConversionFor(chosen).isEmpty());
        QCOMPARE(bench.shownNames(bench.dumper.outputFiles()), QStringList{u"/v/a.mkv.stream2.srt"_s});
        QCOMPARE(bench.shownNames(bench.dumper.temporaryFiles()), QStringList{u"/v/a.mkv.stream2.srt"_s});
    }
};

QTEST_GUILESS_MAIN(VobSubFilesTest)
#include "VobSubFilesTest.moc"
