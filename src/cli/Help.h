#pragma once

#include <QString>

namespace cli {

class Command;

QString generalHelp();
QString helpFor(const Command &command);
QString versionText();

} // namespace cli
