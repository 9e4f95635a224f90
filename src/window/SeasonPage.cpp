#include "window/SeasonPage.h"

#include "app/FilmTrial.h"
#include "app/KXAppDelegate.h"
#include "summary/SeasonTable.h"
#include "window/Icons.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QStandardItemModel>
#include <QStyledItemDelegate>
#include <QTreeView>
#include <QVBoxLayout>

#include <array>

using namespace Qt::StringLiterals;
using summary::SeasonCell;

namespace window {

namespace {

constexpr int rowHeight = 36;
constexpr int headHeight = 72;
constexpr int nameWidth = 240;
constexpr int markSide = 14;
constexpr int noMark = -1;

enum DataRole { FilmRole = Qt::UserRole, MarkRole, DiffersRole };

struct MarkLook
{
    QString icon;
    Role ink;
};

const MarkLook &lookOf(int mark)
{
    static const std::array<MarkLook, 4> looks{{{u"dialog-ok"_s, Role::Ok},
                                                {u"view-refresh"_s, Role::Link},
                                                {u"list-remove"_s, Role::Second},
                                                {u"window-close"_s, Role::Second}}};
    return looks.at(static_cast<size_t>(mark));
}

/// A mark and a word; what differs from the most stands out.
class SeasonDelegate final : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const QFontMetrics widest(fontOf(Type::Head));
        const int width = widest.horizontalAdvance(index.data().toString()) + markSide + 3 * space::small;
        return {width, std::max(rowHeight, option.fontMetrics.height() + space::large)};
    }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        painter->save();
        if (option.state.testFlag(QStyle::State_Selected))
            painter->fillRect(option.rect, color(Role::Soft));
        painter->setPen(color(Role::Line));
        painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
        QRect words = option.rect.adjusted(space::small, 0, -space::tiny, 0);
        const bool differs = index.data(DiffersRole).toBool();
        if (const int mark = index.data(MarkRole).toInt(); mark != noMark) {
            const MarkLook &look = lookOf(mark);
            const QRect place(words.x(), words.y() + (words.height() - markSide) / 2, markSide, markSide);
            paintIcon(*painter, QStyle::visualRect(option.direction, option.rect, place),
                      differs ? u"dialog-warning"_s : look.icon, color(differs ? Role::Warn : look.ink));
            words.setLeft(words.x() + markSide + space::tiny);
        }
        painter->setPen(color(differs ? Role::Warn : Role::Text));
        painter->setFont(fontOf(index.column() == 0 || differs ? Type::Head : Type::Body));
        painter->drawText(QStyle::visualRect(option.direction, option.rect, words),
                          Qt::AlignVCenter | Qt::AlignLeading,
                          painter->fontMetrics().elidedText(
                              index.data().toString(), index.column() == 0 ? Qt::ElideMiddle : Qt::ElideRight,
                              words.width()));
        painter->restore();
    }
};

QStandardItem *itemOf(const QString &text, int film)
{
    auto *item = new QStandardItem(text);
    item->setData(film, FilmRole);
    item->setData(noMark, MarkRole);
    item->setToolTip(text.toHtmlEscaped());
    item->setEditable(false);
    return item;
}

QStandardItem *itemOf(const SeasonCell &cell, int film)
{
    QStandardItem *item = itemOf(cell.text, film);
    item->setData(static_cast<int>(cell.mark), MarkRole);
    item->setData(cell.differs, DiffersRole);
    if (cell.differs)
        item->setData(SeasonPage::tr("%1, unlike most").arg(cell.text), Qt::AccessibleTextRole);
    return item;
}

} // namespace

SeasonPage::SeasonPage(KXAppDelegate &delegate, QWidget *parent)
    : QWidget(parent)
    , m_delegate(delegate)
    , m_head(new InkLabel({}, Role::Text, Type::Title))
    , m_table(named(new QTreeView, "SeasonTable", tr("Open films beside each other")))
    , m_model(new QStandardItemModel(this))
{
    setObjectName(u"SeasonPage"_s);
    QPushButton *close =
        named(smallButton(tr("Back to the Film")), "CloseSeasonButton", tr("Close the season"));
    connect(close, &QPushButton::clicked, this, &SeasonPage::closeWanted);
    auto *words = new QWidget;
    auto *lines = new QVBoxLayout(words);
    lines->setContentsMargins(0, space::middle, 0, space::middle);
    lines->setSpacing(2);
    lines->addWidget(m_head);
    lines->addWidget(
        hint(tr("What Convert will make of each film. Those that differ from the most stand first.")));
    QWidget *head = rowOf({words, close});
    static_cast<QHBoxLayout *>(head->layout())->setStretch(0, 1); // NOLINT: rowOf() makes one
    head->setMinimumHeight(headHeight);
    m_table->setModel(m_model);
    m_table->setItemDelegate(new SeasonDelegate(m_table));
    m_table->setRootIsDecorated(false);
    m_table->setUniformRowHeights(true);
    m_table->setAllColumnsShowFocus(true);
    m_table->setTabKeyNavigation(false);
    m_table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_table->header()->setStretchLastSection(true);
    m_table->header()->setDefaultAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(space::large, 0, space::large, space::large);
    layout->setSpacing(0);
    layout->addWidget(head);
    layout->addWidget(m_table, 1);
    connect(m_table, &QTreeView::clicked, this, &SeasonPage::choose);
    connect(m_table, &QTreeView::activated, this, &SeasonPage::choose);
}

void SeasonPage::open()
{
    QList<app::TriedFilm> tried; // the table looks at them
    QList<summary::SeasonFilm> films;
    for (int row = 0; row < m_delegate.openQueue().openFileCount(); ++row) {
        tried.append(app::triedFilm(m_delegate.program(), m_delegate.openQueue(), row));
        films.append({tried.constLast().file.get(), tried.constLast().selection.get()});
    }
    const summary::SeasonTable table = summary::seasonTable(films);
    m_head->setText(tr("%1 open films").arg(films.size()));
    m_model->clear();
    m_model->setHorizontalHeaderLabels(QStringList{tr("Film"), tr("Length")} + table.columns +
                                       QStringList{tr("For"), tr("Size")});
    for (const summary::SeasonRow &row : table.rows) {
        QList<QStandardItem *> items{itemOf(row.name, row.film), itemOf(row.length, row.film)};
        for (const SeasonCell &cell : row.cells)
            items.append(itemOf(cell, row.film));
        items << itemOf(row.target, row.film) << itemOf(row.size, row.film);
        m_model->appendRow(items);
    }
    for (int column = 1; column < m_model->columnCount(); ++column)
        m_table->resizeColumnToContents(column);
    m_table->header()->resizeSection(0, nameWidth);
    m_table->setCurrentIndex(m_model->index(0, 0));
    m_table->setFocus(Qt::OtherFocusReason);
}

void SeasonPage::choose(const QModelIndex &index)
{
    Q_EMIT filmChosen(index.data(FilmRole).toInt());
}

void SeasonPage::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        Q_EMIT closeWanted();
    else
        QWidget::keyPressEvent(event);
}

} // namespace window
