#include "support/app/AppFixture.h"

#include "support/Clips.h"
#include "support/FakeTool.h"
#include "support/TestPlaces.h"
#include "support/selection/ControllerFixture.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace support {

namespace {

const QStringList packages{u"ffmpeg"_s, u"mkvtoolnix"_s};

void copyTools(const QString &target)
{
    const QDir source(TestPlaces().toolsLocation().toLocalFile());
    for (const QString &package : packages) {
        QDir().mkpath(target + u'/' + package);
        for (const QFileInfo &tool : QDir(source.filePath(package)).entryInfoList(QDir::Files))
            QFile::copy(tool.filePath(), target + u'/' + package + u'/' + tool.fileName());
    }
}

QStringList fieldsOf(const QObject &object)
{
    QStringList lines;
    for (const QString &word : object.property("propertiesKeysList").toStringList())
        lines.append(word + u" = "_s + object.property(qPrintable(word)).toString());
    return lines;
}

QStringList marksOf(const TrackList &tracks)
{
    QStringList lines;
    for (const TrackPointer &track : tracks) {
        lines.append(
            u"%1 %2 %3"_s.arg(quintptr(track.get())).arg(track->trackSelected()).arg(track->userCodec()));
    }
    return lines;
}

} // namespace

AppFixture::AppFixture(const prefs::WatchIntervals &watch)
    : m_watchIntervals(watch)
{
    copyTools(m_scratch.path(u"tools"_s));
    start();
}

AppFixture::~AppFixture()
{
    queue().removeAllJobs();
}

void AppFixture::start()
{
    m_alerts = std::make_unique<ScriptedAlerts>();
    app::Program::Options options;
    options.defaultsPath = m_scratch.path(u"settings/defaults.json"_s);
    options.intervals = {20, 20, 5, 20};
    options.watchIntervals = m_watchIntervals;
    m_program = std::make_unique<app::Program>(options, *m_alerts);
    m_delegate = std::make_unique<KXAppDelegate>(
        KXAppDelegate::Surroundings{*m_program, *m_alerts, m_chooser, m_desktop});
    const QString problem = m_program->initialize();
    if (!problem.isNull())
        qFatal("%s", qPrintable(problem));
    m_program->preferences().setToolsLocationURL(m_scratch.url(u"tools"_s));
    m_delegate->applicationDidFinishLaunching();
}

void AppFixture::restart()
{
    m_delegate.reset();
    m_program.reset();
    start();
}

QString AppFixture::film(const QString &clip, const QString &name) const
{
    return copyOf(clip, m_scratch, name);
}

QString AppFixture::text(const QString &name) const
{
    return m_scratch.write(name, "This is no film.\n");
}

void AppFixture::fakeTool(const QString &tool, const QStringList &script) const
{
    FakeTool::install(m_scratch.path(u"tools/"_s + tool), script);
}

void AppFixture::prepend(const QString &tool, const QString &lines) const
{
    const QByteArray launcher = m_scratch.read(u"tools/"_s + tool);
    const qsizetype end = launcher.indexOf('\n') + 1; // behind the line that names the shell
    installScript(m_scratch.path(u"tools/"_s + tool),
                  lines + u'\n' + QString::fromUtf8(launcher.sliced(end)));
}

void AppFixture::take(const QString &mode, const QStringList &paths)
{
    intake().setOpeningFileMode(mode);
    intake().openedFileHubForFiles(urlsOf(paths));
}

void AppFixture::openByHand(const QList<std::pair<QString, TrackList>> &films)
{
    QList<OpenedFile> entries;
    for (const auto &[path, tracks] : films) {
        KXVideoFile probed(nullptr);
        fillFile(probed, path, tracks);
        m_program->currentFile().file()->makeSelfCopyOfVideoFile(probed);
        controller().takeLoadedFile();
        m_program->currentFile().applyPresets();
        entries.append({file().copy(), selection().copy(), file().theFileName()});
    }
    openQueue().replaceAll(entries);
}

QStringList AppFixture::openNames() const
{
    QStringList names;
    for (const OpenedFile &entry : m_delegate->openQueue().entries())
        names.append(entry.fileName);
    return names;
}

QStringList AppFixture::jobs() const
{
    QStringList lines;
    for (const JobPointer &job : m_program->queue().qJobList())
        lines.append(job->jobType() + u' ' + job->jobFileName());
    return lines;
}

QStringList AppFixture::shownAlerts() const
{
    QStringList lines;
    for (const platform::AlertPointer &alert : m_alerts->shown())
        lines.append(
            u"%1|%2|%3"_s.arg(alert->message, alert->informativeText).arg(alert->closesAfter.count()));
    return lines;
}

QStringList AppFixture::everything()
{
    const KXVideoFile &current = file();
    QStringList lines = fieldsOf(current) + fieldsOf(selection());
    lines += marksOf(current.trackList()) + marksOf(selection().trackList());
    lines += openNames();
    lines.append(u"%1 %2 %3"_s.arg(openQueue().selectedRow())
                     .arg(openQueue().canOpenQueuePopover())
                     .arg(controller().currentFileText()));
    return lines + jobs();
}

std::pair<QString, TrackList> convertible(const QString &path)
{
    return {path, {probedVideo(), probedAudio()}};
}

std::pair<QString, TrackList> soundAlone(const QString &path)
{
    return {path, {probedAudio()}};
}

QList<QUrl> urlsOf(const QStringList &paths)
{
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls.append(QUrl::fromLocalFile(path));
    return urls;
}

} // namespace support
