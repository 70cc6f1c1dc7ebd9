#include "VideoInfo.h"

QVariantMap VideoInfo::toMap() const
{
    QVariantMap map;
    map.insert(QStringLiteral("codecId"), codecId);
    map.insert(QStringLiteral("width"), width);
    map.insert(QStringLiteral("height"), height);
    map.insert(QStringLiteral("bitrate"), static_cast<qlonglong>(bitrate));
    map.insert(QStringLiteral("fps"), fps);
    map.insert(QStringLiteral("audioCodecId"), audioCodecId);
    map.insert(QStringLiteral("audioBitrate"), static_cast<qlonglong>(audioBitrate));
    return map;
}

VideoInfo VideoInfo::fromConvertMap(const QVariantMap& map)
{
    VideoInfo info;
    info.codecId = map.value(QStringLiteral("codecId")).toInt();
    info.width = map.value(QStringLiteral("width")).toInt();
    info.height = map.value(QStringLiteral("height")).toInt();
    info.bitrate = map.value(QStringLiteral("bitrate")).toLongLong() * 1000;
    info.fps = map.value(QStringLiteral("fps")).toInt();
    info.audioCodecId = map.value(QStringLiteral("audioCodecId")).toInt();
    info.audioBitrate = map.value(QStringLiteral("audioBitrate")).toLongLong() * 1000;
    return info;
}
