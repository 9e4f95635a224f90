#pragma once

#include <QString>
#include <QStringList>

namespace step {

/// What a tool printed, cut into its own lines. Indented lines are left out: they repeat titles and
/// other texts of the file, which never count.
class ToolLog final
{
public:
    explicit ToolLog(const QString &text);

    bool hasLineStartingWith(const QString &start) const;
    bool hasLineContaining(const QString &part) const;
    /// The first line that contains one of the parts; null when there is none.
    QString firstLineContaining(const QStringList &parts) const;
    /// A line that tells why the tool ended: the last one that says more than that it failed.
    QString lastMessage() const;

private:
    QStringList m_lines;
};

} // namespace step
