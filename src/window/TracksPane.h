#pragma once

#include "window/Controls.h"

#include <QComboBox>
#include <QStackedWidget>

class KXAppDelegate;
class KXDropScrollView;
class KXSelectionController;

namespace window {

class EditTracksPane;
class Segments;
class ToolTipBinder;
class TrackModel;

/// The tracks of the film: which are ticked, what they are, what comes out, and below them their editing
/// without a conversion. In a narrow window it takes turns with the settings.
class TracksPane final : public QWidget
{
    Q_OBJECT

public:
    TracksPane(KXAppDelegate &delegate, ToolTipBinder &tips, QWidget *parent = nullptr);

    void refresh();
    void refreshTracks();
    /// Shows what it shows while other films are looked at.
    void setHeld(bool held) { m_isHeld = held; }
    void focusTable();
    /// The settings share its place; null takes them away again.
    void setPage(QWidget *settings);
    void setShape(bool allColumns, bool shortWords, bool compact);
    KXDropScrollView *table() const { return m_table; }

Q_SIGNALS:
    void presetsSheetWanted();

private:
    struct Toggle
    {
        QPushButton *button;
        QString word;
        QString accessibleName;
        int kind;
    };

    QWidget *bar();
    QPushButton *toggle(const QString &word, const QString &iconName, const char *name, const char *tip,
                        const QString &accessibleName, int kind, void (KXSelectionController::*action)());
    void setUpTable();
    void refreshToggles();
    void refreshPresets();

    KXAppDelegate &m_delegate;
    ToolTipBinder &m_tips;
    QList<Toggle> m_toggles;
    Segments *m_switch;
    QComboBox *m_presets;
    QPushButton *m_editPresets;
    QLabel *m_presetLabel = nullptr;
    QLabel *m_head = nullptr;
    QStackedWidget *m_pages;
    KXDropScrollView *m_table;
    TrackModel *m_model;
    EditTracksPane *m_edit;
    bool m_shortWords = false;
    bool m_isHeld = false;
};

} // namespace window
