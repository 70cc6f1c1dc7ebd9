#pragma once

#include "CliCommand.h"

// vidora-cli merge OUT IN1 [IN2 ...]: files joined end to end without re-encoding.
class MergeCommand : public CliCommand
{
public:
    MergeCommand();
    void configure(QCommandLineParser& parser) const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments,
            CliContext& context) const override;
};
