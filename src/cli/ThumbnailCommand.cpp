#include "ThumbnailCommand.h"

#include "CommonTool.h"
#include "FfmpegPtr.h"
#include "YuvToRgb.h"

#include <QImage>
#include <spdlog/spdlog.h>

ThumbnailCommand::ThumbnailCommand()
    : CliCommand(QStringLiteral("thumbnail"), QStringLiteral("Save the frame at a time as a PNG image"))
{
}

void ThumbnailCommand::configure(QCommandLineParser& parser) const
{
    parser.setApplicationDescription(
        QStringLiteral("Decodes the first picture from the key frame at or before SECONDS and writes it\n"
                       "as a PNG at the video's own size. Cover art counts as a picture."));
    parser.addPositionalArgument(QStringLiteral("IN"), QStringLiteral("Media file."));
    parser.addPositionalArgument(QStringLiteral("SECONDS"),
                                 QStringLiteral("Time of the frame (decimals allowed)."));
    parser.addPositionalArgument(QStringLiteral("OUT"), QStringLiteral("PNG file to write."),
                                 QStringLiteral("OUT.png"));
}

int ThumbnailCommand::run(const QCommandLineParser& parser, const QStringList& arguments,
                          CliContext& context) const
{
    if (arguments.size() != 3)
        return usageError(parser, QStringLiteral("thumbnail takes IN, SECONDS and OUT.png"));
    double seconds = 0;
    if (!parseSeconds(arguments.at(1), &seconds))
        return usageError(parser,
                          QStringLiteral("SECONDS is not a number of seconds: %1").arg(arguments.at(1)));
    const QString in = arguments.at(0);
    const QString out = arguments.at(2);

    uint8_t* raw = nullptr;
    int width = 0;
    int height = 0;
    context.tool.getVideoThumbnail(in, seconds, &raw, &width, &height);
    const ff::AvBufferPtr frame(raw);
    if (!frame) {
        spdlog::error("No picture could be read from {} at {}s", in.toStdString(), seconds);
        return CliExit::Failure;
    }
    const QImage image = yuv420ToImage(frame.get(), width, height);
    // Qt maps quality 85 to zlib level 1: about twice as fast as the default level for a
    // file some 15% larger, the size the ffmpeg tool writes.
    constexpr int kFastPngQuality = 85;
    if (image.isNull() || !image.save(out, "PNG", kFastPngQuality)) {
        spdlog::error("Could not write image: {}", out.toStdString());
        return CliExit::Failure;
    }
    spdlog::info("Thumbnail written: {} ({}x{})", out.toStdString(), width, height);
    return CliExit::Success;
}
