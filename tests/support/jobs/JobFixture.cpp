#include "support/jobs/JobFixture.h"

#include "steps/RunAsProcess.h"
#include "support/FakeTool.h"
#include "support/TestPlaces.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace support {

namespace {

QString resourcesFor(JobFixture::Tools tools, const Scratch &scratch)
{
    if (tools == JobFixture::Tools::Real)
        return TestPlaces().resourcesLocation().toLocalFile();
    QDir().mkpath(scratch.path(u"tools"_s));
    return scratch.path(u"tools"_s);
}

} // namespace

std::optional<qint64> FakeVolumes::freeSize(const QUrl &folder) const
{
    m_asked.append(folder);
    return m_free;
}

bool FakeWorkspace::launch(const QUrl &application)
{
    m_asked.append(u"launch "_s + application.toLocalFile());
    return launches;
}

bool FakeWorkspace::open(const QUrl &document, const QUrl &application)
{
    m_asked.append(u"open %1 with %2"_s.arg(document.toLocalFile(), application.toLocalFile()));
    return opens;
}

tools::ToolProcessPointer LaunchRecord::start(const steps::Launch &launch,
                                              const tools::ToolProcess::Request &request)
{
    m_all.append(launch);
    const tools::OptionList named = launch.line ? steps::runAsProcess(launch.launched) : launch.launched;
    for (qsizetype i = 0; i < launch.started.size() && i < named.size(); ++i)
        m_names.insert(launch.started.at(i).argument(), named.at(i).argument());
    return StepLauncher::start(launch, request);
}

QList<steps::Launch> LaunchRecord::of(const QString &tool) const
{
    QList<steps::Launch> found;
    for (const steps::Launch &launch : m_all) {
        if (launch.tool.fileName() == tool)
            found.append(launch);
    }
    return found;
}

QStringList LaunchRecord::named(const QByteArrayList &arguments) const
{
    QStringList texts;
    for (const QByteArray &argument : arguments) {
        const QString text = QString::fromUtf8(argument);
        texts.append(m_names.value(text, text));
    }
    return texts;
}

JobFixture::JobFixture(Tools tools)
    : store(scratch.path(u"defaults.json"_s))
    , preferences(store, {resourcesFor(tools, scratch), scratch.path()})
{
    if (tools == Tools::Real)
        intervals.poll = 300;
    else
        checking = jobs::Checking::Nothing;
    const QString problem = preferences.initialize();
    if (!problem.isNull())
        qFatal("no preferences: %s", qPrintable(problem));
}

jobs::JobContext JobFixture::jobContext(steps::WhenTaken whenTaken)
{
    return jobContext(whenTaken, launcher);
}

jobs::JobContext JobFixture::jobContext(steps::WhenTaken whenTaken, steps::StepLauncher &other)
{
    return {preferences, notifications, alerts,    volumes,     workspace, other,
            outputs,     scratchFolder, whenTaken, toolsAtOnce, intervals, checking};
}

steps::ConverterContext JobFixture::converterContext(steps::OutputGuard &guard)
{
    QDir().mkpath(scratch.path(u"temp"_s));
    guard.files().setPrivateFolder(scratch.path(u"temp"_s));
    return {preferences, notifications, launcher, guard, scratch.path(u"temp/"_s), nullptr, toolsAtOnce};
}

QUrl JobFixture::installTool(const QString &place, const QStringList &script) const
{
    const QString folder = preferences.toolsLocation().toLocalFile();
    if (!folder.startsWith(scratch.path()))
        qFatal("a fake tool must not replace a real one");
    return QUrl::fromLocalFile(FakeTool::install(folder + u'/' + place, script));
}

SelectionPointer JobFixture::selectionFor(const QString &source, const QString &jobType) const
{
    const QFileInfo info(source);
    const auto selection = std::make_shared<KXSelection>();
    selection->initialize();
    selection->setVideoTrackFilePath(source);
    selection->setVideoTrackFileURL(QUrl::fromLocalFile(source));
    selection->setVideoTrackFileName(info.fileName());
    selection->setVideoTrackFileShortName(info.completeBaseName());
    selection->setVideoTrackFileExtension(info.suffix());
    selection->setJobType(jobType);
    return selection;
}

TrackPointer JobFixture::track(const QString &type, const QString &source, const QString &userCodec)
{
    const auto track = std::make_shared<KXVideoTrack>();
    track->setTrackType(type);
    track->setTrackFilePath(source);
    track->setTrackFileURL(QUrl::fromLocalFile(source));
    track->setTrackFileName(QFileInfo(source).fileName());
    if (!userCodec.isNull())
        track->setUserCodec(userCodec);
    return track;
}

NotificationRecord::NotificationRecord(KXNotificationCenter &center, const QStringList &names)
{
    for (const QString &name : names) {
        m_subscriptions.push_back(center.subscribe(
            name, [this](const KXNotification &notification) { m_all.append(notification); }));
    }
}

QList<KXNotification> NotificationRecord::named(const QString &name) const
{
    QList<KXNotification> found;
    for (const KXNotification &notification : m_all) {
        if (notification.name == name)
            found.append(notification);
    }
    return found;
}

} // namespace support
