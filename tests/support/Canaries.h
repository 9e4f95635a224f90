#pragma once

#include <QString>
#include <QStringList>

namespace support {

/// A folder that no run has any business with: a text, a picture, a subtitle and a film lie in it. Once
/// armed, it tells whatever touches them or the folder, also what merely opens one for reading.
class Canaries final
{
public:
    explicit Canaries(const QString &folder);
    ~Canaries();
    Q_DISABLE_COPY_MOVE(Canaries)

    QString text() const { return m_folder + QStringLiteral("/canary.txt"); }
    QString picture() const { return m_folder + QStringLiteral("/canary.png"); }
    QString subtitle() const { return m_folder + QStringLiteral("/canary.srt"); }
    QString film() const { return m_folder + QStringLiteral("/canary.ts"); }
    QString folder() const { return m_folder; }
    /// Nothing is there; what writes to it is seen.
    QString target() const { return m_folder + QStringLiteral("/written"); }

    /// From here on everything counts.
    void arm();
    /// What happened since, "opened canary.txt", without repetitions; forgotten with the asking.
    QStringList seen();

private:
    QString m_folder;
    int m_descriptor = -1;
};

} // namespace support
