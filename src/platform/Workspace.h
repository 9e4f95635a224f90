#pragma once

#include <QUrl>

namespace platform {

/// Other applications of the desktop. Owned by the program; what it starts runs on by itself.
class Workspace
{
public:
    virtual ~Workspace() = default;
    /// Starts the application at that location; false when that failed.
    virtual bool launch(const QUrl &application);
    /// Opens a document with it; false when that failed.
    virtual bool open(const QUrl &document, const QUrl &application);
};

} // namespace platform
