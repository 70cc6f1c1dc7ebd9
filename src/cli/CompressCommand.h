#pragma once

#include "CliCommand.h"

// vidora-cli compress IN OUT [--level 0|1|2]: the video re-encoded with its own codec at a
// lower bit rate, the audio carried over.
class CompressCommand : public CliCommand
{
public:
    CompressCommand();
    void configure(QCommandLineParser& parser) const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments,
            CliContext& context) const override;
};
