#include "window/ActionBar.h"

#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "window/Icons.h"
#include "window/ToolTipBinder.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int usualHeight = 76;
constexpr int compactHeight = 64;
constexpr int fileHeight = 44;
constexpr int announceAfter = 500; // milliseconds

} // namespace

ActionBar::ActionBar(KXAppDelegate &delegate, ToolTipBinder &tips, QWidget *parent)
    : Ground(Role::Base, parent)
    , m_delegate(delegate)
    , m_tips(tips)
    , m_name(named(new ElidedLabel(Qt::ElideMiddle, Role::Text, Type::Head), "ResultName", tr("Result")))
    , m_rest(named(new ElidedLabel(Qt::ElideRight, Role::Second), "ResultSize", {}))
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

QWidget *ActionBar::words()
{
    auto *area = new QWidget;
    auto *column = new QVBoxLayout(area);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addStretch(1);
    const auto add = [column](QWidget *first, QWidget *second) {
        QWidget *row = rowOf({first, second, nullptr});
        row->layout()->setSpacing(space::small);
        column->addWidget(row);
    };
    add(m_name, m_rest);
    add(m_sentence, m_mend);
    add(m_folder, m_change);
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
    for (QWidget *line :
         {static_cast<QWidget *>(m_name), static_cast<QWidget *>(m_rest), static_cast<QWidget *>(m_sentence)})
        line->setVisible(!editsFiles);
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
