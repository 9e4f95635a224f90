#include "window/VideoBox.h"

#include "selection/KXSelectionController.h"
#include "selection/Targets.h"
#include "window/Controls.h"
#include "window/IntegerField.h"
#include "window/RadioMatrix.h"
#include "window/ToolTipBinder.h"

#include <QFormLayout>
#include <QLabel>
#include <QRadioButton>

using namespace Qt::StringLiterals;

namespace window {

VideoBox::VideoBox(KXSelectionController &controller, ToolTipBinder &tips, QWidget *parent)
    : QGroupBox(tr("Target and video"), parent)
    , m_controller(controller)
    , m_tips(tips)
    , m_device(named(new QComboBox, "DevicePopUp", tr("Target")))
    , m_video(new RadioMatrix("TheVideoMatrix", {tr("Pass Thru"), tr("H.264, 1 pass"), tr("H.264, 2 passes")},
                              Qt::Vertical))
    , m_bitRate(named(new IntegerField, "VidBitRateField", tr("Video bit rate in kb/s")))
    , m_width(named(new IntegerField, "ResWidthField", tr("Width in pixels")))
{
    m_device->addItems(selection::targetNames());
    m_device->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    auto *layout = new QFormLayout(this);
    layout->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    layout->addRow(tr("&Target:"), m_device);
    layout->addRow(tr("Video:"), m_video);
    layout->addRow(tr("&Bit rate:"), rowOf({m_bitRate, new QLabel(tr("kb/s"))}));
    layout->addRow(tr("&Width:"), rowOf({m_width, new QLabel(tr("pixels"))}));
    tips.bind(m_device, "ttDevicePopUp");
    tips.bind(m_video, "ttTheVideoMatrix");
    tips.bind(m_bitRate, "ttVidBitRateField");
    tips.bind(m_width, "ttResWidthField");
    connect(m_device, &QComboBox::activated, this,
            [this] { m_controller.byHand(&KXSelectionController::setMp4Device, m_device->currentText()); });
    connect(m_video, &RadioMatrix::chosen, this,
            [this](int index) { m_controller.byHand(&KXSelectionController::setVideoMatrixIndex, index); });
    connect(m_bitRate, &QLineEdit::editingFinished, this, &VideoBox::commitNumbers);
    connect(m_width, &QLineEdit::editingFinished, this, &VideoBox::commitNumbers);
    refresh();
}

/// A field that is only left changes nothing.
void VideoBox::commitNumbers()
{
    const QString bitRate = m_bitRate->text();
    const QString width = m_width->text();
    if (bitRate != m_controller.enteredUserVideoBitRate())
        m_controller.byHand(&KXSelectionController::setEnteredUserVideoBitRate, bitRate);
    if (width != m_controller.enteredUserWidth())
        m_controller.byHand(&KXSelectionController::setEnteredUserWidth, width);
}

void VideoBox::refresh()
{
    setEnabled(m_controller.canConvert());
    m_device->setCurrentText(m_controller.mp4Device());
    m_video->setIndex(m_controller.videoMatrixIndex());
    const bool red = m_controller.mkvVideoPassThruColor() == u"red"_s;
    setReddened(m_video->option(0), red);
    m_tips.setReason(m_video->option(0),
                     red ? tr("Burning a subtitle needs the video to be re-encoded.") : QString());
    const bool encodes = m_controller.videoMatrixIndex() != 0;
    for (IntegerField *field : {m_bitRate, m_width})
        field->setEnabled(encodes);
    if (!m_bitRate->hasFocus())
        m_bitRate->setText(m_controller.enteredUserVideoBitRate());
    if (!m_width->hasFocus())
        m_width->setText(m_controller.enteredUserWidth());
}

} // namespace window
