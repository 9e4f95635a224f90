// What is shown of how far a real run is, for films whose length is not stored, or is stored wrong.
#include "support/CliFixture.h"
#include "support/ClipFactory.h"
#include "support/TestMain.h"

#include <QFile>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace support;

namespace {

/// Where the number of milliseconds stands in an MKV: an element of eight bytes, a double.
const QByteArray lengthHead("\x44\x89\x88", 3);

QString longFilm()
{
    return clip(u"progress-30s.mkv"_s, [](const QString &path) {
        runProgram(u"ffmpeg"_s,
                   u"-nostdin -y -v error -f lavfi -i testsrc2=size=160x120:rate=25:duration=30 -f lavfi "
                   "-i sine=duration=30 -c:v libx264 -preset ultrafast -c:a aac"_s.split(u' ')
                       << path);
    });
}

/// The film with a length of a second in its head, or without any.
QByteArray withoutLength(QByteArray film, bool hasOne)
{
    const qsizetype at = film.indexOf(lengthHead);
    if (at < 0)
        qFatal("the clip tells no length");
    const QByteArray second("\x40\x8f\x40\0\0\0\0\0", 8); // 1000.0
    if (hasOne)
        return film.replace(at + lengthHead.size(), 8, second);
    return film.replace(at, 3, QByteArray("\xec\x89\0", 3)); // a void element in its place
}

/// The numbers of the progress events of a run, in order.
QList<int> percents(const CliFixture::Run &run)
{
    QList<int> found;
    for (const QJsonObject &event : run.objects()) {
        const QString text = event.value(u"progress"_s).toString().section(u' ', -1);
        if (event.value(u"event"_s) == u"progress"_s && text.endsWith(u'%'))
            found.append(text.chopped(1).toInt());
    }
    return found;
}

} // namespace

class ProgressNumbersTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// A second of thirty would be 3000 %. Without a length the bytes that are written count.
    void noRunIsShownBeyondItsEnd_data()
    {
        QTest::addColumn<bool>("hasLength");
        QTest::addColumn<QStringList>("words");
        QTest::addColumn<int>("atLeast");
        const QStringList copy{u"convert"_s, u"a.mkv"_s, u"--video"_s, u"passthru"_s};
        const QStringList encode{u"convert"_s, u"a.mkv"_s,           u"--video"_s,
                                 u"1pass"_s,   u"--video-bitrate"_s, u"4000"_s};
        const QStringList join{u"join"_s, u"a.mkv"_s, u"b.mov"_s};
        QTest::newRow("no length, copied") << false << copy << 60;
        QTest::newRow("a wrong length, copied") << true << copy << 100;
        QTest::newRow("a wrong length, re-encoded") << true << encode << 100;
        QTest::newRow("no length, joined") << false << join << 60;
        QTest::newRow("a wrong length, joined") << true << join << 100;
    }

    void noRunIsShownBeyondItsEnd()
    {
        QFETCH(bool, hasLength);
        QFETCH(QStringList, words);
        QFETCH(int, atLeast);
        CliFixture fixture;
        writeContent(fixture.media(u"a.mkv"_s), withoutLength(contentOf(longFilm()), hasLength));
        QFile::copy(fixture.media(u"a.mkv"_s),
                    fixture.media(u"b.mov"_s)); // another name, so that ffmpeg joins
        for (QString &word : words) {
            if (word == u"a.mkv"_s || word == u"b.mov"_s)
                word = fixture.media(word);
        }
        const auto run = fixture.run(QStringList{u"--json"_s} + words);
        const bool isBroken =
            hasLength && words.contains(u"join"_s); // its second half would lie over the first
        QVERIFY2((run.status == 2) == isBroken, run.error.constData());
        const QList<int> shown = percents(run);
        QVERIFY(!shown.isEmpty());
        QVERIFY(std::is_sorted(shown.begin(), shown.end()));
        const QString text = u"from %1 to %2"_s.arg(shown.constFirst()).arg(shown.constLast());
        QVERIFY2(shown.constLast() >= atLeast && shown.constLast() <= 100, qPrintable(text));
    }
};

TESSARAY_TEST(ProgressNumbersTest)
#include "ProgressNumbersTest.moc"
