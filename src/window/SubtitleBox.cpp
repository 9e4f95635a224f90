#include "window/SubtitleBox.h"

#include "selection/KXSelectionController.h"
#include "summary/EditForecast.h"
#include "window/Icons.h"
#include "window/RadioMatrix.h"
#include "window/ToolTipBinder.h"

#include <QRadioButton>

using namespace Qt::StringLiterals;

namespace window {

SubtitleBox::SubtitleBox(KXSelectionController &controller, ToolTipBinder &tips, QWidget *parent)
    : Section(u"media-view-subtitles-symbolic"_s, Role::Subtitle, tr("Subtitles"), parent)
    , m_controller(controller)
    , m_tips(tips)
    , m_subtitles(new RadioMatrix("TheSubtitleMatrix", {tr("Burn (hard)"), tr("Mux (soft)")}, Qt::Vertical))
    , m_mux(new OptionCaption(m_subtitles->option(1), tr("can be switched off")))
    , m_burn(new OptionCaption(m_subtitles->option(0), tr("drawn into the picture")))
    , m_send(named(new QPushButton(icon(u"document-send"_s), u"Send"_s), "SendButton",
                   tr("Send a subtitle to Lintwick")))
    , m_sendHint(hint())
{
    m_subtitles->hide();
    m_subtitles->setParent(this); // its options stand in rows of their own
    column()->addWidget(m_mux);
    column()->addWidget(m_burn);
    column()->addSpacing(space::small);
    m_send->setAutoDefault(false);
    QWidget *row = rowOf({m_sendHint, m_send});
    static_cast<QHBoxLayout *>(row->layout())->setStretch(0, 1); // NOLINT: rowOf() makes one
    column()->addWidget(row);
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
    const bool can = m_controller.canConvert() && has;
    m_subtitles->option(0)->setEnabled(can && m_controller.canBurnSubtitles());
    m_subtitles->option(1)->setEnabled(can && m_controller.canMuxSubtitles());
    m_subtitles->setIndex(m_controller.subtitleMatrixIndex());
    const bool tooMany = has && !m_controller.canBurnSubtitles();
    m_burn->setFault(tooMany ? tr("only one can be burned") : QString());
    m_tips.setReason(m_subtitles->option(0), tooMany ? tr("Only one subtitle can be burned.") : QString());
    const QString reason = summary::sendReason(has, m_sendingRefusal);
    m_send->setEnabled(reason.isNull());
    m_tips.setReason(m_send, reason);
    const QString what = tr("Work on the subtitle in Lintwick");
    m_sendHint->setText(reason.isNull() ? what : what + u'\n' + reason);
}

} // namespace window
