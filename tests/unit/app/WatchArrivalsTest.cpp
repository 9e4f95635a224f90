// Films that arrive in a watched folder in every way that takes its time: each is converted once, and whole.
// Fifty milliseconds stand for the five seconds between two looks, and for all that the writers do.
#include "app/WatchSession.h"

#include "support/CliFixture.h"
#include "support/Clips.h"
#include "support/PresetRecords.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/Waiting.h"
#include "support/app/AppFixture.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <cmath>
#include <unistd.h>

using namespace Qt::StringLiterals;
using app::WatchLog;
using support::AppFixture;
using support::waitFor;

namespace {

constexpr prefs::WatchIntervals hundredfold{50, 20, 5};
constexpr int stepMs = 10;           // stands for a second
constexpr int bytesOfAStep = 25'000; // the clips are short: a fortieth of a megabyte
constexpr int stepsOfAStall = 20;

/// Brings a film into the folder, one piece a step.
class Writer
{
public:
    Writer(const QString &clip, const QString &target)
        : m_target(target)
    {
        QFile file(clip);
        if (file.open(QIODevice::ReadOnly))
            m_bytes = file.readAll();
    }
    virtual ~Writer() = default;
    Q_DISABLE_COPY_MOVE(Writer)
    /// Whether all of it is there.
    virtual bool step() = 0;

protected:
    QByteArray m_bytes;
    QString m_target;
};

/// Appends, and closes the file each time, as over a network; in its middle it stalls.
class StallingWriter final : public Writer
{
public:
    using Writer::Writer;
    bool step() override
    {
        if (m_written > m_bytes.size() / 2 && m_stalled++ < stepsOfAStall)
            return false;
        QFile file(m_target);
        if (file.open(QIODevice::Append))
            m_written += file.write(m_bytes.mid(m_written, bytesOfAStep));
        return m_written >= m_bytes.size();
    }

private:
    qsizetype m_written = 0;
    int m_stalled = 0;
};

/// Takes all its room first, and fills it from its end to its start, with the file open.
class BackwardWriter final : public Writer
{
public:
    using Writer::Writer;
    bool step() override
    {
        if (!m_file.isOpen()) {
            m_file.setFileName(m_target);
            if (!m_file.open(QIODevice::ReadWrite) || !m_file.resize(m_bytes.size()))
                return false;
            m_left = m_bytes.size();
        }
        const qsizetype from = std::max<qsizetype>(m_left - bytesOfAStep, 0);
        m_file.seek(from);
        m_file.write(m_bytes.mid(from, m_left - from));
        m_file.flush();
        m_left = from;
        if (m_left == 0)
            m_file.close();
        return m_left == 0;
    }

private:
    QFile m_file;
    qsizetype m_left = 0;
};

/// Writes elsewhere and gives it its name, by a rename or by a link, at the end.
class NamingWriter final : public Writer
{
public:
    enum class By { Rename, Link };
    NamingWriter(const QString &clip, const QString &target, const QString &beside, By by)
        : Writer(clip, target)
        , m_beside(beside)
        , m_by(by)
    {
    }
    bool step() override
    {
        QFile file(m_beside);
        if (!file.open(QIODevice::WriteOnly) || file.write(m_bytes) != m_bytes.size())
            return false;
        file.close();
        return m_by == By::Rename ? QFile::rename(m_beside, m_target)
                                  : ::link(qPrintable(m_beside), qPrintable(m_target)) == 0;
    }

private:
    QString m_beside;
    By m_by;
};

} // namespace

class WatchArrivalsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachFilmIsConvertedOnceAndWhole()
    {
        AppFixture fixture(hundredfold);
        const QString folder = fixture.path(u"w/"_s);
        QVERIFY(QDir().mkpath(folder) && QDir().mkpath(fixture.path(u"outside"_s)));
        fixture.program().preferences().setWatchFolderURL(fixture.scratch().url(u"w"_s));
        const QVariant preset = support::settingsPreset(u"Set"_s, u"General"_s).toVariantMap();
        QVERIFY(fixture.presets().addUserPresets({}, {preset}).isNull());
        fixture.presets().setSelectionMethodIndex(1);
        fixture.presets().setSettingMethodIndex(2);
        app::WatchSession &session = fixture.delegate().watchSession();
        QStringList log;
        connect(&session.log(), &WatchLog::added, this, [&log](const WatchLog::Line &line) {
            log.append(WatchLog::wordOf(line.kind) + u' ' + line.text);
        });
        QVERIFY(session.start());
        const int count = support::times(30, 10);
        std::vector<std::unique_ptr<Writer>> writers;
        for (int i = 0; i < count; ++i)
            writers.push_back(writerOf(i, folder, fixture.path(u"outside/"_s)));
        QTimer clock;
        connect(&clock, &QTimer::timeout, this, [&writers] {
            std::erase_if(writers, [](const std::unique_ptr<Writer> &writer) { return writer->step(); });
        });
        clock.start(stepMs);
        const auto done = [&] { return log.filter(QRegularExpression(u"^done "_s)).size(); };
        QVERIFY2(waitFor([&] { return writers.empty() && done() >= count; }, count * support::patience),
                 qPrintable(log.join(u'\n')));
        QTest::qWait(500); // ten looks more
        QCOMPARE(done(), count);
        QCOMPARE(log.filter(QRegularExpression(u"^started "_s)).size(), count);
        QVERIFY2(log.filter(u"failed "_s).isEmpty(), qPrintable(log.join(u'\n')));
        for (int i = 0; i < count; ++i) {
            const double seconds = support::secondsOf(folder + u"film %1.m4v"_s.arg(i));
            QVERIFY2(std::abs(seconds - support::secondsOf(clipOf(i))) < 0.3,
                     qPrintable(u"film %1: %2 s\n"_s.arg(i).arg(seconds) + log.join(u'\n')));
        }
        QCOMPARE(QDir(folder).entryList({u"*.m4v"_s}).size(), count);
    }

private:
    static QString clipOf(int number) { return number % 2 == 0 ? support::fullMkv() : support::textMp4(); }

    static std::unique_ptr<Writer> writerOf(int number, const QString &folder, const QString &outside)
    {
        const QString clip = clipOf(number);
        const QString suffix = QFileInfo(clip).suffix();
        const QString target = folder + u"film %1."_s.arg(number) + suffix;
        const QString beside = outside + u"%1.part"_s.arg(number);
        switch (number / 2 % 4) {
        case 0:
            return std::make_unique<StallingWriter>(clip, target);
        case 1:
            return std::make_unique<BackwardWriter>(clip, target);
        case 2:
            return std::make_unique<NamingWriter>(clip, target, beside, NamingWriter::By::Rename);
        default:
            return std::make_unique<NamingWriter>(clip, target, beside, NamingWriter::By::Link);
        }
    }
};

TESSARAY_TEST(WatchArrivalsTest)
#include "WatchArrivalsTest.moc"
