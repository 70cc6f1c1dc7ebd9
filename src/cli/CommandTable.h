#pragma once

#include "CliCommand.h"

#include <memory>
#include <vector>

// Every command of vidora-cli, in the order the help lists them. A new command is one class
// derived from CliCommand and one row in CommandTable.cpp.
std::vector<std::unique_ptr<CliCommand>> allCommands();
