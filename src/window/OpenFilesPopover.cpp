#include "window/OpenFilesPopover.h"

#include "app/OpenQueue.h"
#include "selection/KXSelectionController.h"
#include "window/Controls.h"
#include "window/RadioMatrix.h"
#include "window/ToolTipBinder.h"

#include <QSignalBlocker>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace window {

OpenFilesPopover::OpenFilesPopover(app::OpenQueue &openQueue, KXSelectionController &controller,
                                   ToolTipBinder &tips, QWidget *parent)
    : QFrame(parent, Qt::Popup)
    , m_openQueue(openQueue)
    , m_controller(controller)
    , m_list(named(new QListWidget, "OpenFilesQueuePanelTable", tr("Open files")))
    , m_matrix(new RadioMatrix("OpenFilesQueuePanelMatrix",
                               {tr("Apply the presets to each file"), tr("Keep what was chosen by hand")},
                               Qt::Vertical))
    , m_remove(
          named(new QPushButton(tr("Remove")), "OpenFilesRemoveButton", tr("Remove from the open files")))
{
    setObjectName(u"OpenFilesPopover"_s);
    setFrameStyle(QFrame::StyledPanel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_list);
    layout->addWidget(m_matrix);
    layout->addWidget(rowOf({nullptr, m_remove}));
    setMinimumWidth(fontMetrics().averageCharWidth() * 50);
    tips.bind(m_list, "ttOpenFilesQueuePanelTable");
    tips.bind(m_matrix, "ttOpenFilesQueuePanelMatrix");
    connect(m_list, &QListWidget::currentRowChanged, &m_openQueue, &app::OpenQueue::select);
    connect(m_remove, &QPushButton::clicked, &m_openQueue, &app::OpenQueue::removeSelecetedItemFromOpenQ);
    connect(m_matrix, &RadioMatrix::chosen, &m_controller,
            [this](int index) { m_controller.setOpenQueueMatrixIndex(index); });
    connect(&openQueue, &app::OpenQueue::entriesChanged, this, &OpenFilesPopover::refresh);
    connect(&openQueue, &app::OpenQueue::selectedRowChanged, this, &OpenFilesPopover::refresh);
    refresh();
}

void OpenFilesPopover::refresh()
{
    const QSignalBlocker quiet(m_list);
    m_list->clear();
    for (const OpenedFile &entry : m_openQueue.entries())
        m_list->addItem(entry.fileName);
    m_list->setCurrentRow(m_openQueue.selectedRow());
    m_remove->setEnabled(m_openQueue.entries().size() >= 2);
}

void OpenFilesPopover::showBelow(QWidget *button)
{
    m_matrix->setIndex(m_controller.openQueueMatrixIndex());
    adjustSize();
    const QPoint corner = button->mapToGlobal(button->rect().bottomRight());
    move(corner.x() - width() + 1, corner.y() + 2);
    show();
    m_list->setFocus(Qt::PopupFocusReason);
}

} // namespace window
