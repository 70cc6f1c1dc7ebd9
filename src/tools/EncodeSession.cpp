#include "EncodeSession.h"

#include "EncodeSteps.h"
#include "MediaProbe.h"

bool EncodeSession::open(const QString& inputPath, const QString& outputPath, bool skipCoverArt)
{
    if (!MediaProbe::openInputFile(inputPath, input) ||
        !EncodeSteps::findStreams(input.get(), skipCoverArt, &videoIndex, &audioIndex))
        return false;
    shown = DisplayOrientation::ofStream(input->streams[videoIndex]);
    return MediaProbe::createOutputContext(output, outputPath);
}
