#pragma once

#include "platform/AlertPresenter.h"

#include <QUrl>

namespace platform {
class Workspace;
}

namespace engines {

/// Opens a subtitle and then its film with the subtitle application at that path. Answers the warning to
/// show; null when all went well.
platform::AlertPointer handOver(platform::Workspace &workspace, const QString &applicationPath,
                                const QUrl &subtitle, const QUrl &film);

} // namespace engines
