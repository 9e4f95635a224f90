#pragma once

#include "window/PresetSheet.h"
#include "window/Theme.h"

#include <QCheckBox>
#include <QComboBox>

class KXPresetSettings;
class KXPresetsController;

namespace window {

class IntegerField;

/// The sheet in which presets of settings are edited: the target, and what becomes of video, audio and
/// subtitles. Every change is in the preset at once; built-in presets are only shown.
class PresetSettingsSheet final : public PresetSheet
{
    Q_OBJECT

public:
    PresetSettingsSheet(KXPresetsController &presets, ToolTipBinder &tips, QWidget *parent);

protected:
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
    /// A control and the preset's property that it shows.
    template <typename Control>
    struct Bound
    {
        Control *control;
        const char *property;
    };

    void addRows();
    void addHead(const QString &iconName, Role ink, const QString &title);
    void addVideoRows();
    void addAudioRows();
    QComboBox *indexPopup(const char *property, const char *word, const QString &name,
                          const QStringList &list);
    QComboBox *textPopup(const char *property, const char *word, const QString &name,
                         const QStringList &list);
    QCheckBox *checkBox(const char *property, const char *word, const QString &title);
    IntegerField *numberField(const char *property, const char *word, const QString &name);
    KXPresetSettings *preset() const;
    QVariant value(const char *property) const;
    void setValue(const char *property, const QVariant &value);
    void showNumbers();
    void showSentence();

    KXPresetsController &m_presets;
    ToolTipBinder &m_tips;
    QComboBox *m_device = nullptr;
    QList<Bound<QComboBox>> m_indexPopups;
    QList<Bound<QComboBox>> m_textPopups;
    QList<Bound<QCheckBox>> m_checkBoxes;
    QList<Bound<IntegerField>> m_numbers;
};

} // namespace window
