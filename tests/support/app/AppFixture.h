#pragma once

#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "support/RecordingDesktop.h"
#include "support/Scratch.h"
#include "support/ScriptedAlerts.h"
#include "support/ScriptedChooser.h"

#include <memory>

namespace support {

/// The window program of a fresh user without its window: alerts and panels are answered by the test. Its
/// tools are the installed ones, in a folder of its own where each can be replaced. It can be started again.
class AppFixture final
{
public:
    /// With other paces of watch mode than a person's.
    explicit AppFixture(const prefs::WatchIntervals &watch = {5000, 20, 500});
    ~AppFixture();
    Q_DISABLE_COPY_MOVE(AppFixture)

    /// As if the program had ended and is started again.
    void restart();

    KXAppDelegate &delegate() { return *m_delegate; }
    app::Program &program() { return *m_program; }
    app::FileIntake &intake() { return m_delegate->intake(); }
    app::OpenQueue &openQueue() { return m_delegate->openQueue(); }
    app::JobStarter &starter() { return m_delegate->starter(); }
    KXSelectionController &controller() { return m_program->selectionController(); }
    KXPresetsController &presets() { return m_program->presets(); }
    KXQueueController &queue() { return m_program->queue(); }
    const KXSelection &selection() { return *controller().currentSelection(); }
    const KXVideoFile &file() { return *m_program->currentFile().file(); }
    ScriptedAlerts &alerts() { return *m_alerts; }
    ScriptedChooser &chooser() { return m_chooser; }
    RecordingDesktop &desktop() { return m_desktop; }
    const Scratch &scratch() const { return m_scratch; }

    QString path(const QString &name = {}) const { return m_scratch.path(name); }
    /// A copy of a clip; answers its path.
    QString film(const QString &clip, const QString &name) const;
    /// A file that is no film; answers its path.
    QString text(const QString &name) const;
    /// Puts a FakeTool in the place of a tool ("ffmpeg/ffmpeg").
    void fakeTool(const QString &tool, const QStringList &script) const;
    /// Puts lines of the shell in front of a tool; "$@" are its arguments.
    void prepend(const QString &tool, const QString &lines) const;

    /// Hands files to the hub at once, and comes back when they were taken in.
    void take(const QString &mode, const QStringList &paths);
    void drop(const QStringList &paths) { take(QStringLiteral("drag"), paths); }
    /// Fills the list of open files without a probe. Each is loaded as a probed one: with its tracks, and
    /// with the presets that are chosen.
    void openByHand(const QList<std::pair<QString, TrackList>> &films);

    QStringList openNames() const;
    /// "MKV Conversion a.mkv" of each job in the queue.
    QStringList jobs() const;
    /// The alerts that were shown, "MESSAGE|TEXT|MILLISECONDS".
    QStringList shownAlerts() const;
    /// All of the current file and selection and of the open files that a refused file must leave alone.
    QStringList everything();

private:
    void start();

    prefs::WatchIntervals m_watchIntervals;
    Scratch m_scratch;
    std::unique_ptr<ScriptedAlerts> m_alerts;
    ScriptedChooser m_chooser;
    RecordingDesktop m_desktop;
    std::unique_ptr<app::Program> m_program;
    std::unique_ptr<KXAppDelegate> m_delegate;
};

/// A film with one video and one audio track, as it can be converted, and one that cannot: sound alone.
std::pair<QString, TrackList> convertible(const QString &path);
std::pair<QString, TrackList> soundAlone(const QString &path);
QList<QUrl> urlsOf(const QStringList &paths);

} // namespace support
