// A source that somebody cut never gives an "ok" without a word, whatever is done with it, and the sentence
// says where it ends. A transport stream has no length of its own: cut, it is a shorter film.
#include "support/ClipFactory.h"
#include "support/Seeds.h"
#include "support/TestMain.h"
#include "support/jobs/CheckClips.h"
#include "support/jobs/CheckRun.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QTest>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace support;
using media::Extent;

namespace {

struct Operation
{
    QString name;
    QString line; ///< "$0" is the source, "$1" the output
    QString extension;
    QString video; ///< what it is re-encoded into
    QString audio;
    QString firstPass = {};
};

QList<Operation> operations()
{
    return {
        {u"pass-through"_s,
         u"ffmpeg -fflags +genpts -i $0 -map 0:v -vcodec copy -map 0:a -codec:a:0 copy -f matroska $1"_s,
         u"mkv"_s,
         {},
         {}},
        {u"into mp4"_s,
         u"ffmpeg -fflags +genpts -i $0 -map 0:v -vcodec copy -map 0:a -codec:a:0 copy -f mp4 $1"_s,
         u"mp4"_s,
         {},
         {}},
        {u"one pass"_s,
         u"ffmpeg -i $0 -map 0:v -vcodec libx264 -preset ultrafast -b:v 300k -map 0:a -codec:a:0 aac "
         "-ab:a:0 128k -ac:a:0 2 -ar:a:0 48000 -f mp4 $1"_s,
         u"mp4"_s, u"h264"_s, u"aac"_s},
        {u"two passes"_s,
         u"ffmpeg -i $0 -map 0:v -vcodec libx264 -preset ultrafast -b:v 300k -map 0:a -codec:a:0 aac "
         "-ab:a:0 128k -ac:a:0 2 -ar:a:0 48000 -pass 2 -passlogfile $1 -f mp4 $1"_s,
         u"mp4"_s, u"h264"_s, u"aac"_s,
         u"ffmpeg -i $0 -map 0:v -vcodec libx264 -preset ultrafast -b:v 300k -pass 1 -passlogfile $1 -an -f mp4 -y /dev/null"_s},
        {u"extract video"_s, u"ffmpeg -i $0 -map 0:v -vcodec copy -an -sn $1"_s, u"raw video"_s, {}, {}},
        {u"extract audio"_s, u"ffmpeg -i $0 -map 0:a -acodec copy -vn -sn $1"_s, u"raw audio"_s, {}, {}},
        {u"remove"_s, u"mkvmerge -o $1 --no-audio --compression -1:none $0"_s, u"mkv"_s, {}, {}},
        {u"remux"_s, u"mkvmerge -o $1 --compression -1:none $0"_s, u"mkv"_s, {}, {}},
        {u"split"_s,
         u"mkvmerge -o $1 --split parts:00:00:01-00:10:00 --compression -1:none $0"_s,
         u"mkv"_s,
         {},
         {}},
        {u"join"_s, u"mkvmerge -o $1 $0 + $0"_s, u"mkv"_s, {}, {}}};
}

/// What the film says of itself before it is cut.
constexpr double fullSeconds = 60;

double secondsOfClock(const QString &clock)
{
    return clock.contains(u':')
               ? clock.section(u':', 0, 0).toDouble() * 60 + clock.section(u':', 1).toDouble()
               : clock.toDouble();
}

} // namespace

class TruncationsCheckTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cutSourcesAreTold_data()
    {
        QTest::addColumn<QString>("container");
        QTest::addColumn<int>("percent");
        QTest::addColumn<int>("operation");
        QList<std::tuple<QString, int, int>> rows;
        for (const QString &container : {u"mkv"_s, u"mp4"_s, u"avi"_s, u"wmv"_s, u"flv"_s}) {
            for (const int percent : {5, 30, 60, 90, 99}) {
                for (int i = 0; i < operations().size(); ++i) {
                    const bool isForMkvmerge = operations().at(i).line.startsWith(u"mkvmerge"_s);
                    if (container != u"wmv"_s || (!isForMkvmerge && operations().at(i).name != u"into mp4"_s))
                        rows.append({container, percent, i});
                }
            }
        }
        for (const auto &[container, percent, operation] : drawn(rows, 6))
            QTest::addRow("%s %d%% %s", qPrintable(container), percent,
                          qPrintable(operations().at(operation).name))
                << container << percent << operation;
    }

    void cutSourcesAreTold()
    {
        QFETCH(QString, container);
        QFETCH(int, percent);
        QFETCH(int, operation);
        const Operation todo = operations().at(operation);
        CheckRun run;
        const QString source = run.path(u"a."_s + container);
        cutTo(minuteOf(container), source, percent);
        const QString output = run.path(u"out."_s + extensionOf(todo, source));
        if (!todo.firstPass.isEmpty())
            run.run(todo.firstPass, {source, output}, false);
        const QString log = run.run(todo.line, {source, output}, false);
        if (QFileInfo(output).size() < 1000) // it was refused, with an exit status, after its headers
            return;
        const QString said = told(run.check(meantFor(todo, source, output), log));
        compareSentence(said, source);
    }

    void cutTransportStreamsAreShorterFilms_data()
    {
        QTest::addColumn<int>("percent");
        QTest::addColumn<bool>("isWhole"); // packets of 188 bytes
        QTest::addRow("30%%") << 30 << true;
        QTest::addRow("90%%") << 90 << true;
        QTest::addRow("60%% within a packet") << 60 << false;
    }

    void cutTransportStreamsAreShorterFilms()
    {
        QFETCH(int, percent);
        QFETCH(bool, isWhole);
        CheckRun run;
        const QString source = run.path(u"a.ts"_s);
        const QByteArray content = contentOf(minuteOf(u"ts"_s));
        const qsizetype bytes = content.size() * percent / 100 / 188 * 188;
        writeContent(source, content.first(isWhole ? bytes : bytes + 57));
        const QString output = run.path(u"out.mkv"_s);
        const QString log = run.run(operations().constFirst().line, {source, output});
        const auto result = run.check(CheckRun::meant({source}, output), log);
        QVERIFY(result.seconds);
        QVERIFY(std::abs(*result.seconds - CheckRun::decodedSeconds(output, u"video"_s)) < 0.3);
        if (isWhole)
            QCOMPARE(told(result), u"ok"_s);
        else
            QVERIFY2(told(result).startsWith(u"warnings: The source is cut off: it ends at 0:"_s),
                     qPrintable(told(result)));
    }

private:
    /// Of a single track: as its codec has it.
    static QString extensionOf(const Operation &todo, const QString &source)
    {
        if (!todo.extension.startsWith(u"raw "_s))
            return todo.extension;
        const auto streams = CheckRun::streamsOf(source);
        const auto found = std::find_if(streams.begin(), streams.end(), [&](const auto &stream) {
            return stream.first == todo.extension.section(u' ', 1);
        });
        static const QHash<QString, QString> extensions{{u"h264"_s, u"h264"_s}, {u"aac"_s, u"aac"_s},
                                                        {u"mp3"_s, u"mp3"_s},   {u"mpeg4"_s, u"m4v"_s},
                                                        {u"flv1"_s, u"flv"_s},  {u"ac3"_s, u"ac3"_s}};
        return found == streams.end() ? u"mkv"_s : extensions.value(found->second, u"mkv"_s);
    }

    static media::MeantOutput meantFor(const Operation &todo, const QString &source, const QString &output)
    {
        const bool isJoin = todo.name == u"join"_s;
        media::MeantOutput meant = isJoin ? CheckRun::meant({source, source}, output, Extent::Sum)
                                          : CheckRun::meant({source}, output);
        reencode(meant, u"video"_s, todo.video);
        reencode(meant, u"audio"_s, todo.audio);
        for (media::TrackFate &fate : meant.tracks) {
            const bool isOther = todo.extension.startsWith(u"raw "_s) && !todo.extension.endsWith(fate.kind);
            if (isOther || (todo.name == u"remove"_s && fate.kind == u"audio"_s))
                fate.became = media::Became::LeftOut;
        }
        meant.isRaw =
            QStringList{u"h264"_s, u"aac"_s, u"mp3"_s, u"m4v"_s, u"ac3"_s}.contains(output.section(u'.', -1));
        if (todo.name == u"split"_s) {
            meant.extent = Extent::Stretch;
            meant.from = 1;
            meant.to = 600;
        }
        return meant;
    }

    /// The place that is told is where a decoder stops too.
    static void compareSentence(const QString &said, const QString &source)
    {
        static const QRegularExpression form(
            u"^warnings: .*The source (?:ends at ([\\d:.]+)(?: of ([\\d:.]+)(?: s)?)?|is cut off: it ends at "
            "([\\d:.]+))\\."_s);
        const auto match = form.match(said);
        QVERIFY2(match.hasMatch(), qPrintable(said));
        const QString place = match.captured(1).isEmpty() ? match.captured(3) : match.captured(1);
        const double end = std::max(CheckRun::decodedSeconds(source, u"video"_s),
                                    CheckRun::decodedSeconds(source, u"audio"_s));
        QVERIFY2(std::abs(secondsOfClock(place) - end) < 1.1, qPrintable(said + QString::number(end)));
        if (!match.captured(2).isEmpty())
            QVERIFY2(std::abs(secondsOfClock(match.captured(2)) - fullSeconds) < 1, qPrintable(said));
    }
};

TESSARAY_TEST(TruncationsCheckTest)
#include "TruncationsCheckTest.moc"
