#pragma once

#include <QList>
#include <QString>
#include <QUrl>

#include <functional>

namespace platform {

/// What is asked for, and from where the search starts.
struct ChooserRequest
{
    enum class What { Files, OneFile, Folder, Application };

    QString title;
    What what = What::OneFile;
    QString startPath; ///< empty: wherever the desktop starts
};

/// Asks the user for files or a folder. Owned by the program; the answer comes later, it is not waited for.
class Chooser
{
public:
    using Chosen = std::function<void(const QList<QUrl> &)>;

    virtual ~Chooser() = default;
    /// Calls chosen once when something was chosen, and never when the person changed their mind.
    virtual void choose(const ChooserRequest &request, Chosen chosen) = 0;
};

} // namespace platform
