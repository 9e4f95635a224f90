#pragma once

#include <QTemporaryDir>
#include <QUrl>

namespace support {

/// A folder of one test, gone with it. Paths in it never hold a blank unless the test asks for one.
class Scratch final
{
public:
    Scratch();
    QString path(const QString &name = {}) const;
    QUrl url(const QString &name) const { return QUrl::fromLocalFile(path(name)); }
    /// Writes a file (folders are made) and answers its path.
    QString write(const QString &name, const QByteArray &content) const;
    QByteArray read(const QString &name) const;
    QStringList names() const;
    /// The same without work folders and claims of jobs.
    QStringList shownNames() const;

private:
    QTemporaryDir m_folder;
};

/// What jobs are writing in a folder for results, by a pattern of its plain name ("*.m4v").
QStringList filesAtWork(const QString &folder, const QString &pattern);

} // namespace support
