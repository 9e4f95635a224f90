#include "window/EditTracksBox.h"

#include "app/JobStarter.h"
#include "selection/KXSelectionController.h"
#include "window/Controls.h"
#include "window/RadioMatrix.h"
#include "window/ToolTipBinder.h"

#include <QVBoxLayout>

namespace window {

EditTracksBox::EditTracksBox(KXSelectionController &controller, app::JobStarter &starter, ToolTipBinder &tips,
                             QWidget *parent)
    : QGroupBox(tr("Edit tracks of an MKV file"), parent)
    , m_controller(controller)
    , m_starter(starter)
    , m_tips(tips)
    , m_actions(new RadioMatrix("EditTrackMatrix", {tr("Extract"), tr("Remove"), tr("Add")}, Qt::Horizontal))
    , m_text(hint())
    , m_go(named(new QPushButton(tr("Go")), "StartTrackEditButton", tr("Start editing the tracks")))
{
    m_text->setObjectName(QStringLiteral("EditTrackLabel"));
    m_text->setMinimumHeight(m_text->fontMetrics().lineSpacing() * 3);
    m_text->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(rowOf({m_actions, nullptr, m_go}));
    layout->addWidget(m_text);
    tips.bind(m_actions, "ttEditTrackMatrix");
    tips.bind(m_go, "ttStartTrackEditButton");
    connect(m_actions, &RadioMatrix::chosen, &m_controller,
            [this](int index) { m_controller.setEditTrackMatrixIndex(index); });
    connect(m_go, &QPushButton::clicked, &m_starter, &app::JobStarter::startTrackEditing);
    refresh();
}

void EditTracksBox::refresh()
{
    m_actions->setIndex(m_controller.editTrackMatrixIndex());
    m_text->setText(m_controller.editTrackLabel());
    const QString refusal = m_starter.trackEditingRefusal();
    m_go->setEnabled(refusal.isNull());
    m_tips.setReason(m_go, refusal);
}

} // namespace window
