#pragma once

#include <QVariantMap>
#include <cstdint>

// What the tools know about a media file. All zero when a value is not found.
struct VideoInfo
{
    int32_t codecId = 0;  // libavcodec id of the chosen video stream
    int32_t width = 0;    // coded size, pixels
    int32_t height = 0;
    int64_t bitrate = 0;  // bit/s
    int32_t fps = 0;      // rounded to a whole number
    int32_t audioCodecId = 0;
    int64_t audioBitrate = 0; // bit/s

    // The QML map, keys in the order "codecId", "width", "height", "bitrate", "fps",
    // "audioCodecId", "audioBitrate"; bit rates in bit/s.
    QVariantMap toMap() const;

    // The convert page's map back into a request. Deliberately not the inverse of toMap:
    // the page fills "bitrate" and "audioBitrate" in kbit/s, so both are multiplied by 1000.
    // A missing key gives 0.
    static VideoInfo fromConvertMap(const QVariantMap& map);
};
