#pragma once

#include "JobReporter.h"
#include "VideoInfo.h"

#include <QObject>
#include <QString>
#include <QUrl>
#include <QVariantList>
#include <QVariantMap>
#include <atomic>
#include <cstdint>
#include <memory>

class PictureRecycler;

// The QML service through which the tool windows query media files and run the four video
// tools. Lives on the GUI thread; the *Async invokables hand the job to the ThreadPool and
// return at once. Jobs emit the four signals from their pool thread (queued to receivers)
// and read the one shared cancel flag, which is the only state shared with them; frame grabs
// share the decoders' picture memory, which keeps its own lock.
class CommonTool : public QObject, public JobReporter
{
    Q_OBJECT
public:
    explicit CommonTool(QObject* parent = nullptr);
    ~CommonTool() override;

    static CommonTool* instance();

    // The jobs' view of this service: the cancel flag and the four signals.
    bool isCancelled() const override { return m_cancel.load(); }
    void reportFrameTotal(int total) override { emit videoCompressionFrameTotal(total); }
    void reportProgress(int progress) override { emit videoCompressionProgress(progress); }
    void reportCancelled() override { emit videoCompressionCancelled(); }
    void reportFinished(bool success) override { emit videoCompressionFinished(success); }

signals:
    void videoCompressionProgress(int progress);
    void videoCompressionFrameTotal(int total);
    void videoCompressionFinished(bool success);
    void videoCompressionCancelled();

public:
    Q_INVOKABLE void cancelVideoOperation();
    Q_INVOKABLE void resetCancelState();
    Q_INVOKABLE QString formatTime(double ftime);

    // One frame at or before `seconds`, as packed I420 (Y, then U, then V; chroma planes
    // ceil(w/2) x ceil(h/2)). *buffer is owned by the caller and released with av_free.
    // On failure *buffer is null and width/height are 0. Any thread.
    Q_INVOKABLE void getVideoThumbnail(const QString& filePath, double seconds, uint8_t** buffer, int* width,
                                       int* height);

    Q_INVOKABLE void convertVideoFormatAsync(const QString& inputPath, const QString& outputPath,
                                             const QVariantMap& videoInfoMap);
    Q_INVOKABLE bool convertVideoFormat(const QString& inputPath, const QString& outputPath,
                                        const VideoInfo& videoInfo);
    Q_INVOKABLE void compressVideoAsync(const QString& inputPath, const QString& outputPath,
                                        int compressionLevel = 0);
    Q_INVOKABLE bool compressVideo(const QString& inputPath, const QString& outputPath, int compressionLevel = 0);
    Q_INVOKABLE double getVideoDurationFromUrl(const QUrl& url);
    Q_INVOKABLE double getVideoDuration(const QString& filePath);
    Q_INVOKABLE QVariantMap getVideoInfo(const QString& filePath);
    Q_INVOKABLE QVariantMap getVideoInfoFromUrl(const QUrl& url);
    Q_INVOKABLE bool cropVideo(const QString& inputPath, const QString& outputPath, double startTime,
                               double endTime);
    Q_INVOKABLE void cropVideoAsync(const QString& inputPath, const QString& outputPath, double startTime,
                                    double endTime);
    Q_INVOKABLE bool mergeVideoAsync(const QVariantList& inputPaths, const QString& outputPath);
    Q_INVOKABLE bool mergeVideos(const QVariantList& inputPaths, const QString& outputPath);

private:
    std::atomic<bool> m_cancel{false};
    // Held by pointer so the media library's headers stay out of every user of this service.
    std::unique_ptr<PictureRecycler> m_grabPictures;
};
