#include "window/EditFilesPanel.h"

#include "selection/KXSelectionController.h"
#include "window/Controls.h"
#include "window/IntegerField.h"
#include "window/RadioMatrix.h"
#include "window/TimeField.h"
#include "window/ToolTipBinder.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QRadioButton>

using namespace Qt::StringLiterals;

namespace window {

namespace {

// By these the selection's rules tell the time fields apart.
constexpr qint64 startTag = 1001;
constexpr qint64 endTag = 1002;
constexpr qint64 durationTag = 1003;

void showIn(QLineEdit *field, const QString &text)
{
    if (!field->hasFocus() && field->text() != text)
        field->setText(text);
}

} // namespace

EditFilesPanel::EditFilesPanel(KXSelectionController &controller, KXNotificationCenter &center,
                               ToolTipBinder &tips, QWidget *parent)
    : QWidget(parent)
    , m_controller(controller)
    , m_tips(tips)
    , m_join(startButton(u"Join"_s, "JoinButton", tr("Join the files")))
    , m_split(startButton(u"Split"_s, "SplitButton", tr("Split the files")))
    , m_remux(startButton(u"Re-Mux"_s, "RemuxButton", tr("Rewrite the files without header removal")))
    , m_splitType(
          new RadioMatrix("SplitTypeMatrix", {tr("By time"), tr("By size"), tr("By duration")}, Qt::Vertical))
    , m_start(named(new TimeField(center, startTag), "SplitStartTime", tr("Start time")))
    , m_end(named(new TimeField(center, endTag), "SplitEndTime", tr("End time")))
    , m_duration(named(new TimeField(center, durationTag), "SplitDuration", tr("Duration of each part")))
    , m_size(named(new IntegerField, "SplitSize", tr("Size of each part in megabytes")))
{
    auto *layout = new QGridLayout(this);
    layout->addWidget(joinBox(), 0, 0);
    layout->addWidget(splitBox(), 0, 1, 2, 1);
    layout->addWidget(remuxBox(), 1, 0);
    layout->setColumnStretch(0, 1);
    layout->setColumnStretch(1, 1);
    tips.bind(m_start, "ttSplitStartTime");
    tips.bind(m_end, "ttSplitEndTime");
    tips.bind(m_size, "ttSplitSize");
    refresh();
}

QPushButton *EditFilesPanel::startButton(const QString &title, const char *word,
                                         const QString &accessibleName)
{
    auto *button = named(new QPushButton(title), word, accessibleName);
    connect(button, &QPushButton::clicked, this, [this, title] { Q_EMIT startWanted(title); });
    return button;
}

QWidget *EditFilesPanel::joinBox()
{
    auto *box = new QGroupBox(tr("Join"));
    auto *layout = new QVBoxLayout(box);
    layout->addWidget(hint(tr("Joins the files above, in their order, into one.")));
    layout->addWidget(rowOf({m_join, nullptr}));
    layout->addStretch(1);
    return box;
}

QWidget *EditFilesPanel::remuxBox()
{
    auto *box = new QGroupBox(tr("Re-Mux"));
    auto *layout = new QVBoxLayout(box);
    layout->addWidget(hint(tr("Rewrites each file without header removal, for players that can't read it.")));
    layout->addWidget(rowOf({m_remux, nullptr}));
    layout->addStretch(1);
    return box;
}

QWidget *EditFilesPanel::splitBox()
{
    auto *box = new QGroupBox(tr("Split"));
    auto *layout = new QGridLayout(box);
    layout->addWidget(m_splitType->option(0), 0, 0);
    layout->addWidget(rowOf({m_start, new QLabel(tr("to")), m_end, nullptr}), 0, 1);
    layout->addWidget(m_splitType->option(1), 1, 0);
    layout->addWidget(rowOf({m_size, new QLabel(tr("MB")), nullptr}), 1, 1);
    layout->addWidget(m_splitType->option(2), 2, 0);
    layout->addWidget(rowOf({m_duration, nullptr}), 2, 1);
    layout->addWidget(rowOf({m_split, nullptr}), 3, 0, 1, 2);
    layout->setRowStretch(4, 1);
    layout->setColumnStretch(1, 1);
    m_splitType->setParent(box);
    m_splitType->hide(); // its options stand in the grid
    connect(m_splitType, &RadioMatrix::chosen, &m_controller, [this](int index) {
        m_controller.setSplitTypeMatrixIndex(index);
        m_controller.updateTabs();
    });
    connect(m_size, &IntegerField::typed, &m_controller, [this](const QString &size) {
        m_controller.setEnteredSplitSize(size);
        m_controller.updateTabs();
    });
    return box;
}

void EditFilesPanel::refresh()
{
    m_splitType->setIndex(m_controller.splitTypeMatrixIndex());
    m_join->setEnabled(m_controller.canJoin());
    m_tips.setReason(m_join, m_controller.canJoin() ? QString() : tr("Drop at least two MKV files."));
    m_split->setEnabled(m_controller.canSplit());
    m_tips.setReason(m_split, m_controller.canSplit()
                                  ? QString()
                                  : tr("Drop MKV files, and enter a range, a size or a duration."));
    m_remux->setEnabled(m_controller.canEditPAR());
    m_tips.setReason(m_remux, m_controller.canEditPAR() ? QString() : tr("Drop MKV files first."));
    showIn(m_start, m_controller.enteredSplitStartTime());
    showIn(m_end, m_controller.enteredSplitEndTime());
    showIn(m_duration, m_controller.enteredSplitDuration());
    showIn(m_size, m_controller.enteredSplitSize());
}

} // namespace window
