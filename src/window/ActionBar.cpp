#include "window/ActionBar.h"

#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "app/ResultName.h"
#include "window/Icons.h"
#include "window/ToolTipBinder.h"

#include <QAccessible>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QShortcut>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int usualHeight = 76;
constexpr int compactHeight = 64;
constexpr int fileHeight = 44;
constexpr int nameHeight = 20;
constexpr int nameWidth = 280;
constexpr int announceAfter = 500; // milliseconds

} // namespace

ActionBar::ActionBar(KXAppDelegate &delegate, ToolTipBinder &tips, QWidget *parent)
    : Ground(Role::Base, parent)
    , m_delegate(delegate)
    , m_tips(tips)
    , m_name(named(new ElidedLabel(Qt::ElideMiddle, Role::Text, Type::Head), "ResultName", tr("Result")))
    , m_field(named(new QLineEdit, "ResultNameField", tr("Name of the result")))
    , m_edit(flatButton(u"document-edit"_s, tr("Change the name of the result")))
    , m_rest(named(new ElidedLabel(Qt::ElideRight, Role::Second), "ResultSize", {}))
    , m_stays(named(linkButton(tr("Show it")), "ShowFilmThatStays", tr("Show the film that stays open")))
    , m_sentence(named(new ElidedLabel(Qt::ElideRight, Role::Second, Type::Second), "ResultSentence", {}))
    , m_mend(named(linkButton(tr("Take the first tracks")), "TakeFirstTracks", tr("Take the first tracks")))
    , m_folder(named(new ElidedLabel(Qt::ElideMiddle, Role::Second, Type::Second), "ResultFolder", {}))
    , m_change(named(linkButton(tr("Change…")), "ChangeFolderButton", tr("Change where results go")))
    , m_commands(named(new QPushButton(icon(u"utilities-terminal"_s), tr("Show Command…")),
                       "ShowCommandButton", tr("Show Command…")))
    , m_convert(named(primaryButton(tr("Convert")), "ConvertButton", tr("Start converting")))
{
    setObjectName(u"ActionBar"_s);
    setEdge(Qt::TopEdge);
    setAccessibleName(tr("What Convert makes"));
    setUpName();
    m_convert->setDefault(true);
    m_convert->setMinimumWidth(132);
    m_commands->setAutoDefault(false);
    auto *menu = new QMenu(m_change);
    connect(menu->addAction(tr("Choose folder…")), &QAction::triggered, this, &ActionBar::folderWanted);
    connect(menu->addAction(tr("Beside the source")), &QAction::triggered, this, &ActionBar::noFolderWanted);
    connect(m_change, &QPushButton::clicked, this,
            [this, menu] { menu->popup(m_change->mapToGlobal(QPoint(0, 0))); });
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(space::large, space::small, space::large, space::small);
    layout->setSpacing(space::middle);
    layout->addWidget(words(), 1);
    layout->addWidget(m_commands);
    layout->addWidget(m_convert);
    tips.bind(m_convert, "ttConvertButton");
    connect(m_convert, &QPushButton::clicked, this, &ActionBar::convertWanted);
    connect(m_commands, &QPushButton::clicked, this, &ActionBar::commandsWanted);
    connect(m_mend, &QPushButton::clicked, this, [this] {
        KXPresetsController &presets = m_delegate.program().presets();
        presets.setSelectionMethodIndex(
            static_cast<int>(presets.presetSelectionsNamesList().indexOf(u"First Track"_s)));
    });
    m_announce.setSingleShot(true);
    m_announce.setInterval(announceAfter);
    connect(&m_announce, &QTimer::timeout, this, &ActionBar::announce);
}

void ActionBar::setUpName()
{
    m_edit->setObjectName(u"EditNameButton"_s);
    m_edit->setProperty("small", true);
    m_edit->setFixedSize(smallHeight, nameHeight);
    m_edit->setIconSize(QSize(14, 14));
    m_field->setFixedHeight(smallHeight);
    m_field->setMinimumWidth(nameWidth);
    m_field->hide();
    m_field->installEventFilter(this);
    m_name->installEventFilter(this);
    m_name->setCursor(Qt::IBeamCursor);
    auto *keyed =
        new QShortcut(QKeySequence(Qt::Key_F2), this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
    connect(keyed, &QShortcut::activated, this, &ActionBar::editName);
    connect(m_edit, &QPushButton::clicked, this, &ActionBar::editName);
    connect(m_field, &QLineEdit::returnPressed, this, [this] { endName(true); });
    connect(m_stays, &QPushButton::clicked, this, [this] { Q_EMIT filmWanted(m_firstToStay); });
}

void ActionBar::editName()
{
    if (m_edit->isHidden())
        return;
    m_field->setText(QFileInfo(m_name->text()).completeBaseName());
    m_name->hide();
    m_edit->hide();
    m_field->show();
    m_field->setFocus(Qt::OtherFocusReason);
    m_field->selectAll();
}

/// The focus goes back to the pencil, which is where the keyboard came from.
void ActionBar::endName(bool takes)
{
    if (m_field->isHidden())
        return;
    const bool hadFocus = m_field->hasFocus();
    m_field->hide();
    m_name->show();
    m_edit->show();
    if (hadFocus)
        m_edit->setFocus(Qt::OtherFocusReason);
    if (!takes)
        return;
    app::chooseResultName(*m_delegate.program().selectionController().currentSelection(), m_field->text());
    Q_EMIT nameChosen();
}

bool ActionBar::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_name && event->type() == QEvent::MouseButtonRelease)
        editName();
    const bool escapes = event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() ==
                                                                  Qt::Key_Escape; // NOLINT: its type is known
    if (watched == m_field && escapes) {
        endName(false);
        return true;
    }
    if (watched == m_field && event->type() == QEvent::FocusOut)
        endName(true);
    return Ground::eventFilter(watched, event);
}

QWidget *ActionBar::words()
{
    auto *area = new QWidget;
    auto *column = new QVBoxLayout(area);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addStretch(1);
    const auto add = [column](const QList<QWidget *> &parts) {
        QWidget *row = rowOf(parts);
        row->layout()->setSpacing(space::small);
        column->addWidget(row);
    };
    add({m_name, m_field, m_edit, m_rest, m_stays, nullptr});
    add({m_sentence, m_mend, nullptr});
    add({m_folder, m_change, nullptr});
    column->addStretch(1);
    return area;
}

void ActionBar::setShape(bool compact, bool shortWords)
{
    const bool editsFiles = m_delegate.program().selectionController().currentTab() == u"Edit Files"_s;
    setFixedHeight(std::max(editsFiles ? fileHeight
                            : compact  ? compactHeight
                                       : usualHeight,
                            editsFiles ? 0 : fontMetrics().height() * (compact ? 3 : 4) + 4));
    m_commands->setText(shortWords && compact ? QString() : tr("Show Command…"));
    m_commands->setToolTip(tr("What Convert would run"));
}

void ActionBar::refresh()
{
    const KXSelectionController &controller = m_delegate.program().selectionController();
    const bool editsFiles = controller.currentTab() == u"Edit Files"_s;
    m_convert->setVisible(!editsFiles);
    m_edit->hide();
    m_stays->hide();
    m_firstToStay = -1;
    m_name->setVisible(!editsFiles && m_field->isHidden());
    m_rest->setVisible(!editsFiles);
    m_sentence->setVisible(!editsFiles);
    m_mend->hide();
    showFolder();
    if (editsFiles) {
        m_commands->setEnabled(false);
        return;
    }
    const app::ConvertForecast forecast = app::convertForecast(m_delegate.program(), m_delegate.openQueue());
    m_convert->setEnabled(forecast.isReady);
    m_commands->setEnabled(forecast.isReady && !forecast.problem.prevents);
    m_tips.setReason(m_convert,
                     forecast.isReady ? QString()
                     : forecast.isOpen
                         ? tr("Open a video and tick exactly one video track. %1").arg(forecast.problem.text)
                         : tr("Open a video and tick exactly one video track."));
    if (forecast.isOpen)
        showForecast(forecast);
    else
        showEmpty();
    for (ElidedLabel *label : {m_name, m_rest, m_sentence})
        label->updateGeometry();
    m_announce.start();
}

void ActionBar::showForecast(const app::ConvertForecast &forecast)
{
    const bool named = !forecast.name.isEmpty();
    m_name->setText(named ? forecast.name : forecast.isReady ? tr("Ready.") : tr("Not ready to convert."));
    m_name->setFont(fontOf(named ? Type::Head : Type::Body));
    m_edit->setVisible(named && m_field->isHidden() &&
                       app::canNameResult(*m_delegate.program().selectionController().currentSelection()));
    m_firstToStay = forecast.firstToStay;
    m_stays->setVisible(m_firstToStay >= 0);
    m_stays->setText(forecast.staying > 1 ? tr("Show the first") : tr("Show it"));
    m_name->setInk(named ? Role::Text : Role::Second);
    QStringList rest;
    if (named)
        rest.append(forecast.size);
    rest.append(forecast.others);
    rest.removeAll(QString());
    m_rest->setText(rest.isEmpty() ? QString() : u"· "_s + rest.join(u" · "_s));
    const bool isProblem = !forecast.problem.text.isEmpty();
    m_sentence->setText(isProblem ? forecast.problem.text : forecast.sentence);
    m_sentence->setInk(isProblem ? Role::Warn : Role::Second);
    m_mend->setVisible(forecast.problem.mend == summary::Problem::Mend::TakeFirstTracks);
}

void ActionBar::showEmpty()
{
    m_name->setText(tr("Nothing is open."));
    m_name->setFont(fontOf(Type::Body));
    m_name->setInk(Role::Second);
    m_rest->clear();
    m_sentence->setInk(Role::Second);
    m_sentence->setText(app::resultFolderIsChosen(m_delegate.program())
                            ? QString()
                            : tr("A finished film lies beside its source, and the source is never changed."));
}

void ActionBar::showFolder()
{
    app::Program &program = m_delegate.program();
    const KXSelectionController &controller = program.selectionController();
    const bool editsFiles = controller.currentTab() == u"Edit Files"_s;
    const QList<QUrl> files = controller.currentSelection()->editFilesURLsList();
    const QUrl source = editsFiles ? files.value(0) : controller.currentVideoFile()->theFileURL();
    const bool isChosen = app::resultFolderIsChosen(program);
    const QString folder = source.isEmpty() && !isChosen ? QString() : app::resultFolder(program, source);
    m_folder->setText(folder.isEmpty() ? tr("Into the folder of the source") : tr("Into %1").arg(folder));
    m_folder->updateGeometry();
}

/// A screen reader is told what has changed once it stands still.
void ActionBar::announce()
{
    const QString text = QStringList{m_name->text(), m_rest->text(), m_sentence->text()}.join(u' ');
    setAccessibleDescription(text);
    if (text == m_announced)
        return;
    m_announced = text;
    QAccessibleEvent changed(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&changed);
}

} // namespace window
