#pragma once

#include "app/ConvertForecast.h"
#include "window/Controls.h"

#include <QLineEdit>
#include <QTimer>

class KXAppDelegate;

namespace window {

class ToolTipBinder;

/// What will come out, before it starts, and the button that starts it. Or the one thing that is missing,
/// with the click that mends it.
class ActionBar final : public Ground
{
    Q_OBJECT

public:
    ActionBar(KXAppDelegate &delegate, ToolTipBinder &tips, QWidget *parent = nullptr);

    void refresh();
    void setShape(bool compact, bool shortWords);
    QPushButton *convert() const { return m_convert; }

Q_SIGNALS:
    void convertWanted();
    void commandsWanted();
    void folderWanted();
    void noFolderWanted();
    /// The film of that row of the open files is to be shown.
    void filmWanted(int row);
    void nameChosen();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setUpName();
    QWidget *words();
    void showForecast(const app::ConvertForecast &forecast);
    void showEmpty();
    void showFolder();
    void announce();
    void editName();
    void endName(bool takes);

    KXAppDelegate &m_delegate;
    ToolTipBinder &m_tips;
    ElidedLabel *m_name;
    QLineEdit *m_field; ///< in the place of the name while it is edited
    QPushButton *m_edit;
    ElidedLabel *m_rest;
    QPushButton *m_stays;
    int m_firstToStay = -1;
    ElidedLabel *m_sentence;
    QPushButton *m_mend;
    ElidedLabel *m_folder;
    QPushButton *m_change;
    QPushButton *m_commands;
    QPushButton *m_convert;
    QTimer m_announce;
    QString m_announced;
};

} // namespace window
