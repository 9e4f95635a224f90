#pragma once

#include "jobs/JobContext.h"
#include "platform/DefaultsStore.h"
#include "platform/KXNotificationCenter.h"
#include "platform/Volumes.h"
#include "platform/Workspace.h"
#include "prefs/KXPreferences.h"
#include "selection/KXSelection.h"
#include "steps/ConverterContext.h"
#include "steps/OutputRegistry.h"
#include "steps/ScratchFolder.h"
#include "steps/StepLauncher.h"
#include "support/Scratch.h"
#include "support/ScriptedAlerts.h"

#include <QHash>
#include <QList>
#include <QMap>

namespace support {

/// Volumes with as much room as a test says, and a list of what was asked.
class FakeVolumes final : public platform::Volumes
{
public:
    std::optional<qint64> freeSize(const QUrl &folder) const override;
    void setFree(std::optional<qint64> bytes) { m_free = bytes; }
    const QList<QUrl> &asked() const { return m_asked; }

private:
    std::optional<qint64> m_free = 1'000'000'000'000;
    mutable QList<QUrl> m_asked;
};

/// A desktop that starts nothing: it keeps what it was asked, and answers what a test says.
class FakeWorkspace final : public platform::Workspace
{
public:
    bool launch(const QUrl &application) override;
    bool open(const QUrl &document, const QUrl &application) override;
    /// "launch APPLICATION" and "open DOCUMENT with APPLICATION", in order.
    const QStringList &asked() const { return m_asked; }

    bool launches = true;
    bool opens = true;

private:
    QStringList m_asked;
};

/// Starts what it is asked to start, and keeps what that was.
class LaunchRecord final : public steps::StepLauncher
{
public:
    tools::ToolProcessPointer start(const steps::Launch &launch,
                                    const tools::ToolProcess::Request &request) override;
    const QList<steps::Launch> &all() const { return m_all; }
    /// The starts of one tool, in order.
    QList<steps::Launch> of(const QString &tool) const;
    /// What a tool was called with, by the final names of files.
    QStringList named(const QByteArrayList &arguments) const;

private:
    QList<steps::Launch> m_all;
    QHash<QString, QString> m_names; ///< an argument as it was started, to that of the launch form
};

/// Everything a job, a converter or the queue is handed, in a scratch folder of its own and with the
/// preferences of a fresh user. Declared in the order in which the parts need each other: what a test
/// makes from it must go first. Not to be moved.
struct JobFixture
{
    enum class Tools {
        Real, ///< the installed ones, see TestPlaces
        Fake  ///< a "tools" folder in the scratch folder, for FakeTool
    };

    explicit JobFixture(Tools tools = Tools::Real);
    Q_DISABLE_COPY_MOVE(JobFixture)

    jobs::JobContext jobContext(steps::WhenTaken whenTaken = steps::WhenTaken::NextFreeName);
    /// The same with another launcher, as one that keeps what it starts.
    jobs::JobContext jobContext(steps::WhenTaken whenTaken, steps::StepLauncher &other);
    /// For a converter without a job; its temporary folder is "temp/" in the scratch folder.
    steps::ConverterContext converterContext(steps::OutputGuard &guard);

    void setKeepLogs(bool keep) { preferences.overrideForThisRun(QStringLiteral("keepLogsFlag"), keep); }
    void setSaveFolder(const QString &path) { preferences.setSaveDirectoryPath(path); }
    /// Puts a FakeTool at that place below the tools folder ("ffmpeg/ffmpeg"); answers its location.
    QUrl installTool(const QString &place, const QStringList &script = {}) const;
    /// A selection for that source file, with the name fields that a probed file would give.
    SelectionPointer selectionFor(const QString &source, const QString &jobType = {}) const;
    /// A track of the source; its other fields are the defaults of a track.
    static TrackPointer track(const QString &type, const QString &source, const QString &userCodec = {});

    Scratch scratch;
    platform::JsonDefaultsStore store;
    KXPreferences preferences;
    KXNotificationCenter notifications;
    ScriptedAlerts alerts;
    FakeVolumes volumes;
    FakeWorkspace workspace;
    LaunchRecord launcher;
    steps::OutputRegistry outputs;
    steps::ScratchFolder scratchFolder;
    jobs::Checking checking = jobs::Checking::Outputs; ///< not with fake tools, whose files are no films
    int toolsAtOnce = 4;                               ///< of one job, on whatever machine
    /// Short ones; a poll asks a shell, so real tools are asked less often.
    jobs::Intervals intervals{20, 20, 5, 20};
};

/// Keeps every announcement of the given names from its making on.
class NotificationRecord final
{
public:
    NotificationRecord(KXNotificationCenter &center, const QStringList &names);
    Q_DISABLE_COPY_MOVE(NotificationRecord)

    const QList<KXNotification> &all() const { return m_all; }
    QList<KXNotification> named(const QString &name) const;
    qsizetype count(const QString &name) const { return named(name).size(); }

private:
    QList<KXNotification> m_all;
    std::vector<KXNotificationCenter::Subscription> m_subscriptions;
};

} // namespace support
