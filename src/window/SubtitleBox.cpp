#include "window/SubtitleBox.h"

#include "selection/KXSelectionController.h"
#include "window/Controls.h"
#include "window/RadioMatrix.h"
#include "window/ToolTipBinder.h"

#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace window {

SubtitleBox::SubtitleBox(KXSelectionController &controller, ToolTipBinder &tips, QWidget *parent)
    : QGroupBox(tr("Subtitles"), parent)
    , m_controller(controller)
    , m_tips(tips)
    , m_subtitles(new RadioMatrix("TheSubtitleMatrix", {tr("Burn (hard)"), tr("Mux (soft)")}, Qt::Vertical))
    , m_send(named(new QPushButton(u"Send"_s), "SendButton", tr("Send a subtitle to Lintwick")))
{
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_subtitles);
    layout->addStretch(1);
    layout->addWidget(rowOf({m_send, nullptr}));
    layout->addWidget(hint(tr("Sends the ticked subtitle to Lintwick.")));
    tips.bind(m_subtitles, "ttTheSubtitleMatrix");
    connect(m_subtitles, &RadioMatrix::chosen, this, [this](int index) {
        m_controller.byHand(&KXSelectionController::setSubtitleMatrixIndex, index);
    });
    connect(m_send, &QPushButton::clicked, this, [this] { Q_EMIT startWanted(u"Send"_s); });
    refresh();
}

void SubtitleBox::setSendingRefusal(const QString &refusal)
{
    m_sendingRefusal = refusal;
    refresh();
}

void SubtitleBox::refresh()
{
    const bool has = m_controller.subtitleSelected();
    m_subtitles->setEnabled(m_controller.canConvert() && has);
    m_subtitles->option(0)->setEnabled(m_controller.canBurnSubtitles());
    m_subtitles->option(1)->setEnabled(m_controller.canMuxSubtitles());
    m_subtitles->setIndex(m_controller.subtitleMatrixIndex());
    m_tips.setReason(m_subtitles->option(0), m_controller.canBurnSubtitles() || !has
                                                 ? QString()
                                                 : tr("Only one subtitle can be burned."));
    m_send->setEnabled(has && m_sendingRefusal.isNull());
    m_tips.setReason(m_send, m_sendingRefusal.isNull() ? has ? QString() : tr("Tick a subtitle first.")
                                                       : m_sendingRefusal);
}

} // namespace window
