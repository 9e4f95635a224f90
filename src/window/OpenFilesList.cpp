#include "window/OpenFilesList.h"

#include "app/ConvertForecast.h"
#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "window/Icons.h"
#include "window/RadioMatrix.h"
#include "window/Thumbnails.h"
#include "window/ToolTipBinder.h"

#include <QPainter>
#include <QShortcut>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace window {

namespace {

constexpr int listWidth = 208;
constexpr int railWidth = 72;
constexpr int filmRowHeight = 52;

enum FilmRole { Ready = Qt::UserRole, State, PictureOf };

/// Two lines beside a picture, or the picture alone.
class FilmDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    bool isRail = false;

    QSize sizeHint(const QStyleOptionViewItem & /*option*/, const QModelIndex & /*index*/) const override
    {
        return {isRail ? railWidth : listWidth, filmRowHeight};
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const bool isCurrent = option.state.testFlag(QStyle::State_Selected);
        painter->save();
        if (isCurrent)
            paintChosenRow(*painter, option.rect);
        else if (option.state.testFlag(QStyle::State_MouseOver))
            painter->fillRect(option.rect, color(Role::Groove));
        paintPicture(painter, option.rect, index);
        if (!isRail)
            paintWords(painter, option.rect, index, isCurrent);
        painter->restore();
    }

private:
    void paintPicture(QPainter *painter, const QRect &row, const QModelIndex &index) const
    {
        const QSize size = isRail ? QSize(56, 32) : QSize(48, 27);
        const QRect place(row.x() + (isRail ? 8 : 12), row.y() + (filmRowHeight - size.height()) / 2,
                          size.width(), size.height());
        paintThumbnail(*painter, place, index.data(PictureOf).value<QImage>());
        if (isRail)
            paintMark(painter, QRect(place.right() - 9, place.bottom() - 9, 14, 14), index, true);
    }

    static void paintMark(QPainter *painter, const QRect &place, const QModelIndex &index, bool onPicture)
    {
        const bool isReady = index.data(Ready).toBool();
        if (onPicture) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(color(Role::Side));
            painter->drawEllipse(place.adjusted(-1, -1, 1, 1));
        }
        paintIcon(*painter, place, isReady ? u"emblem-ok"_s : u"dialog-warning"_s,
                  color(isReady ? Role::Ok : Role::Warn));
    }

    static void paintWords(QPainter *painter, const QRect &row, const QModelIndex &index, bool isCurrent)
    {
        const QRect words = row.adjusted(68, 8, -8, -8);
        painter->setFont(fontOf(isCurrent ? Type::Head : Type::Body));
        painter->setPen(color(Role::Text));
        painter->drawText(
            words, Qt::AlignTop | Qt::AlignLeft,
            painter->fontMetrics().elidedText(index.data().toString(), Qt::ElideMiddle, words.width()));
        const QRect mark(words.x(), words.bottom() - 11, 14, 14);
        paintMark(painter, mark, index, false);
        painter->setFont(fontOf(Type::Second));
        painter->setPen(color(index.data(Ready).toBool() ? Role::Second : Role::Warn));
        const QRect state = words.adjusted(18, 0, 0, 2);
        painter->drawText(
            state, Qt::AlignBottom | Qt::AlignLeft,
            painter->fontMetrics().elidedText(index.data(State).toString(), Qt::ElideRight, state.width()));
    }
};

} // namespace

OpenFilesList::OpenFilesList(KXAppDelegate &delegate, Thumbnails &thumbnails, ToolTipBinder &tips,
                             QWidget *parent)
    : Ground(Role::Side, parent)
    , m_delegate(delegate)
    , m_thumbnails(thumbnails)
    , m_list(named(new QListWidget, "OpenFilesQueuePanelTable", tr("Open files")))
    , m_matrix(new RadioMatrix("OpenFilesQueuePanelMatrix",
                               {tr("Apply the presets\nto each file"), tr("Keep what was chosen\nby hand")},
                               Qt::Vertical))
    , m_season(flatButton(u"view-expand"_s, tr("All films beside each other (F8)")))
    , m_remove(flatButton(u"list-remove"_s, tr("Remove from the open files")))
    , m_head(new QWidget)
    , m_foot(new QWidget)
{
    setObjectName(u"OpenFilesPopover"_s);
    setEdge(Qt::RightEdge);
    m_remove->setObjectName(u"OpenFilesRemoveButton"_s);
    auto *head = new QHBoxLayout(m_head);
    head->setContentsMargins(space::middle, space::small, space::small, space::tiny);
    head->addWidget(headLabel(tr("Open Files")), 1);
    head->addWidget(m_season);
    head->addWidget(m_remove);
    auto *foot = new QVBoxLayout(m_foot);
    foot->setContentsMargins(space::middle, space::small, space::middle, space::middle);
    foot->addWidget(hint(tr("Convert, for each film:")));
    m_matrix->setFont(fontOf(Type::Second));
    foot->addWidget(m_matrix);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 1, 0);
    layout->setSpacing(0);
    layout->addWidget(m_head);
    layout->addWidget(m_list, 1);
    layout->addWidget(separatorLine());
    layout->addWidget(m_foot);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setItemDelegate(new FilmDelegate(m_list));
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setMouseTracking(true);
    m_list->viewport()->setAutoFillBackground(false);
    tips.bind(m_list, "ttOpenFilesQueuePanelTable");
    tips.bind(m_matrix, "ttOpenFilesQueuePanelMatrix");
    app::OpenQueue &queue = delegate.openQueue();
    connect(m_list, &QListWidget::currentRowChanged, &queue, &app::OpenQueue::select);
    connect(m_remove, &QPushButton::clicked, &queue, &app::OpenQueue::removeSelecetedItemFromOpenQ);
    m_season->setObjectName(u"SeasonButton"_s);
    connect(m_season, &QPushButton::clicked, this, &OpenFilesList::seasonWanted);
    connect(m_matrix, &RadioMatrix::chosen, this, [this](int index) {
        m_delegate.program().selectionController().setOpenQueueMatrixIndex(index);
        refreshStates();
    });
    connect(&queue, &app::OpenQueue::entriesChanged, this, &OpenFilesList::refresh);
    connect(&queue, &app::OpenQueue::selectedRowChanged, this, &OpenFilesList::refresh);
    connect(&thumbnails, &Thumbnails::taken, this, &OpenFilesList::refreshStates);
    auto *keyed = new QShortcut(QKeySequence::Delete, m_list, nullptr, nullptr, Qt::WidgetShortcut);
    connect(keyed, &QShortcut::activated, &queue, &app::OpenQueue::removeSelecetedItemFromOpenQ);
    setRail(false);
    refresh();
}

void OpenFilesList::setRail(bool rail)
{
    m_isRail = rail;
    setFixedWidth(rail ? railWidth : listWidth);
    m_head->setVisible(!rail);
    m_foot->setVisible(!rail);
    static_cast<FilmDelegate *>(m_list->itemDelegate())->isRail = rail; // NOLINT: set above
    m_list->doItemsLayout();
}

void OpenFilesList::refresh()
{
    const QSignalBlocker quiet(m_list);
    const QList<OpenedFile> &entries = m_delegate.openQueue().entries();
    while (m_list->count() > entries.size())
        delete m_list->takeItem(m_list->count() - 1);
    while (m_list->count() < entries.size())
        m_list->addItem(QString());
    for (int row = 0; row < m_list->count(); ++row)
        m_list->item(row)->setText(entries.at(row).fileName);
    m_list->setCurrentRow(m_delegate.openQueue().selectedRow());
    m_remove->setEnabled(entries.size() >= 2);
    m_matrix->setIndex(m_delegate.program().selectionController().openQueueMatrixIndex());
    refreshStates();
}

void OpenFilesList::refreshStates()
{
    const QSignalBlocker quiet(m_list);
    const QList<OpenedFile> &entries = m_delegate.openQueue().entries();
    for (int row = 0; row < m_list->count() && row < entries.size(); ++row) {
        const app::FilmState state = app::filmState(m_delegate.program(), m_delegate.openQueue(), row);
        QListWidgetItem *item = m_list->item(row);
        item->setData(Ready, state.isReady);
        item->setData(State, state.text);
        const KXVideoFile &film = *entries.at(row).videoFile;
        item->setData(PictureOf, m_thumbnails.of(film.theFileURL(), film.seconds().value_or(0)));
        item->setToolTip(film.theFilePath().toHtmlEscaped());
        item->setData(Qt::AccessibleTextRole, u"%1, %2"_s.arg(entries.at(row).fileName, state.text));
    }
}

} // namespace window
