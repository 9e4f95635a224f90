#pragma once

#include "tools/ShellLine.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <optional>
#include <utility>

namespace steps {

/// What somebody who pastes a planned command has to run before it; a job does that itself.
struct Preparation
{
    QStringList words;
    QUrl into; ///< takes what it prints; empty for a command that prints nothing
};

/// One tool run of a step, as a value: what a job plans, and what is started.
struct Launch
{
    QString stepName;
    int pass = 0; ///< 0: the only one
    QUrl tool;
    QUrl output;
    QUrl log;
    tools::OptionList meant;                        ///< the list as its rules have it
    tools::OptionList launched;                     ///< its launch form
    QList<Preparation> before;                      ///< of a plan
    tools::OptionList started;                      ///< the same in the work folder; empty in a plan
    QList<std::pair<QString, QString>> environment; ///< what is added to ours; a line exports it itself
    std::optional<tools::ShellLine> line;           ///< of a step that its rules describe as a shell line
};

} // namespace steps
