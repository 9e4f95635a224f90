#pragma once

#include <QString>

namespace cli {

class Command;

QString generalHelp();
/// The lines that are needed most.
QString shortHelp();
QString helpFor(const Command &command);
QString versionText();

} // namespace cli
