#include "CommonTool.h"

#include "CompressJob.h"
#include "ConvertJob.h"
#include "CropJob.h"
#include "FrameGrabber.h"
#include "MediaProbe.h"
#include "MergeJob.h"
#include "PictureRecycler.h"
#include "ProcessWide.h"
#include "ThreadPool.h"

#include <QCoreApplication>
#include <QThread>
#include <algorithm>
#include <cmath>

CommonTool::CommonTool(QObject* parent) : QObject(parent), m_grabPictures(std::make_unique<PictureRecycler>()) {}

CommonTool::~CommonTool() = default;

CommonTool* CommonTool::instance()
{
    return &processWide<CommonTool>();
}

void CommonTool::cancelVideoOperation()
{
    m_cancel.exchange(true);
}

void CommonTool::resetCancelState()
{
    m_cancel.exchange(false);
}

QString CommonTool::formatTime(double ftime)
{
    // Labels are bound to durations that libmpv may report as NaN or infinite before a file
    // is known; casting those (or anything beyond 64 bits) to an integer is undefined, so
    // they show as 00:00:00 and huge values saturate.
    qint64 s = 0;
    if (std::isfinite(ftime))
        s = static_cast<qint64>(std::clamp(ftime, -9.2e18, 9.2e18));
    const qint64 hours = s / 3600;
    const qint64 minutes = (s - hours * 3600) / 60;
    const qint64 seconds = s - (s / 60) * 60;
    return QStringLiteral("%1:%2:%3")
        .arg(hours, 2, 10, QLatin1Char('0'))
        .arg(minutes, 2, 10, QLatin1Char('0'))
        .arg(seconds, 2, 10, QLatin1Char('0'));
}

void CommonTool::getVideoThumbnail(const QString& filePath, double seconds, uint8_t** buffer, int* width,
                                   int* height)
{
    FrameGrabber::grab(filePath, seconds, buffer, width, height, m_grabPictures.get());
}

void CommonTool::convertVideoFormatAsync(const QString& inputPath, const QString& outputPath,
                                         const QVariantMap& videoInfoMap)
{
    m_cancel.exchange(false);
    const VideoInfo info = VideoInfo::fromConvertMap(videoInfoMap);
    ThreadPool::instance().submit(
        [this, inputPath, outputPath, info]() { convertVideoFormat(inputPath, outputPath, info); });
}

bool CommonTool::convertVideoFormat(const QString& inputPath, const QString& outputPath,
                                    const VideoInfo& videoInfo)
{
    return ConvertJob(*this).run(inputPath, outputPath, videoInfo);
}

void CommonTool::compressVideoAsync(const QString& inputPath, const QString& outputPath, int compressionLevel)
{
    m_cancel.exchange(false);
    ThreadPool::instance().submit([this, inputPath, outputPath, compressionLevel]() {
        compressVideo(inputPath, outputPath, compressionLevel);
    });
}

bool CommonTool::compressVideo(const QString& inputPath, const QString& outputPath, int compressionLevel)
{
    return CompressJob(*this).run(inputPath, outputPath, compressionLevel);
}

double CommonTool::getVideoDurationFromUrl(const QUrl& url)
{
    return getVideoDuration(url.toString(QUrl::PreferLocalFile));
}

double CommonTool::getVideoDuration(const QString& filePath)
{
    return MediaProbe::videoDuration(filePath);
}

QVariantMap CommonTool::getVideoInfo(const QString& filePath)
{
    bool ok = false;
    const VideoInfo info = MediaProbe::videoInfo(filePath, &ok);
    return ok ? info.toMap() : QVariantMap();
}

QVariantMap CommonTool::getVideoInfoFromUrl(const QUrl& url)
{
    return getVideoInfo(url.toString(QUrl::PreferLocalFile));
}

bool CommonTool::cropVideo(const QString& inputPath, const QString& outputPath, double startTime,
                           double endTime)
{
    return CropJob(*this).run(inputPath, outputPath, startTime, endTime);
}

void CommonTool::cropVideoAsync(const QString& inputPath, const QString& outputPath, double startTime,
                                double endTime)
{
    m_cancel.exchange(false);
    ThreadPool::instance().submit([this, inputPath, outputPath, startTime, endTime]() {
        cropVideo(inputPath, outputPath, startTime, endTime);
    });
}

bool CommonTool::mergeVideoAsync(const QVariantList& inputPaths, const QString& outputPath)
{
    // Leaves the cancel flag as it is: a cancel asked before the merge began stops it at its
    // first check. A caller that wants a fresh start calls resetCancelState first.
    ThreadPool::instance().submit([this, inputPaths, outputPath]() { mergeVideos(inputPaths, outputPath); });
    return true;
}

bool CommonTool::mergeVideos(const QVariantList& inputPaths, const QString& outputPath)
{
    return MergeJob(*this).run(inputPaths, outputPath);
}
