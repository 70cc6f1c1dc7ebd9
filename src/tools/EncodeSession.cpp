#include "EncodeSession.h"

#include "EncodeSteps.h"
#include "MediaProbe.h"

bool EncodeSession::open(const QString& inputPath, const QString& outputPath, bool skipCoverArt)
{
    return MediaProbe::openInputFile(inputPath, input) &&
           EncodeSteps::findStreams(input.get(), skipCoverArt, &videoIndex, &audioIndex) &&
           MediaProbe::createOutputContext(output, outputPath);
}
