#pragma once

#include <QString>
#include <QStringList>

namespace steps {

/// What a tool printed, cut into its own lines. Indented lines and those that name ffmpeg's inputs and
/// outputs are left out: they repeat titles, names and other texts of the file, which never count.
class ToolLog final
{
public:
    explicit ToolLog(const QString &text);

    const QStringList &lines() const & { return m_lines; }
    const QStringList &lines() const && = delete;
    bool hasLineStartingWith(const QString &start) const;
    bool hasLineContaining(const QString &part) const;
    /// The first line that starts so; null when there is none.
    QString firstLineStartingWith(const QString &start) const;
    /// The last line in which ffmpeg reports how far it is; null when there is none.
    QString lastStatusLine() const;
    /// The first line that contains one of the parts; null when there is none.
    QString firstLineContaining(const QStringList &parts) const;
    /// A line that tells why the tool ended: the last one that says more than that it failed.
    QString lastMessage() const;

private:
    QStringList m_lines;
};

} // namespace steps
