#pragma once

#include "platform/Chooser.h"

namespace support {

/// A person who is asked for files: what was asked for is kept, and answered when a test says so.
class ScriptedChooser final : public platform::Chooser
{
public:
    void choose(const platform::ChooserRequest &request, Chosen chosen) override
    {
        m_asked.append(request);
        m_open = std::move(chosen);
    }

    /// Chooses in the panel that was opened last.
    void answer(const QStringList &paths)
    {
        QList<QUrl> files;
        for (const QString &path : paths)
            files.append(QUrl::fromLocalFile(path));
        if (m_open)
            m_open(files);
    }
    const QList<platform::ChooserRequest> &asked() const { return m_asked; }

private:
    QList<platform::ChooserRequest> m_asked;
    Chosen m_open;
};

} // namespace support
