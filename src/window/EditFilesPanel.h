#pragma once

#include "window/Controls.h"

class KXAppDelegate;
class KXDropScrollView;
class KXSelectionController;

namespace app {
class FilesLook;
}

namespace window {

class BadgeRow;
class FilesModel;
class IntegerField;
class RadioMatrix;
class Thumbnails;
class TimeField;
class ToolTipBinder;

/// The tab "Edit Files": the list of whole MKV files, and what joins, splits and rewrites them.
class EditFilesPanel final : public QWidget
{
    Q_OBJECT

public:
    EditFilesPanel(KXAppDelegate &delegate, Thumbnails &thumbnails, ToolTipBinder &tips,
                   QWidget *parent = nullptr);

    void refresh();
    void focusTable();
    KXDropScrollView *table() const { return m_table; }

Q_SIGNALS:
    /// The button with that title was pressed.
    void startWanted(const QString &title);

private:
    QPushButton *startButton(const QString &title, const char *word, const QString &accessibleName);
    QWidget *listPart();
    QWidget *operations();
    QWidget *joinPart();
    QWidget *splitPart();
    QWidget *remuxPart();
    void setFiles(const QList<QUrl> &files, int current);
    void move(int from, int to);
    void moveCurrent(int by);
    void refreshHead(const QList<QUrl> &files);
    void removeCurrent();

    KXAppDelegate &m_delegate;
    KXSelectionController &m_controller;
    ToolTipBinder &m_tips;
    app::FilesLook *m_look;
    InkLabel *m_count;
    BadgeRow *m_badges;
    ElidedLabel *m_text;
    QPushButton *m_removeFile;
    KXDropScrollView *m_table;
    FilesModel *m_model;
    QPushButton *m_join;
    QPushButton *m_split;
    QPushButton *m_remux;
    Ground *m_warning;
    InkLabel *m_warningText;
    InkLabel *m_joinForecast;
    InkLabel *m_splitForecast;
    InkLabel *m_remuxForecast;
    RadioMatrix *m_splitType;
    TimeField *m_start;
    TimeField *m_end;
    TimeField *m_duration;
    IntegerField *m_size;
};

} // namespace window
