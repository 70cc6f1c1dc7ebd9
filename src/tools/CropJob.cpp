#include "CropJob.h"

#include "JobReporter.h"
#include "FfmpegPtr.h"
#include "MediaProbe.h"

#include <cmath>
#include <spdlog/spdlog.h>

namespace {

// Packet time in seconds: pts, else dts, else 0.
double packetSeconds(const AVPacket* packet, AVRational timeBase)
{
    const double unit = av_q2d(timeBase);
    if (packet->pts != AV_NOPTS_VALUE)
        return static_cast<double>(packet->pts) * unit;
    if (packet->dts != AV_NOPTS_VALUE)
        return static_cast<double>(packet->dts) * unit;
    return 0.0;
}

// trunc() of a double into int64, saturating instead of overflowing.
int64_t truncToInt64(double value)
{
    if (!std::isfinite(value))
        return 0;
    if (value >= 9.2e18)
        return INT64_MAX;
    if (value <= -9.2e18)
        return INT64_MIN;
    return static_cast<int64_t>(std::trunc(value));
}

int truncToInt(double value)
{
    if (!std::isfinite(value) || value <= 0.0)
        return 0;
    return value >= 2147483647.0 ? 2147483647 : static_cast<int>(value);
}

} // namespace

CropJob::CropJob(JobReporter& reporter) : m_reporter(reporter) {}

bool CropJob::run(const QString& inputPath, const QString& outputPath, double startTime, double endTime)
{
    spdlog::info("cropVideo: {} -> {}, start: {}s, end: {}s", inputPath.toStdString(),
                 outputPath.toStdString(), startTime, endTime);
    // Written so that NaN fails too. Nothing has been opened yet, so nothing to report but this.
    if (!(startTime >= 0) || !(endTime > startTime)) {
        spdlog::error("Invalid time range: start={}, end={}", startTime, endTime);
        m_reporter.reportFinished(false);
        return false;
    }
    const bool result = copyRange(inputPath, outputPath, startTime, endTime);
    spdlog::info("Video cropping completed: {}", result ? "success" : "failed");
    m_reporter.reportFinished(result);
    return result;
}

bool CropJob::copyRange(const QString& inputPath, const QString& outputPath, double startTime, double endTime)
{
    ff::InputFormatPtr input;
    if (!MediaProbe::openInputFile(inputPath, input))
        return false;
    // An unknown duration clamps the end to 0, so nothing is copied.
    const double duration = MediaProbe::containerSeconds(input.get());
    if (duration < endTime) {
        spdlog::warn("End time {} exceeds video duration {}, adjusting to video duration", endTime, duration);
        endTime = duration;
    }

    ff::OutputFormatPtr output;
    if (!MediaProbe::createOutputContext(output, outputPath))
        return false;
    if (!input || !output) {
        spdlog::error("Invalid format context pointers");
        return false;
    }
    if (!MediaProbe::copyStreamLayout(input.get(), output.get()))
        return false;

    if (!(output->oformat->flags & AVFMT_NOFILE) &&
        avio_open(&output->pb, outputPath.toUtf8().constData(), AVIO_FLAG_WRITE) < 0) {
        spdlog::error("Could not open output file: {}", outputPath.toStdString());
        return false;
    }
    if (avformat_write_header(output.get(), nullptr) < 0) {
        spdlog::error("Error occurred when writing header");
        return false;
    }

    if (av_seek_frame(input.get(), -1, truncToInt64(startTime * 1000000.0), AVSEEK_FLAG_BACKWARD) < 0)
        spdlog::warn("Could not seek to start time");

    // The progress scale assumes 25 frames a second whatever the real rate.
    m_reporter.reportFrameTotal(truncToInt((endTime - startTime) * 25.0));

    ff::PacketPtr packet = ff::makePacket();
    if (!packet)
        return false;
    int videoPackets = 0;
    while (av_read_frame(input.get(), packet.get()) >= 0) {
        if (m_reporter.isCancelled()) {
            spdlog::info("Video crop operation cancelled by user");
            m_reporter.reportCancelled();
            av_packet_unref(packet.get());
            break;
        }
        const int index = packet->stream_index;
        const AVStream* inStream = input->streams[index];
        const double t = packetSeconds(packet.get(), inStream->time_base);
        if (t > endTime) {
            spdlog::info("Reached end time at {}s", t);
            av_packet_unref(packet.get());
            break;
        }
        if (t < startTime) {
            av_packet_unref(packet.get());
            continue;
        }
        // Output streams are addressed by the input index, even after a dropped subtitle
        // stream shifted them. An index past the last output stream is what the muxer would
        // refuse; refuse it here without reading past the array.
        if (index >= static_cast<int>(output->nb_streams)) {
            spdlog::error("Error writing packet");
            av_packet_unref(packet.get());
            break;
        }
        const AVStream* outStream = output->streams[index];

        const int64_t offset = truncToInt64(startTime / av_q2d(inStream->time_base));
        if (packet->pts != AV_NOPTS_VALUE)
            packet->pts -= offset;
        if (packet->dts != AV_NOPTS_VALUE)
            packet->dts -= offset;
        const auto rounding = static_cast<AVRounding>(AV_ROUND_NEAR_INF | AV_ROUND_PASS_MINMAX);
        packet->pts = av_rescale_q_rnd(packet->pts, inStream->time_base, outStream->time_base, rounding);
        packet->dts = av_rescale_q_rnd(packet->dts, inStream->time_base, outStream->time_base, rounding);
        packet->duration = av_rescale_q(packet->duration, inStream->time_base, outStream->time_base);
        packet->pos = -1;
        const bool isVideo = inStream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO;
        if (av_interleaved_write_frame(output.get(), packet.get()) < 0) {
            spdlog::error("Error writing packet");
            av_packet_unref(packet.get());
            break;
        }
        if (isVideo && ++videoPackets % 10 == 0)
            m_reporter.reportProgress(videoPackets);
        av_packet_unref(packet.get());
    }

    // A cancelled or interrupted copy still counts when the file can be closed properly: the
    // partial file is kept and playable.
    if (av_write_trailer(output.get()) < 0) {
        spdlog::error("Error writing trailer");
        return false;
    }
    return true;
}
