#include "window/ProbingRow.h"

#include "app/FileIntake.h"
#include "window/Controls.h"

#include <QHBoxLayout>

namespace window {

ProbingRow::ProbingRow(app::FileIntake &intake, QWidget *parent)
    : QWidget(parent)
    , m_intake(intake)
    , m_text(named(new QLabel, "ProbingText", tr("What is being opened")))
    , m_bar(named(new QProgressBar, "ProbingBar", tr("Progress of opening")))
    , m_stop(named(new QPushButton(tr("Stop")), "ProbingStopButton", tr("Stop opening files")))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_text, 1);
    layout->addWidget(m_bar, 1);
    layout->addWidget(m_stop);
    m_text->setTextFormat(Qt::PlainText);
    m_text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_bar->setTextVisible(false);
    connect(&intake, &app::FileIntake::probing, this, &ProbingRow::show);
    connect(&intake, &app::FileIntake::busyChanged, this, &ProbingRow::followBusy);
    connect(m_stop, &QPushButton::clicked, &intake, &app::FileIntake::stopProbing);
    hide();
}

void ProbingRow::show(int done, int total, const QString &fileName)
{
    m_text->setText(tr("Opening %1 of %2: %3").arg(done + 1).arg(total).arg(fileName));
    m_bar->setMaximum(total);
    m_bar->setValue(done);
    setVisible(total > 0);
}

void ProbingRow::followBusy()
{
    if (!m_intake.isBusy())
        hide();
}

} // namespace window
