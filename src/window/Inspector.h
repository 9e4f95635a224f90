#pragma once

#include "window/Controls.h"

#include <QComboBox>
#include <QScrollArea>

class KXAppDelegate;

namespace window {

class AudioBox;
class SubtitleBox;
class ToolTipBinder;
class VideoBox;

/// Everything about the conversion: the preset, the target, and what becomes of picture, sound and subtitles.
/// It scrolls before anything in it is cut.
class Inspector final : public QScrollArea
{
    Q_OBJECT

public:
    Inspector(KXAppDelegate &delegate, ToolTipBinder &tips, QWidget *parent = nullptr);

    void refresh();

Q_SIGNALS:
    void presetsSheetWanted();
    /// The button with that title was pressed.
    void startWanted(const QString &title);

private:
    QWidget *head();
    void refreshPresets();
    QString sendingRefusal() const;

    KXAppDelegate &m_delegate;
    QComboBox *m_presets;
    QPushButton *m_editPresets;
    QComboBox *m_device;
    Ground *m_note;
    QLabel *m_noteText;
    QLabel *m_reach;
    VideoBox *m_video;
    AudioBox *m_audio;
    SubtitleBox *m_subtitles;
};

} // namespace window
