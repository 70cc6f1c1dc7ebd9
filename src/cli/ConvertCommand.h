#pragma once

#include "CliCommand.h"

#include <QVariantMap>

// vidora-cli convert IN OUT [--codec ...] [--width W] [--height H] [--fps N] [--bitrate KBPS]
// [--audio-codec ...] [--audio-bitrate KBPS]: another container and, where asked, other
// codecs, size, frame rate or bit rates. The options become the same settings map that the
// convert page hands to the service, so the same map-to-request conversion runs.
class ConvertCommand : public CliCommand
{
public:
    ConvertCommand();
    void configure(QCommandLineParser& parser) const override;
    int run(const QCommandLineParser& parser, const QStringList& arguments,
            CliContext& context) const override;

    // The settings map for the parsed options; false with `error` set for a value that is
    // not allowed. Options left out give 0 ("as the source" or "copy").
    static bool buildSettings(const QCommandLineParser& parser, QVariantMap* settings, QString* error);
};
