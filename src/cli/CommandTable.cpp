#include "CommandTable.h"

#include "ClipCommand.h"
#include "MergeCommand.h"
#include "ProbeCommand.h"
#include "ThumbnailCommand.h"

std::vector<std::unique_ptr<CliCommand>> allCommands()
{
    std::vector<std::unique_ptr<CliCommand>> commands;
    commands.push_back(std::make_unique<ProbeCommand>());
    commands.push_back(std::make_unique<ClipCommand>());
    commands.push_back(std::make_unique<MergeCommand>());
    commands.push_back(std::make_unique<ThumbnailCommand>());
    return commands;
}
