#pragma once

#include "CliCommand.h"

// vidora-cli thumbnail IN SECONDS OUT.png: one frame, as the thumbnail lists grab it, saved as
// a PNG after the same limited-range colour conversion.
class ThumbnailCommand : public CliCommand
{
public:
    ThumbnailCommand();
    void configure(QCommandLineParser& parser) const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments,
            CliContext& context) const override;
};
