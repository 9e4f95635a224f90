#include "window/AudioBox.h"

#include "selection/AudioActions.h"
#include "selection/KXSelectionController.h"
#include "window/Controls.h"
#include "window/ToolTipBinder.h"

#include <QSignalBlocker>

using namespace Qt::StringLiterals;

namespace window {

AudioBox::AudioBox(KXSelectionController &controller, ToolTipBinder &tips, QWidget *parent)
    : Section(u"audio-x-generic"_s, Role::Audio, tr("Sound"), parent)
    , m_controller(controller)
    , m_tips(tips)
    , m_tracks(named(new QComboBox, "MultipleAudioTrackPopUp", tr("Audio track that is shown")))
    , m_stereo(named(new QCheckBox(tr("Add a stereo copy")), "AddStereoCheckBox", tr("Add a stereo copy")))
    , m_only(new ElidedLabel(Qt::ElideRight, Role::Second, Type::Second))
    , m_leftOut(new InkLabel({}, Role::Warn, Type::Second))
    , m_why(named(hint(), "SoundReason", {}))
{
    m_tracks->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_tracks->setMinimumContentsLength(14);
    addToHead(m_only);
    addToHead(m_tracks);
    addActions();
    column()->addWidget(new OptionCaption(m_stereo, tr("AAC, 160 kb/s")));
    column()->addWidget(m_leftOut);
    column()->addWidget(m_why);
    tips.bind(m_tracks, "ttMultipleAudioTrackPopUp");
    tips.bind(m_stereo, "ttAddStereoCheckBox");
    connect(m_tracks, &QComboBox::activated, &m_controller,
            [this](int index) { m_controller.setAudioTrackPopupIndex(index); });
    connect(m_stereo, &QCheckBox::clicked, this, [this](bool on) {
        m_controller.byHand(&KXSelectionController::setAddStereoTrackButton, on ? 1 : 0);
    });
    refresh();
}

void AudioBox::addActions()
{
    const QStringList actions = selection::audioActions();
    for (int i = 0; i < actions.size(); ++i) {
        auto *box = new QCheckBox(actions.at(i));
        box->setObjectName(u"TheAudioMatrix%1"_s.arg(i));
        m_tips.bind(box, "ttTheAudioMatrix");
        connect(box, &QCheckBox::clicked, this,
                [this, action = actions.at(i)](bool on) { m_controller.tickAudioAction(action, on); });
        m_actions.append(box);
    }
    m_rates = {rateButton("AudioBitRateButtonAac2", tr("Bit rate of AAC stereo"),
                          &KXSelectionController::setEnteredAAC2BitRate),
               rateButton("AudioBitRateButtonAac51", tr("Bit rate of AAC surround"),
                          &KXSelectionController::setEnteredAAC51BitRate),
               rateButton("AudioBitRateButtonAc351", tr("Bit rate of AC3 surround"),
                          &KXSelectionController::setEnteredAC351BitRate)};
    m_passThru = new OptionCaption(m_actions.constFirst(), tr("copied as it is"));
    column()->addWidget(m_passThru);
    for (int i = 0; i < m_rates.size(); ++i) {
        QWidget *row = rowOf({m_actions.at(i + 1), nullptr, m_rates.at(i)});
        row->setMinimumHeight(30);
        m_rates.at(i)->setFixedWidth(108);
        column()->addWidget(row);
    }
}

QComboBox *AudioBox::rateButton(const char *word, const QString &accessibleName, RateSetter setter)
{
    auto *button = named(new QComboBox, word, accessibleName);
    button->addItems(m_controller.audioBitRateContent());
    m_tips.bind(button, "ttAudioBitRateButton");
    connect(button, &QComboBox::activated, this,
            [this, button, setter] { m_controller.byHand(setter, button->currentText()); });
    return button;
}

void AudioBox::refreshTracks()
{
    const QSignalBlocker quiet(m_tracks);
    const QStringList labels = m_controller.audioTrackLabels();
    m_tracks->clear();
    m_tracks->addItems(labels);
    m_tracks->setCurrentIndex(m_controller.audioTrackPopupIndex());
    m_tracks->setVisible(!m_controller.hideAudioTrackPopupFlag());
    m_only->setVisible(m_controller.hideAudioTrackPopupFlag());
    m_only->setText(labels.value(0));
    m_only->updateGeometry();
}

/// A bit rate that is not in the list is shown all the same.
void AudioBox::refreshRates()
{
    const QStringList rates{m_controller.enteredAAC2BitRate(), m_controller.enteredAAC51BitRate(),
                            m_controller.enteredAC351BitRate()};
    const QList<bool> ticked{m_controller.aac2State(), m_controller.aac51State(), m_controller.ac351State()};
    for (int i = 0; i < m_rates.size(); ++i) {
        if (m_rates.at(i)->findText(rates.at(i)) < 0)
            m_rates.at(i)->addItem(rates.at(i));
        m_rates.at(i)->setCurrentText(rates.at(i));
        m_rates.at(i)->setEnabled(ticked.at(i));
    }
}

void AudioBox::refresh()
{
    const bool hasAudio = m_controller.currentSelection()->audCount().toInt() > 0;
    const bool can = m_controller.canConvert() && hasAudio;
    setEnabled(can);
    refreshTracks();
    refreshRates();
    const QList<bool> ticked{m_controller.passthruState(), m_controller.aac2State(),
                             m_controller.aac51State(), m_controller.ac351State()};
    for (int i = 0; i < m_actions.size(); ++i)
        m_actions.at(i)->setChecked(ticked.at(i));
    const bool red = m_controller.mkvAudioPassThruColor() == u"red"_s;
    m_passThru->setFault(red ? tr("few devices play this codec") : QString());
    m_tips.setReason(m_actions.constFirst(),
                     red ? tr("Most devices play only AAC and AC3; this track is neither.") : QString());
    m_stereo->setEnabled(m_controller.canAddStereoTrack());
    m_stereo->setChecked(m_controller.addStereoTrackButton() != 0);
    m_leftOut->setText(!m_controller.canConvert() || ticked.contains(true) ? QString()
                       : hasAudio ? tr("This track will be left out.")
                                  : tr("No audio track is ticked."));
    m_leftOut->setVisible(!m_leftOut->text().isEmpty());
    QStringList reasons;
    for (const TrackPointer &track : m_controller.currentSelection()->trackList()) {
        if (selection::isAudio(*track) && !track->choiceReason().isEmpty())
            reasons.append(track->choiceReason());
    }
    m_why->setText(reasons.join(u' '));
    m_why->setVisible(!reasons.isEmpty());
}

} // namespace window
