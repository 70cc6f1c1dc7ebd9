#pragma once

#include "CliCommand.h"

// vidora-cli clip IN OUT --start SECONDS --end SECONDS: a time range copied without
// re-encoding.
class ClipCommand : public CliCommand
{
public:
    ClipCommand();
    void configure(QCommandLineParser& parser) const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments,
            CliContext& context) const override;
};
