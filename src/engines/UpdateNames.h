#pragma once

#include <QString>

/// The announcements that steps make while their tool runs and that jobs observe, by name.
namespace engines::updates {

inline const QString conversion = QStringLiteral("monitorConversionUpdate");
inline const QString extraction = QStringLiteral("monitorExtractionUpdate");
inline const QString splitting = QStringLiteral("monitorSplitUpdate");
inline const QString joining = QStringLiteral("monitorJoinUpdate");
inline const QString sending = QStringLiteral("monitorSendToLintwickUpdate");

} // namespace engines::updates
