#pragma once

#include <QList>
#include <QVariantMap>

#include <memory>

namespace presets {

/// A list of presets as it was when its sheet was opened, with what each of the user's held, and which one
/// was chosen. A value; the presets' controller keeps one for each sheet until that is closed.
template <typename Preset>
class SheetSnapshot final
{
public:
    using List = QList<std::shared_ptr<Preset>>;

    SheetSnapshot(const List &presets, int methodIndex)
        : m_presets(presets)
        , m_methodIndex(methodIndex)
    {
        for (const auto &preset : presets)
            m_records.append(preset->makeRecord());
    }

    /// The list as it was; what was changed in a preset is undone.
    List restored() const
    {
        for (qsizetype i = 0; i < m_presets.size(); ++i) {
            if (m_presets.at(i)->isEditable())
                m_presets.at(i)->initFromRecord(m_records.at(i));
        }
        return m_presets;
    }
    int methodIndex() const { return m_methodIndex; }

private:
    List m_presets;
    QList<QVariantMap> m_records;
    int m_methodIndex;
};

} // namespace presets
