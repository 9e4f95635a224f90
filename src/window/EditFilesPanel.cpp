#include "window/EditFilesPanel.h"

#include "app/FilesLook.h"
#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "summary/EditForecast.h"
#include "summary/Figures.h"
#include "window/Badges.h"
#include "window/FileDelegate.h"
#include "window/FilesModel.h"
#include "window/Icons.h"
#include "window/IntegerField.h"
#include "window/KXDropScrollView.h"
#include "window/RadioMatrix.h"
#include "window/Section.h"
#include "window/Thumbnails.h"
#include "window/TimeField.h"
#include "window/ToolTipBinder.h"

#include <QFileInfo>
#include <QGridLayout>
#include <QHeaderView>
#include <QRadioButton>
#include <QScrollArea>
#include <QShortcut>

using namespace Qt::StringLiterals;

namespace window {

namespace {

// By these the selection's rules tell the time fields apart.
constexpr qint64 startTag = 1001;
constexpr qint64 endTag = 1002;
constexpr qint64 durationTag = 1003;
constexpr int operationsWidth = 384;
constexpr int timeFieldWidth = 86;
constexpr int listHeadHeight = 72;
constexpr int lengthWidth = 84;
constexpr int joiningWidth = 210;

void showIn(QLineEdit *field, const QString &text)
{
    if (!field->hasFocus() && field->text() != text)
        field->setText(text);
}

void showForecast(InkLabel *label, const summary::Forecast &forecast)
{
    label->setText(forecast.text);
    label->setInk(forecast.isReason ? Role::Warn : Role::Second);
}

InkLabel *forecastLabel()
{
    auto *label = new InkLabel({}, Role::Second, Type::Second);
    label->setWordWrap(true);
    return label;
}

/// A sentence, or a reason, with its button at the right.
QWidget *forecastRow(QWidget *forecast, QPushButton *button)
{
    button->setMinimumWidth(88);
    QWidget *row = rowOf({forecast, button});
    static_cast<QHBoxLayout *>(row->layout())->setStretch(0, 1); // NOLINT: rowOf() makes one
    row->layout()->setContentsMargins(0, space::small, 0, 0);
    return row;
}

class Operation final : public Section
{
public:
    Operation(const QString &iconName, const QString &title, const QString &text,
              const QList<QWidget *> &parts)
        : Section(iconName, Role::Link, title)
    {
        column()->addWidget(hint(text));
        for (QWidget *part : parts)
            column()->addWidget(part);
    }
};

} // namespace

EditFilesPanel::EditFilesPanel(KXAppDelegate &delegate, Thumbnails &thumbnails, ToolTipBinder &tips,
                               QWidget *parent)
    : QWidget(parent)
    , m_delegate(delegate)
    , m_controller(delegate.program().selectionController())
    , m_tips(tips)
    , m_look(new app::FilesLook(delegate.program().preferences(), this))
    , m_count(new InkLabel({}, Role::Text, Type::Title))
    , m_badges(named(new BadgeRow, "FileListFacts", tr("What is known of the files")))
    , m_text(new ElidedLabel(Qt::ElideRight, Role::Second, Type::Second))
    , m_removeFile(named(smallButton(tr("Remove from List"), u"list-remove"_s), "RemoveFileButton",
                         tr("Remove the file from the list")))
    , m_table(named(new KXDropScrollView, "EditFilesTable", tr("Files to edit")))
    , m_model(new FilesModel(*m_look, thumbnails, this))
    , m_join(startButton(u"Join"_s, "JoinButton", tr("Join the files")))
    , m_split(startButton(u"Split"_s, "SplitButton", tr("Split the files")))
    , m_remux(startButton(u"Re-Mux"_s, "RemuxButton", tr("Rewrite the files without header removal")))
    , m_warning(new Ground(Role::WarnSoft))
    , m_warningText(named(new InkLabel({}, Role::Text, Type::Second), "JoinWarning", {}))
    , m_joinForecast(forecastLabel())
    , m_splitForecast(forecastLabel())
    , m_remuxForecast(forecastLabel())
    , m_splitType(
          new RadioMatrix("SplitTypeMatrix", {tr("By time"), tr("By size"), tr("By duration")}, Qt::Vertical))
    , m_start(named(new TimeField(delegate.program().notifications(), startTag), "SplitStartTime",
                    tr("Start time")))
    , m_end(named(new TimeField(delegate.program().notifications(), endTag), "SplitEndTime", tr("End time")))
    , m_duration(named(new TimeField(delegate.program().notifications(), durationTag), "SplitDuration",
                       tr("Duration of each part")))
    , m_size(named(new IntegerField, "SplitSize", tr("Size of each part in megabytes")))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(listPart(), 1);
    layout->addWidget(separatorLine(Qt::Vertical));
    layout->addWidget(operations());
    connect(m_look, &app::FilesLook::changed, this, [this] {
        m_model->refreshFacts();
        refresh();
    });
    connect(&thumbnails, &Thumbnails::taken, m_model, &FilesModel::refreshFacts);
    tips.bind(m_start, "ttSplitStartTime");
    tips.bind(m_end, "ttSplitEndTime");
    tips.bind(m_size, "ttSplitSize");
    refresh();
}

QPushButton *EditFilesPanel::startButton(const QString &title, const char *word,
                                         const QString &accessibleName)
{
    auto *button = named(new QPushButton(title), word, accessibleName);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, title] { Q_EMIT startWanted(title); });
    return button;
}

QWidget *EditFilesPanel::listPart()
{
    auto *words = new QWidget;
    auto *lines = new QVBoxLayout(words);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(2);
    lines->addStretch(1);
    lines->addWidget(rowOf({m_count, m_badges, nullptr}));
    lines->addWidget(m_text);
    lines->addStretch(1);
    QWidget *head = rowOf({words, m_removeFile});
    static_cast<QHBoxLayout *>(head->layout())->setStretch(0, 1); // NOLINT: rowOf() makes one
    head->setFixedHeight(listHeadHeight);
    m_table->setModel(m_model);
    m_table->setItemDelegate(new FileDelegate(m_table));
    m_table->letRowsBeDragged();
    QHeaderView *header = m_table->header();
    header->setStretchLastSection(false);
    header->setDefaultAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    header->setSectionResizeMode(FilesModel::Name, QHeaderView::Stretch);
    header->resizeSection(FilesModel::Length, lengthWidth);
    header->resizeSection(FilesModel::Size, lengthWidth);
    header->resizeSection(FilesModel::Joining, joiningWidth);
    m_table->setEmptyText(tr("Drag rows, or press Alt+Up and Alt+Down, to change the order.\n"
                             "Dropping files again starts a new list."));
    connect(m_table, &KXDropScrollView::rowDropped, this, &EditFilesPanel::move);
    for (const auto &[keys, by] :
         {std::pair(Qt::ALT | Qt::Key_Up, -1), std::pair(Qt::ALT | Qt::Key_Down, 1)}) {
        auto *moved = new QShortcut(QKeySequence(keys), m_table, nullptr, nullptr, Qt::WidgetShortcut);
        connect(moved, &QShortcut::activated, this, [this, step = by] { moveCurrent(step); });
    }
    auto *gone = new QShortcut(QKeySequence::Delete, m_table, nullptr, nullptr, Qt::WidgetShortcut);
    connect(gone, &QShortcut::activated, this, &EditFilesPanel::removeCurrent);
    connect(m_removeFile, &QPushButton::clicked, this, &EditFilesPanel::removeCurrent);
    connect(m_table, &KXDropScrollView::filesDropped, &m_delegate, &KXAppDelegate::filesDropped);
    auto *part = new QWidget;
    auto *column = new QVBoxLayout(part);
    column->setContentsMargins(space::large, 0, space::large, space::large);
    column->setSpacing(0);
    column->addWidget(head);
    column->addWidget(m_table, 1);
    return part;
}

QWidget *EditFilesPanel::operations()
{
    auto *content = new QWidget;
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    for (QWidget *part : {joinPart(), splitPart(), remuxPart()}) {
        column->addWidget(part);
        column->addWidget(separatorLine());
    }
    column->addStretch(1);
    auto *area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area->setMaximumWidth(operationsWidth);
    area->setMinimumWidth(300);
    area->setWidget(content);
    return area;
}

QWidget *EditFilesPanel::joinPart()
{
    auto *words = new QHBoxLayout(m_warning);
    words->setContentsMargins(space::small, space::small, space::small, space::small);
    words->setSpacing(space::small);
    words->addWidget(iconLabel(u"dialog-warning"_s, Role::Warn));
    words->addWidget(m_warningText, 1);
    m_warningText->setWordWrap(true);
    return new Operation(u"join-files"_s, tr("Join"),
                         tr("The listed files become one, in their order. Nothing is re-encoded."),
                         {m_warning, forecastRow(m_joinForecast, m_join)});
}

QWidget *EditFilesPanel::remuxPart()
{
    return new Operation(u"remux-file"_s, tr("Re-Mux"),
                         tr("Rewrites each file without header removal, for players that can't read it."),
                         {forecastRow(m_remuxForecast, m_remux)});
}

QWidget *EditFilesPanel::splitPart()
{
    auto *kinds = new QWidget;
    auto *grid = new QGridLayout(kinds);
    grid->setContentsMargins(0, space::small, 0, 0);
    grid->setSpacing(space::small);
    const auto plain = [](const QString &text) { return new InkLabel(text, Role::Second); };
    for (QLineEdit *field : {static_cast<QLineEdit *>(m_start), static_cast<QLineEdit *>(m_end),
                             static_cast<QLineEdit *>(m_size), static_cast<QLineEdit *>(m_duration)})
        field->setFixedWidth(timeFieldWidth);
    const QList<QWidget *> rows{rowOf({m_start, plain(tr("to")), m_end, nullptr}),
                                rowOf({m_size, plain(tr("MB each")), nullptr}),
                                rowOf({m_duration, plain(tr("each")), nullptr})};
    for (int i = 0; i < rows.size(); ++i) {
        grid->addWidget(m_splitType->option(i), i, 0);
        grid->addWidget(rows.at(i), i, 1);
    }
    grid->setColumnStretch(1, 1);
    m_splitType->setParent(kinds);
    m_splitType->hide(); // its options stand in the grid
    connect(m_splitType, &RadioMatrix::chosen, &m_controller, [this](int index) {
        m_controller.setSplitTypeMatrixIndex(index);
        m_controller.updateTabs();
    });
    connect(m_size, &IntegerField::typed, &m_controller, [this](const QString &size) {
        m_controller.setEnteredSplitSize(size);
        m_controller.updateTabs();
    });
    return new Operation(u"split-file"_s, tr("Split"),
                         tr("Cuts each file. Cuts fall on the nearest key picture."),
                         {kinds, forecastRow(m_splitForecast, m_split)});
}

void EditFilesPanel::setFiles(const QList<QUrl> &files, int current)
{
    m_controller.currentSelection()->setEditFilesURLsList(files);
    m_controller.updateTabs();
    refresh();
    m_table->setCurrentIndex(m_model->index(current, 0));
}

/// To the row that it has when it is there.
void EditFilesPanel::move(int from, int to)
{
    QList<QUrl> files = m_model->files();
    if (from < 0 || from >= files.size() || to < 0 || to >= files.size() || from == to)
        return;
    files.move(from, to);
    setFiles(files, to);
}

void EditFilesPanel::moveCurrent(int by)
{
    const int row = m_table->currentIndex().row();
    move(row, row + by);
}

void EditFilesPanel::removeCurrent()
{
    const int row = m_table->currentIndex().row();
    if (row < 0)
        return;
    QList<QUrl> files = m_model->files();
    files.removeAt(row);
    setFiles(files, std::min(row, static_cast<int>(files.size()) - 1));
}

void EditFilesPanel::focusTable()
{
    m_table->setFocus(Qt::OtherFocusReason);
}

/// How many, how long and how large all of them are.
void EditFilesPanel::refreshHead(const QList<QUrl> &files)
{
    m_count->setText(files.isEmpty()     ? tr("No files yet")
                     : files.size() == 1 ? tr("1 file")
                                         : tr("%1 files").arg(files.size()));
    qint64 bytes = 0;
    for (const QUrl &file : files)
        bytes += QFileInfo(file.toLocalFile()).size();
    double seconds = 0;
    const QList<VideoFilePointer> films = m_look->films(files);
    for (const VideoFilePointer &film : films)
        seconds += film->seconds().value_or(0);
    QList<Badge> badges;
    if (films.size() == files.size() && seconds > 0)
        badges.append({summary::lengthText(seconds), Role::Second, Role::Groove});
    if (!files.isEmpty())
        badges.append({summary::sizeText(bytes), Role::Second, Role::Groove});
    m_badges->setBadges(badges);
}

void EditFilesPanel::refresh()
{
    const QList<QUrl> files = m_controller.currentSelection()->editFilesURLsList();
    m_model->setFiles(files);
    m_look->list(files);
    refreshHead(files);
    m_text->setText(m_controller.currentFileText());
    m_removeFile->setEnabled(!files.isEmpty());
    const int kind = m_controller.splitTypeMatrixIndex();
    m_splitType->setIndex(kind);
    const QList<VideoFilePointer> films = m_look->films(files);
    showForecast(m_joinForecast, summary::joinForecast(m_controller, films));
    const QString warning = m_controller.canJoin() ? summary::joinWarning(films) : QString();
    m_warningText->setText(warning);
    m_warning->setVisible(!warning.isEmpty());
    showForecast(m_splitForecast, summary::splitForecast(m_controller));
    showForecast(m_remuxForecast, summary::remuxForecast(m_controller));
    m_join->setEnabled(m_controller.canJoin());
    m_tips.setReason(m_join, m_controller.canJoin() ? QString() : tr("Drop at least two MKV files."));
    m_split->setEnabled(m_controller.canSplit());
    m_tips.setReason(m_split, m_controller.canSplit()
                                  ? QString()
                                  : tr("Drop MKV files, and enter a range, a size or a duration."));
    m_remux->setEnabled(m_controller.canEditPAR());
    m_tips.setReason(m_remux, m_controller.canEditPAR() ? QString() : tr("Drop MKV files first."));
    showIn(m_start, m_controller.enteredSplitStartTime());
    showIn(m_end, m_controller.enteredSplitEndTime());
    showIn(m_duration, m_controller.enteredSplitDuration());
    showIn(m_size, m_controller.enteredSplitSize());
}

} // namespace window
