#include "support/CliFixture.h"

#include "support/ClipFactory.h"
#include "support/Clips.h"
#include "support/FakeTool.h"
#include "support/Waiting.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>
#include <QUuid>

#include <algorithm>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace support {

namespace {

constexpr unsigned nobody = 65534;
const QString markName = u"CLI_TEST_RUN"_s;

/// Empty for a process that has just ended.
QByteArray factsOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QJsonObject objectOf(const QByteArray &text)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (!document.isObject())
        qFatal("no JSON object: \"%s\" (%s)", text.constData(), qPrintable(error.errorString()));
    return document.object();
}

QJsonObject probeOf(const QString &path)
{
    QProcess ffprobe;
    ffprobe.start(u"ffprobe"_s, {u"-v"_s, u"error"_s, u"-show_streams"_s, u"-show_format"_s, u"-of"_s,
                                 u"json"_s, u"-i"_s, path});
    ffprobe.waitForFinished(60000);
    return QJsonDocument::fromJson(ffprobe.readAllStandardOutput()).object();
}

QString shown(const QJsonObject &stream)
{
    const QString codec = stream.value(u"codec_name"_s).toString();
    if (stream.value(u"codec_type"_s) == QJsonValue(u"video"_s))
        return codec + u' ' + QString::number(stream.value(u"width"_s).toInt());
    const QString language = stream.value(u"tags"_s).toObject().value(u"language"_s).toString(u"und"_s);
    if (stream.value(u"codec_type"_s) == QJsonValue(u"audio"_s))
        return codec + u' ' + QString::number(stream.value(u"channels"_s).toInt()) + u' ' + language;
    return codec + u' ' + language;
}

void link(const QString &target, const QString &path)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile::remove(path);
    if (!QFile::link(target, path))
        qFatal("can't link %s", qPrintable(path));
}

/// The names of all programs that are installed.
QStringList programNames()
{
    QSet<QString> names;
    for (const QString &folder : {u"/usr/bin"_s, u"/bin"_s, u"/usr/sbin"_s, u"/sbin"_s}) {
        const QStringList programs = QDir(folder).entryList(QDir::Files | QDir::Executable);
        names.unite(QSet<QString>(programs.begin(), programs.end()));
    }
    QStringList all = names.values();
    all.sort();
    return all;
}

/// A folder with a recorder under each of their names, made once for all tests: there are more than a
/// thousand.
QString recorders()
{
    const QStringList names = programNames();
    const QByteArray sum =
        QCryptographicHash::hash(names.join(u'\n').toUtf8(), QCryptographicHash::Sha1).toHex();
    return clip(u"recorders-"_s + QString::fromLatin1(sum), [&](const QString &folder) {
        QDir().mkpath(folder);
        for (const QString &name : names)
            link(QStringLiteral(TESSARAY_RECORDER), folder + u'/' + name);
    });
}

} // namespace

QStringList CliFixture::Run::lines() const
{
    return QString::fromUtf8(output).split(u'\n', Qt::SkipEmptyParts);
}

QList<QJsonObject> CliFixture::Run::objects() const
{
    if (!output.isEmpty() && !output.endsWith('\n'))
        qFatal("the last line has no end");
    QList<QJsonObject> objects;
    QByteArrayList lines = output.split('\n');
    lines.removeLast(); // behind the last line's end
    for (const QByteArray &line : std::as_const(lines))
        objects.append(objectOf(line));
    return objects;
}

CliFixture::CliFixture()
    : m_program(QStringLiteral(TESSARAY_BUILD_DIR "/bin/tessaray-cli"))
    , m_environment(QProcessEnvironment::systemEnvironment())
{
    for (const QString &folder : {u"home"_s, u"tmp"_s, u"media"_s})
        QDir().mkpath(m_scratch.path(folder));
    setEnvironment(u"HOME"_s, m_scratch.path(u"home"_s));
    setEnvironment(u"TMPDIR"_s, m_scratch.path(u"tmp"_s));
    setEnvironment(markName, QUuid::createUuid().toString());
    m_environment.remove(u"XDG_CONFIG_HOME"_s);
}

CliFixture::~CliFixture() = default;

QString CliFixture::resources() const
{
    return QDir::cleanPath(QFileInfo(m_program).path() + u"/../Resources"_s);
}

void CliFixture::useOwnTools()
{
    const QString copy = m_scratch.path(u"app/bin/tessaray-cli"_s);
    QDir().mkpath(QFileInfo(copy).path());
    if (!QFile::copy(m_program, copy))
        qFatal("can't copy the program");
    link(resources() + u"/fonts"_s, m_scratch.path(u"app/Resources/fonts"_s));
    m_program = copy;
    for (const QString &tool : {u"ffmpeg/ffmpeg"_s, u"ffmpeg/ffprobe"_s, u"mkvtoolnix/mkvmerge"_s,
                                u"mkvtoolnix/mkvextract"_s, u"mkvtoolnix/mkvinfo"_s})
        link(QStringLiteral(TESSARAY_RECORDER), resources() + u'/' + tool);
    setEnvironment(u"RECORDER_FILE"_s, m_scratch.path(u"recorded"_s));
}

void CliFixture::setTool(const QString &tool, const QString &script)
{
    const QString path = resources() + u'/' + tool;
    if (script.isNull())
        QFile::remove(path);
    else
        installScript(path, script);
}

void CliFixture::recordEverything()
{
    setEnvironment(u"PATH"_s, recorders());
}

void CliFixture::runUnprivileged()
{
    if (::geteuid() != 0)
        return;
    m_unprivileged = true;
    QDirIterator all(m_scratch.path(), QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                     QDirIterator::Subdirectories);
    QStringList paths{m_scratch.path()};
    while (all.hasNext())
        paths.append(all.next());
    for (const QString &path : std::as_const(paths)) {
        if (::lchown(QFile::encodeName(path).constData(), nobody, nobody) != 0)
            qFatal("can't give %s away", qPrintable(path));
    }
}

QList<QByteArrayList> CliFixture::recorded() const
{
    QList<QByteArrayList> runs;
    for (const FakeTool::Run &run : FakeTool::recordedRuns(m_scratch.path(u"recorded"_s)))
        runs.append(QByteArrayList{run.program} + run.arguments);
    return runs;
}

void CliFixture::forgetRecorded() const
{
    QFile::remove(m_scratch.path(u"recorded"_s));
}

std::unique_ptr<QProcess> CliFixture::start(const QStringList &words) const
{
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(m_environment);
    process->setWorkingDirectory(media());
    process->setStandardInputFile(QProcess::nullDevice());
    if (m_unprivileged) {
        process->setChildProcessModifier([] {
            if (::setgid(nobody) != 0 || ::setuid(nobody) != 0)
                ::_exit(99);
        });
    }
    process->start(m_program, QStringList{u"--defaults"_s, m_scratch.path(u"defaults.json"_s)} + words);
    if (!process->waitForStarted())
        qFatal("%s does not start", qPrintable(m_program));
    return process;
}

CliFixture::Run CliFixture::outcomeOf(QProcess &process, int timeoutMs)
{
    Run run;
    if (process.state() != QProcess::NotRunning && !process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
        qWarning("the program did not end in time");
        return run;
    }
    const bool exited = process.exitStatus() == QProcess::NormalExit;
    run.status = exited ? process.exitCode() : 128 + process.exitCode();
    run.output = process.readAllStandardOutput();
    run.error = process.readAllStandardError();
    return run;
}

CliFixture::Run CliFixture::run(const QStringList &words, int timeoutMs) const
{
    return outcomeOf(*start(words), timeoutMs);
}

QString CliFixture::media(const QString &name) const
{
    return m_scratch.path(name.isEmpty() ? u"media"_s : u"media/"_s + name);
}

QString CliFixture::clip(const QString &clip, const QString &name) const
{
    return copyOf(clip, m_scratch, u"media/"_s + name);
}

QStringList CliFixture::mediaNames() const
{
    return QDir(media()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
                                   QDir::Name);
}

QStringList CliFixture::temporaryNames() const
{
    return QDir(m_scratch.path(u"tmp"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
}

QByteArray CliFixture::mark() const
{
    return markName.toUtf8() + '=' + m_environment.value(markName).toUtf8() + '\0';
}

QList<qint64> CliFixture::processes() const
{
    QList<qint64> found;
    for (const QString &name : QDir(u"/proc"_s).entryList(QDir::Dirs)) {
        const qint64 pid = name.toLongLong();
        if (pid > 0 && runs(pid) && factsOf(u"/proc/%1/environ"_s.arg(pid)).contains(mark()))
            found.append(pid);
    }
    return found;
}

QStringList CliFixture::commandLines() const
{
    QStringList lines;
    for (const qint64 pid : processes())
        lines.append(QString::fromUtf8(factsOf(u"/proc/%1/cmdline"_s.arg(pid)).replace('\0', ' ')));
    return lines;
}

bool CliFixture::nothingRuns() const
{
    const QString keeper = u" --keeper "_s;
    const QStringList lines = commandLines();
    return std::all_of(lines.cbegin(), lines.cend(),
                       [&](const auto &line) { return line.isEmpty() || line.endsWith(keeper); }) &&
           waitFor([this] { return processes().isEmpty(); });
}

QList<QJsonObject> streamsOf(const QString &path)
{
    QList<QJsonObject> streams;
    for (const QJsonValue &stream : probeOf(path).value(u"streams"_s).toArray())
        streams.append(stream.toObject());
    return streams;
}

QString codecsOf(const QString &path)
{
    QStringList codecs;
    for (const QJsonObject &stream : streamsOf(path))
        codecs.append(stream.value(u"codec_name"_s).toString());
    return codecs.join(u' ');
}

QStringList shownStreams(const QString &path)
{
    QStringList streams;
    for (const QJsonObject &stream : streamsOf(path))
        streams.append(shown(stream));
    return streams;
}

double secondsOf(const QString &path)
{
    bool ok = false;
    const double seconds =
        probeOf(path).value(u"format"_s).toObject().value(u"duration"_s).toString().toDouble(&ok);
    return ok ? seconds : -1;
}

} // namespace support
