#pragma once

#include <QPushButton>
#include <QWidget>

class KXNotificationCenter;
class KXSelectionController;

namespace window {

class IntegerField;
class RadioMatrix;
class TimeField;
class ToolTipBinder;

/// The tab "Edit Files": joins, splits and rewrites whole MKV files.
class EditFilesPanel final : public QWidget
{
    Q_OBJECT

public:
    EditFilesPanel(KXSelectionController &controller, KXNotificationCenter &center, ToolTipBinder &tips,
                   QWidget *parent = nullptr);

    void refresh();

Q_SIGNALS:
    /// The button with that title was pressed.
    void startWanted(const QString &title);

private:
    QPushButton *startButton(const QString &title, const char *word, const QString &accessibleName);
    QWidget *joinBox();
    QWidget *splitBox();
    QWidget *remuxBox();

    KXSelectionController &m_controller;
    ToolTipBinder &m_tips;
    QPushButton *m_join;
    QPushButton *m_split;
    QPushButton *m_remux;
    RadioMatrix *m_splitType;
    TimeField *m_start;
    TimeField *m_end;
    TimeField *m_duration;
    IntegerField *m_size;
};

} // namespace window
