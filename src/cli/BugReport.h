#pragma once

#include "prefs/ToolCheck.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace cli {

/// A log that one of our jobs left.
struct KeptLog
{
    QString path;      ///< null: there is none
    QStringList lines; ///< its first ones and its last ones, which hold the receipt, where it is long
};

/// The newest of our logs in these folders themselves.
KeptLog newestLog(const QStringList &folders);

/// The text with the home folder as "~", so that it can be shown to others.
QString withoutHome(const QString &text);

/// What a report of a bug needs: versions, the system, the tools, and the last log with its receipt.
QStringList bugReport(const QList<prefs::ToolReport> &tools, const KeptLog &log);

} // namespace cli
