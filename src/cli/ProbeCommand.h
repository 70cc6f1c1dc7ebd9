#pragma once

#include "CliCommand.h"

// vidora-cli probe FILE: the file's video info and duration as one line of JSON.
class ProbeCommand : public CliCommand
{
public:
    ProbeCommand();
    void configure(QCommandLineParser& parser) const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments,
            CliContext& context) const override;
};
