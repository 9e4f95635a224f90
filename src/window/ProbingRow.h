#pragma once

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QWidget>

namespace app {
class FileIntake;
}

namespace window {

/// Says how far the probing of files is, and can stop it. Hidden while nothing is probed.
class ProbingRow final : public QWidget
{
    Q_OBJECT

public:
    explicit ProbingRow(app::FileIntake &intake, QWidget *parent = nullptr);

private:
    void show(int done, int total, const QString &fileName);
    void followBusy();

    app::FileIntake &m_intake;
    QLabel *m_text;
    QProgressBar *m_bar;
    QPushButton *m_stop;
};

} // namespace window
