#pragma once

#include <QHash>
#include <QStringList>

namespace support {

/// Reads the includes of every file below a source folder and says which of them break the lane
/// rules: knowledge flows down the list of modules, only the window knows more of Qt than Core,
/// files don't include each other in a circle, and a module links only what stands below it.
class LayerCheck final
{
public:
    explicit LayerCheck(const QString &sourceFolder);
    /// One sentence for each offence, each beginning with the file; empty when all is well.
    QStringList offences() const { return m_offences; }
    qsizetype fileCount() const { return m_includes.size(); }

private:
    void readFile(const QString &file);
    void judge(const QString &file, const QString &include, bool quoted);
    void judgeQt(const QString &file, const QString &include);
    void judgeLinks(const QString &file);
    void findCircles(const QString &file, QStringList &road);

    QString m_folder;
    QString m_qtHeaders;
    QHash<QString, QStringList> m_includes; ///< our own files, by file
    QStringList m_cleared;                  ///< files from which no circle can be reached
    QStringList m_offences;
};

} // namespace support
