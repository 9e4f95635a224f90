// Films that get room behind their index for tags, as the last step of their conversion.
#include "support/Clips.h"
#include "support/TestMain.h"
#include "support/engines/RealRuns.h"

#include <QFile>
#include <QFileInfo>
#include <QTest>
#include <QtEndian>

using namespace Qt::StringLiterals;
using support::RealRuns;

namespace {

/// The sizes of the boxes of that kind at the top level of an MP4.
QList<quint32> boxes(const QString &path, const QByteArray &kind)
{
    QFile file(path);
    QList<quint32> sizes;
    if (!file.open(QIODevice::ReadOnly))
        return sizes;
    while (!file.atEnd()) {
        const QByteArray head = file.read(8);
        const auto size = qFromBigEndian<quint32>(head.constData());
        if (head.size() < 8 || size < 8)
            break;
        if (head.mid(4) == kind)
            sizes.append(size);
        file.seek(file.pos() - 8 + size);
    }
    return sizes;
}

/// What runs as that tool, in a tools folder of the test's own.
void install(const RealRuns &runs, const QString &tool, const QByteArray &script)
{
    const QString path = runs.base.preferences.urlOfApp(tool).toLocalFile();
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(script) != script.size())
        qFatal("The tool could not be written.");
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void installPadder(const RealRuns &runs, const QByteArray &script)
{
    install(runs, u"atomicparsley"_s, script);
}

const QByteArray realPadder = "#!/bin/sh\nexec AtomicParsley \"$@\"\n";

} // namespace

class PaddingTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_runs = std::make_unique<RealRuns>(support::JobFixture::Tools::Fake);
        for (const QString &tool : {u"ffmpeg"_s, u"ffprobe"_s})
            install(*m_runs, tool, "#!/bin/sh\nexec " + tool.toUtf8() + " \"$@\"\n");
    }
    void cleanup() { m_runs.reset(); }

    void aFilmIsPaddedByTheRealTool()
    {
        installPadder(*m_runs, realPadder);
        const auto job = convert(true);
        QVERIFY2(job->outcome().word() == u"ok"_s, qPrintable(job->outcome().sentence));
        const QString film = m_runs->path(u"a.m4v"_s);
        QCOMPARE(boxes(film, "moov").size(), 1);
        QVERIFY(!boxes(film, "free").isEmpty());
        QVERIFY(boxes(film, "free").constFirst() > 2000);
        QCOMPARE(m_runs->names().filter(u"padding.m4v"_s), QStringList());
        QCOMPARE(job->outputs(), QList<QUrl>{QUrl::fromLocalFile(film)});
    }

    void withoutTheWishNothingIsPadded()
    {
        installPadder(*m_runs, "#!/bin/sh\necho called >\"$5.called\"\n");
        const auto job = convert(false);
        QVERIFY2(job->outcome().word() == u"ok"_s, qPrintable(job->outcome().sentence));
        QVERIFY(m_runs->names().filter(u"called"_s).isEmpty());
    }

    void aMissingToolLeavesTheFilmAsItIs()
    {
        const auto job = convert(true);
        QVERIFY2(job->outcome().word() == u"ok"_s, qPrintable(job->outcome().sentence));
        QVERIFY(QFileInfo(m_runs->path(u"a.m4v"_s)).size() > 0);
    }

    void aFailureIsAWarningAndTheFilmStays_data()
    {
        QTest::addColumn<QByteArray>("tool");
        QTest::newRow("fails") << QByteArray("#!/bin/sh\nexit 3\n");
        QTest::newRow("writes nothing") << QByteArray("#!/bin/sh\nexit 0\n");
        QTest::newRow("writes half a film") << QByteArray("#!/bin/sh\nhead -c 1000 \"$1\" >\"$5\"\n");
        QTest::newRow("is killed") << QByteArray("#!/bin/sh\ncp \"$1\" \"$5\"\nkill -9 $$\n");
    }

    void aFailureIsAWarningAndTheFilmStays()
    {
        QFETCH(QByteArray, tool);
        installPadder(*m_runs, tool);
        const auto job = convert(true);
        QCOMPARE(job->outcome().word(), u"warnings"_s);
        QVERIFY(job->outcome().sentence.contains(
            u"No padding could be added to a.m4v; the film itself is good."_s));
        QCOMPARE(boxes(m_runs->path(u"a.m4v"_s), "moov").size(), 1);
        QVERIFY(m_runs->names().filter(u"padding.m4v"_s).isEmpty());
    }

    void anMkvIsNotPadded()
    {
        installPadder(*m_runs, "#!/bin/sh\necho called >\"$5.called\"\n");
        m_runs->base.preferences.overrideForThisRun(u"metadataPaddingFlag"_s, true);
        const auto job =
            m_runs->convert(m_runs->probed(m_runs->film(support::textMp4(), u"b.mp4"_s), u"MKV"_s));
        QVERIFY(m_runs->run(job));
        QVERIFY(m_runs->names().filter(u"called"_s).isEmpty());
    }

private:
    std::shared_ptr<KXConvertWithFfmpegJob> convert(bool padding)
    {
        m_runs->base.preferences.overrideForThisRun(u"metadataPaddingFlag"_s, padding);
        const auto job = m_runs->convert(m_runs->probed(m_runs->film(support::film1920())));
        if (!m_runs->run(job))
            qFatal("The job did not end.");
        return job;
    }

    std::unique_ptr<RealRuns> m_runs;
};

TESSARAY_TEST(PaddingTest)
#include "PaddingTest.moc"
