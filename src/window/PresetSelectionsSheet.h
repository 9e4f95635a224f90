#pragma once

#include "window/PresetSheet.h"

#include <QComboBox>

class KXPresetSelections;
class KXPresetsController;

namespace window {

class FilterBox;
class FilterPanel;

/// The sheet in which presets that tick tracks are edited: the video rule, and up to three filters for audio
/// and three for subtitles, each edited in the panel beside its button.
class PresetSelectionsSheet final : public PresetSheet
{
    Q_OBJECT

public:
    PresetSelectionsSheet(KXPresetsController &presets, ToolTipBinder &tips, QWidget *parent);
    ~PresetSelectionsSheet() override;

protected:
    void changeEvent(QEvent *event) override;

    QList<PresetTable::Row> rows() const override;
    int row() const override;
    void choose(int row) override;
    void add() override;
    void remove() override;
    QString rename(int row, const QString &name) override;
    QString store() override;
    void undo() override;
    void showPreset(bool isEditable) override;

private:
    QWidget *makeFilters();
    KXPresetSelections *preset() const;
    void connectFields();
    void showWhatItTakes();

    KXPresetsController &m_presets;
    QComboBox *m_video;
    FilterPanel *m_audioPanel;
    FilterPanel *m_subtitlePanel;
    FilterBox *m_audio;
    FilterBox *m_subtitles;
};

} // namespace window
