#pragma once

#include "platform/HolderFile.h"

#include <QString>
#include <QUrl>

#include <memory>
#include <unordered_map>

namespace steps {

/// The final names that a job holds against other programs, also on other machines that share the folder: a
/// hidden file beside each, made exclusively, that says who holds it. A claim of this host whose process is
/// gone is taken over. Owned by the job's OutputGuard; main thread only.
class OutputClaims final
{
public:
    using Answer = platform::HolderFile::Answer;

    /// Held also where this job holds it already; Impossible where the folder takes no file.
    Answer take(const QUrl &name);
    bool has(const QUrl &name) const;
    /// Whether the claim is still the one that was made: somebody may have cleared it away.
    bool isStillHeld(const QUrl &name) const;
    void release(const QUrl &name);
    void releaseAll();

    /// Where the claim of a name lies. Names that differ in case or in the form of their accents share one,
    /// as there are volumes where they are one file.
    static QUrl claimOf(const QUrl &name);
    /// Whether that is the name of a claim.
    static bool isName(const QString &name);

private:
    std::unordered_map<QString, std::unique_ptr<platform::HolderFile>> m_claims; ///< by path of the claim
};

} // namespace steps
