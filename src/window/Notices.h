#pragma once

#include "app/JobStarter.h"
#include "app/OpenQueue.h"
#include "app/OpeningReasons.h"
#include "window/MessageBars.h"

#include <QPointer>

class KXAppDelegate;

namespace window {

/// Tells of what happened without a question, in the bars of the window: what could not be opened, which
/// films stayed behind, what was lost by a drop, a tab or Clear and how it comes back. Owned by the main
/// window.
class Notices final : public QObject
{
    Q_OBJECT

public:
    /// Both must outlive it.
    Notices(KXAppDelegate &delegate, MessageBars &bars, QObject *parent);

    void say(MessageBar::Kind kind, const QString &head, const QString &text = {});
    /// Rows of the queue went, and so many of them had failed.
    void tellCleared(int count, int failed);
    /// Shows another tab, and says what that resets.
    void changeTab(const QString &tab);
    /// Once a start, and only where it is not as it was told last.
    void tellMissingTools();

Q_SIGNALS:
    void toolsWanted();
    /// All files that could not be opened, with their reasons.
    void refusedListWanted(const QStringList &lines);

private:
    void tellRefused(const app::RefusedFile &file);
    void showRefused();
    void openAnyway(const QUrl &url);
    void tellLeft(const QList<app::LeftFilm> &films);
    void tellReplaced(const app::OpenFilesBefore &before);
    QStringList refusedLines() const;
    void undoable(const QString &head, const QString &text, std::function<void()> undo);

    KXAppDelegate &m_delegate;
    MessageBars &m_bars;
    QList<app::RefusedFile> m_refused; ///< until they are dismissed
    QPointer<MessageBar> m_refusedBar;
};

} // namespace window
