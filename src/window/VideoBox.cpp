#include "window/VideoBox.h"

#include "selection/KXSelectionController.h"
#include "window/IntegerField.h"
#include "window/RadioMatrix.h"
#include "window/ToolTipBinder.h"

#include <QMenu>
#include <QRadioButton>
#include <QStyle>

using namespace Qt::StringLiterals;

namespace window {

VideoBox::VideoBox(KXSelectionController &controller, ToolTipBinder &tips, QWidget *parent)
    : Section(u"video-x-generic"_s, Role::Video, tr("Picture"), parent)
    , m_controller(controller)
    , m_tips(tips)
    , m_video(new RadioMatrix("TheVideoMatrix", {tr("Pass Thru"), tr("H.264, 1 pass"), tr("H.264, 2 passes")},
                              Qt::Vertical))
    , m_bitRate(named(new IntegerField, "VidBitRateField", tr("Video bit rate in kb/s")))
    , m_width(named(new IntegerField, "ResWidthField", tr("Width in pixels")))
    , m_noNumber(new InkLabel(tr("This is no number: 0 is used."), Role::Bad, Type::Second))
    , m_guess(named(smallButton(tr("Best guess")), "BestGuessButton", tr("Best guess")))
    , m_why(named(hint(), "PictureReason", {}))
{
    addGuess();
    const QStringList meanings{tr("copied as it is"), tr("re-encoded, faster"), tr("re-encoded, better")};
    m_video->hide();
    m_video->setParent(this); // its options stand in rows of their own
    for (int i = 0; i < meanings.size(); ++i) {
        m_captions.append(new OptionCaption(m_video->option(i), meanings.at(i)));
        column()->addWidget(m_captions.constLast());
    }
    column()->addWidget(numbers());
    column()->addWidget(m_noNumber);
    column()->addWidget(m_why);
    tips.bind(m_video, "ttTheVideoMatrix");
    tips.bind(m_bitRate, "ttVidBitRateField");
    tips.bind(m_width, "ttResWidthField");
    connect(m_video, &RadioMatrix::chosen, this,
            [this](int index) { m_controller.byHand(&KXSelectionController::setVideoMatrixIndex, index); });
    connect(m_bitRate, &QLineEdit::editingFinished, this, &VideoBox::commitNumbers);
    connect(m_width, &QLineEdit::editingFinished, this, &VideoBox::commitNumbers);
    refresh();
}

void VideoBox::addGuess()
{
    auto *menu = new QMenu(m_guess);
    connect(menu->addAction(tr("For quality")), &QAction::triggered, this,
            [this] { guess(selection::Aim::Quality); });
    connect(menu->addAction(tr("For speed")), &QAction::triggered, this,
            [this] { guess(selection::Aim::Speed); });
    m_guess->setProperty("flat", true);
    m_guess->setFlat(true);
    connect(m_guess, &QPushButton::clicked, this,
            [this, menu] { menu->popup(m_guess->mapToGlobal(QPoint(0, m_guess->height()))); });
    addToHead(m_guess);
}

void VideoBox::guess(selection::Aim aim)
{
    const auto guessed =
        selection::bestGuess(*m_controller.currentSelection(), m_controller.mp4Device(), aim);
    if (guessed)
        m_controller.takeGuess(*guessed);
}

QWidget *VideoBox::numbers()
{
    for (IntegerField *field : {m_bitRate, m_width})
        field->setFixedWidth(field->fontMetrics().averageCharWidth() * 5 + 24);
    QLabel *rate = labelFor(m_bitRate, tr("&Bit rate"));
    QLabel *width = labelFor(m_width, tr("&Width"));
    for (QLabel *label : {rate, width})
        label->setTextFormat(Qt::AutoText);
    QWidget *row = rowOf({rate, m_bitRate, hint(tr("kb/s")), nullptr, width, m_width, hint(tr("px"))});
    for (auto *label : row->findChildren<QLabel *>())
        label->setWordWrap(false);
    row->layout()->setContentsMargins(0, space::tiny, 0, 0);
    return row;
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

void VideoBox::showNumber(IntegerField *field, const QString &text, bool counts)
{
    field->setEnabled(m_controller.canConvert() && m_controller.videoMatrixIndex() != 0);
    if (!field->hasFocus())
        field->setText(text);
    if (field->property("refused").toBool() != !counts) {
        field->setProperty("refused", !counts);
        field->update();
    }
}

void VideoBox::refresh()
{
    const bool can = m_controller.canConvert();
    m_video->setIndex(m_controller.videoMatrixIndex());
    const bool red = m_controller.mkvVideoPassThruColor() == u"red"_s;
    for (int i = 0; i < m_captions.size(); ++i)
        m_video->option(i)->setEnabled(can);
    m_captions.constFirst()->setFault(red ? tr("burning needs re-encoding") : QString());
    m_tips.setReason(m_video->option(0),
                     red ? tr("Burning a subtitle needs the video to be re-encoded.") : QString());
    const QString noGuess = selection::refusalToGuess(m_controller.mp4Device());
    m_guess->setEnabled(can && noGuess.isNull());
    m_tips.setReason(m_guess, noGuess);
    QString why;
    for (const TrackPointer &track : m_controller.currentSelection()->trackList()) {
        if (selection::isVideo(*track))
            why = track->choiceReason();
    }
    m_why->setText(why);
    m_why->setVisible(!why.isEmpty());
    showNumber(m_bitRate, m_controller.enteredUserVideoBitRate(), m_controller.userBitRateOK() || !can);
    showNumber(m_width, m_controller.enteredUserWidth(), m_controller.userWidthOK() || !can);
    m_noNumber->setVisible(can && m_controller.videoMatrixIndex() != 0 &&
                           !(m_controller.userBitRateOK() && m_controller.userWidthOK()));
}

} // namespace window
