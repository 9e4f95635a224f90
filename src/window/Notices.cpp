#include "window/Notices.h"

#include "app/ConversionNumbers.h"
#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "platform/DefaultsStore.h"
#include "prefs/ToolCheck.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr auto shortNotice = std::chrono::seconds(10);
constexpr auto timeToUndo = std::chrono::seconds(20);
constexpr qsizetype mostLines = 3;

const QString toldToolsKey = u"toldMissingTools"_s;

/// The first few, one a line, and how many more there are.
QString fewOf(const QStringList &lines)
{
    QStringList few = lines.mid(0, mostLines);
    if (lines.size() > mostLines)
        few.append(Notices::tr("and %1 more").arg(lines.size() - mostLines));
    return few.join(u'\n');
}

} // namespace

Notices::Notices(KXAppDelegate &delegate, MessageBars &bars, QObject *parent)
    : QObject(parent)
    , m_delegate(delegate)
    , m_bars(bars)
{
    connect(&delegate, &KXAppDelegate::noteWorthy, this,
            [this](const QString &sentence) { say(MessageBar::Kind::Info, sentence); });
    connect(&delegate.intake(), &app::FileIntake::refused, this, &Notices::tellRefused);
    connect(&delegate.openQueue(), &app::OpenQueue::entriesChanged, this, [this] {
        // What was opened all the same is no longer refused.
        const auto isOpen = [this](const app::RefusedFile &file) {
            const QList<OpenedFile> &open = m_delegate.openQueue().entries();
            return std::any_of(open.begin(), open.end(), [&](const OpenedFile &entry) {
                return entry.videoFile->theFileURL() == file.url;
            });
        };
        if (m_refused.removeIf(isOpen) > 0)
            showRefused();
    });
    connect(&delegate.intake(), &app::FileIntake::choicesReplaced, this, &Notices::tellReplaced);
    connect(&delegate.starter(), &app::JobStarter::filmsLeft, this, &Notices::tellLeft);
}

void Notices::say(MessageBar::Kind kind, const QString &head, const QString &text)
{
    m_bars.show({kind, head, text, shortNotice, {}, {}});
}

void Notices::undoable(const QString &head, const QString &text, std::function<void()> undo)
{
    m_bars.show({MessageBar::Kind::Info, head, text, timeToUndo, tr("Undo"), std::move(undo)});
}

void Notices::tellCleared(int count, int failed)
{
    const QString rows = count == 1 ? tr("1 row cleared") : tr("%1 rows cleared").arg(count);
    undoable(failed == 0 ? rows : tr("%1, %2 had failed").arg(rows).arg(failed), {},
             [this] { m_delegate.program().queue().bringBackCleared(); });
}

void Notices::changeTab(const QString &tab)
{
    app::Program &program = m_delegate.program();
    const QString left = program.selectionController().currentTab();
    const app::ConversionNumbers before = app::conversionNumbers(program);
    program.selectionController().setCurrentTab(tab);
    const QString reset = app::resetText(program, before);
    if (reset.isEmpty() || left == tab)
        return;
    undoable(tr("The tab “%1” has reset %2").arg(tab, reset), {}, [this, left, before] {
        m_delegate.program().selectionController().setCurrentTab(left);
        app::takeConversionNumbers(m_delegate.program(), before);
    });
}

void Notices::tellReplaced(const app::OpenFilesBefore &before)
{
    const qsizetype count = before.entries.size();
    undoable(count == 1
                 ? tr("%1 was replaced, and what was chosen for it").arg(before.entries.constFirst().fileName)
                 : tr("%1 open films were replaced, and what was chosen for them").arg(count),
             {}, [this, before] { m_delegate.openQueue().bringBack(before); });
}

void Notices::tellLeft(const QList<app::LeftFilm> &films)
{
    if (m_delegate.program().watchMode().appIsInWatchMode())
        return; // its log has it
    QStringList lines;
    for (const app::LeftFilm &film : films)
        lines.append(tr("%1: %2").arg(film.fileName, film.reason));
    const QString first = films.constFirst().fileName;
    m_bars.show({MessageBar::Kind::Warning,
                 films.size() == 1 ? tr("1 film stays open") : tr("%1 films stay open").arg(films.size()),
                 fewOf(lines),
                 {},
                 tr("Show the First"),
                 [this, first] {
                     const QList<OpenedFile> &open = m_delegate.openQueue().entries();
                     for (int row = 0; row < open.size(); ++row) {
                         if (open.at(row).fileName == first)
                             return m_delegate.openQueue().select(row);
                     }
                 },
                 u"FilmsLeft"_s});
}

QStringList Notices::refusedLines() const
{
    QStringList lines;
    for (const app::RefusedFile &file : m_refused)
        lines.append(tr("%1: %2").arg(file.url.fileName(), file.reason));
    return lines;
}

void Notices::tellRefused(const app::RefusedFile &file)
{
    m_refused.removeIf([&](const app::RefusedFile &known) { return known.url == file.url; });
    m_refused.append(file);
    showRefused();
}

/// One bar for all of them, which is made anew with each that comes.
void Notices::showRefused()
{
    if (m_refusedBar) {
        m_refusedBar->disconnect(this);
        Q_EMIT m_refusedBar->closed();
    }
    if (m_refused.isEmpty())
        return;
    const QStringList lines = refusedLines();
    MessageBar::Message message{MessageBar::Kind::Bad,
                                lines.size() == 1 ? tr("1 file could not be opened")
                                                  : tr("%1 files could not be opened").arg(lines.size()),
                                fewOf(lines),
                                {},
                                {},
                                {},
                                u"RefusedFiles"_s};
    const auto newer = std::find_if(m_refused.cbegin(), m_refused.cend(),
                                    [](const app::RefusedFile &file) { return file.opensNewerly; });
    if (lines.size() > mostLines) {
        message.action = tr("Show All");
        message.act = [this, lines] { Q_EMIT refusedListWanted(lines); };
    } else if (newer != m_refused.cend()) {
        message.action = tr("Open Anyway");
        message.act = [this, url = newer->url] { openAnyway(url); };
    }
    message.stays = true;
    m_refusedBar = m_bars.show(message);
    connect(m_refusedBar, &MessageBar::closed, this, [this] { m_refused.clear(); });
}

/// The others are still told of.
void Notices::openAnyway(const QUrl &url)
{
    m_refused.removeIf([&](const app::RefusedFile &file) { return file.url == url; });
    showRefused();
    m_delegate.intake().openAnyway(url);
}

void Notices::tellMissingTools()
{
    app::Program &program = m_delegate.program();
    QStringList names;
    QStringList lines;
    for (const prefs::ToolReport &tool : prefs::ToolCheck(program.preferences()).absent()) {
        names.append(tool.name);
        lines.append(tr("%1: %2").arg(tool.name, tool.switchesOff));
    }
    if (program.defaults().value(toldToolsKey).toStringList() == names)
        return;
    program.defaults().store({{toldToolsKey, names}});
    if (names.isEmpty())
        return;
    m_bars.show({MessageBar::Kind::Warning,
                 names.size() == 1 ? tr("1 tool is missing") : tr("%1 tools are missing").arg(names.size()),
                 fewOf(lines),
                 {},
                 tr("Tools…"),
                 [this] { Q_EMIT toolsWanted(); },
                 u"MissingTools"_s});
}

} // namespace window
