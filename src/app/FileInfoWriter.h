#pragma once

#include "tools/KXHelpers.h"

class KXPreferences;

namespace app {

/// Writes what ffprobe knows about files into text files, for a person to read. Owned by the program.
class FileInfoWriter final : public KXHelpers
{
    Q_OBJECT

public:
    /// The preferences must outlive the writer.
    explicit FileInfoWriter(const KXPreferences &preferences);

    /// One "NAME.info.txt" for each file, in the save folder or beside the file; an old one is replaced.
    /// Answers a null text, or a sentence that names what could not be written.
    QString write(const QList<QUrl> &files) const;
    QUrl infoFileFor(const QUrl &file) const;

private:
    const KXPreferences &m_preferences;
};

} // namespace app
