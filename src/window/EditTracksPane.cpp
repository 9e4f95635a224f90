#include "window/EditTracksPane.h"

#include "app/KXAppDelegate.h"
#include "app/Program.h"
#include "summary/EditForecast.h"
#include "window/Icons.h"
#include "window/Segments.h"
#include "window/ToolTipBinder.h"

#include <QApplication>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;
using selection::TrackEdit;

namespace window {

namespace {

constexpr int headHeight = 40;

} // namespace

EditTracksPane::EditTracksPane(KXAppDelegate &delegate, ToolTipBinder &tips, QWidget *parent)
    : QWidget(parent)
    , m_delegate(delegate)
    , m_tips(tips)
    , m_fold(named(new QPushButton(tr("Edit tracks of an MKV file")), "FoldEditTracks",
                   tr("Edit tracks of an MKV file")))
    , m_foldHint(hint(tr("without converting: extract, remove or add")))
    , m_add(named(smallButton(tr("Add Tracks…"), u"list-add"_s), "AddButton", tr("Add a track file")))
    , m_actions(new Segments("EditTrackMatrix", {tr("Extract"), tr("Remove"), tr("Add")}))
    , m_reason(named(new ElidedLabel(Qt::ElideRight, Role::Second, Type::Second), "EditTracksReason", {}))
    , m_text(hint())
    , m_go(named(new QPushButton(tr("Go")), "StartTrackEditButton", tr("Start editing the tracks")))
    , m_card(nullptr)
{
    setObjectName(u"EditTracksPane"_s);
    m_text->setObjectName(u"EditTrackLabel"_s);
    m_foldHint->setWordWrap(false);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(headLine());
    m_card = makeCard();
    layout->addWidget(m_card);
    tips.bind(m_add, "ttAddButton");
    tips.bind(m_actions, "ttEditTrackMatrix");
    tips.bind(m_go, "ttStartTrackEditButton");
    connect(m_fold, &QPushButton::clicked, this, [this] { setFolded(m_card->isVisibleTo(this)); });
    connect(m_add, &QPushButton::clicked, this, [this] { m_delegate.openFilePanel(u"Add"_s); });
    connect(m_actions, &Segments::chosen, this, [this](int index) {
        m_delegate.program().selectionController().setEditTrackMatrixIndex(index);
        tellUse();
    });
    connect(m_go, &QPushButton::clicked, &delegate.starter(), &app::JobStarter::startTrackEditing);
    connect(qApp, &QApplication::focusChanged, this, &EditTracksPane::tellUse);
    setFolded(false);
    refresh();
}

QWidget *EditTracksPane::headLine()
{
    m_fold->setProperty("flat", true);
    m_fold->setFlat(true);
    m_fold->setAutoDefault(false);
    QFont bold = m_fold->font();
    bold.setWeight(QFont::DemiBold);
    m_fold->setFont(bold);
    QWidget *row = rowOf({m_fold, m_foldHint, nullptr, m_add});
    row->setFixedHeight(headHeight);
    return row;
}

QWidget *EditTracksPane::makeCard()
{
    auto *card = new Ground(Role::Base);
    card->setEdge(Qt::TopEdge | Qt::BottomEdge | Qt::LeftEdge | Qt::RightEdge);
    auto *layout = new QVBoxLayout(card);
    layout->setContentsMargins(space::middle, 10, space::middle, 10);
    layout->setSpacing(space::small);
    QWidget *row = rowOf({m_actions, m_reason, m_go});
    static_cast<QHBoxLayout *>(row->layout())->setStretch(1, 1); // NOLINT: rowOf() makes one
    layout->addWidget(row);
    layout->addWidget(m_text);
    m_go->setAutoDefault(false);
    return card;
}

void EditTracksPane::setFolded(bool folded)
{
    m_fold->setIcon(icon(folded ? u"go-next"_s : u"go-down"_s));
    m_fold->setAccessibleDescription(folded ? tr("folded") : tr("unfolded"));
    m_card->setVisible(!folded);
    m_foldHint->setVisible(folded);
    layout()->setContentsMargins(0, 0, 0, folded ? 0 : space::middle);
}

TrackEdit EditTracksPane::edit() const
{
    const int index = m_delegate.program().selectionController().editTrackMatrixIndex();
    return index == 1 ? TrackEdit::Remove : index == 2 ? TrackEdit::Add : TrackEdit::Extract;
}

void EditTracksPane::tellUse()
{
    const QWidget *focused = QApplication::focusWidget();
    const bool isUsed = m_card->isVisibleTo(this) && (m_card->underMouse() || m_card->isAncestorOf(focused));
    Q_EMIT inUse(isUsed ? std::optional(edit()) : std::nullopt);
}

void EditTracksPane::enterEvent(QEnterEvent *event)
{
    QWidget::enterEvent(event);
    tellUse();
}

void EditTracksPane::leaveEvent(QEvent *event)
{
    QWidget::leaveEvent(event);
    tellUse();
}

void EditTracksPane::refresh()
{
    const KXSelectionController &controller = m_delegate.program().selectionController();
    m_actions->setIndex(controller.editTrackMatrixIndex());
    m_text->setText(controller.editTrackLabel());
    m_add->setEnabled(controller.canAddTrack());
    const summary::Forecast told =
        summary::trackEditForecast(*controller.currentVideoFile(), *controller.currentSelection(), edit());
    const QString refusal = m_delegate.starter().trackEditingRefusal();
    m_reason->setText(told.text);
    m_reason->setInk(told.isReason ? Role::Warn : Role::Second);
    m_go->setEnabled(refusal.isNull());
    m_tips.setReason(m_go, refusal);
}

} // namespace window
