#include "MergeJob.h"

#include "DisplayOrientation.h"
#include "FfmpegPtr.h"
#include "JobReporter.h"
#include "MediaOpen.h"
#include "MediaProbe.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>
#include <climits>
#include <cmath>
#include <spdlog/spdlog.h>
#include <vector>

namespace {

using DictPtr = std::unique_ptr<AVDictionary, ff::DictDeleter>;

// What the list writer needs to know of one input.
struct InputSummary
{
    bool readable = false;
    double seconds = -1.0; // as the container reports them; -1 when unknown
    DisplayOrientation orientation; // of its first real video stream
};

InputSummary summarize(const QString& path)
{
    InputSummary summary;
    const ff::InputFormatPtr input = ff::openInput(path);
    if (!input)
        return summary;
    summary.readable = true;
    summary.seconds = MediaProbe::containerSeconds(input.get());
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        const AVStream* stream = input->streams[i];
        if (stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO &&
            !(stream->disposition & AV_DISPOSITION_ATTACHED_PIC)) {
            summary.orientation = DisplayOrientation::ofStream(stream);
            break;
        }
    }
    return summary;
}

} // namespace

MergeJob::MergeJob(JobReporter& reporter) : m_reporter(reporter) {}

QString MergeJob::listFilePath()
{
    return QDir::tempPath() + QStringLiteral("/merge_list.txt");
}

bool MergeJob::run(const QVariantList& inputPaths, const QString& outputPath)
{
    spdlog::info("mergeVideos: {} input files -> {}", inputPaths.size(), outputPath.toStdString());
    if (inputPaths.isEmpty()) {
        spdlog::error("No input files provided");
        m_reporter.reportFinished(false);
        return false;
    }

    const QString listPath = listFilePath();
    qint64 total = 0;
    if (!writeList(inputPaths, listPath, total)) {
        m_reporter.reportFinished(false);
        return false;
    }
    m_reporter.reportFrameTotal(static_cast<int>(std::min<qint64>(total, INT_MAX)));

    AVDictionary* rawOptions = nullptr;
    av_dict_set(&rawOptions, "f", "concat", 0);
    av_dict_set(&rawOptions, "safe", "0", 0);         // absolute paths are allowed
    av_dict_set(&rawOptions, "auto_convert", "0", 0); // packets pass through unchanged
    DictPtr options(rawOptions);

    ff::OutputFormatPtr output;
    if (!MediaProbe::createOutputContext(output, outputPath)) {
        QFile::remove(listPath);
        m_reporter.reportFinished(false);
        return false;
    }

    bool outputCreated = false;
    rawOptions = options.release();
    bool result = concatenate(listPath, &rawOptions, output.get(), outputPath, outputCreated);
    options.reset(rawOptions);

    output.reset();
    // A merge that did not finish leaves a file without its index, which no player opens:
    // remove it rather than leave a broken file under the user's chosen name.
    if (!result && outputCreated)
        QFile::remove(outputPath);
    QFile::remove(listPath);
    spdlog::info("Video merging completed: {}", result ? "success" : "failed");
    m_reporter.reportFinished(result);
    return result;
}

bool MergeJob::writeList(const QVariantList& inputPaths, const QString& listPath, qint64& total)
{
    QFile file(listPath);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text)) {
        spdlog::error("Failed to create temporary file list");
        return false;
    }
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    total = 0;
    stream << "ffconcat version 1.0" << Qt::endl;
    // The packets are copied, so the output can only show every part the way its one display
    // matrix (the first file's) says: a part recorded at another orientation would come out
    // lying on its side. Such lists are refused before any output exists.
    QString firstShown;
    DisplayOrientation shown;
    for (const QVariant& item : inputPaths) {
        const QString path = item.toString();
        if (path.isEmpty() || !QFileInfo(path).isFile()) {
            spdlog::error("Input file does not exist: {}", path.toStdString());
            file.close();
            file.remove();
            return false;
        }
        const InputSummary summary = summarize(path);
        if (summary.seconds >= 0.0)
            total += static_cast<qint64>(std::trunc(summary.seconds * 25.0));
        if (summary.readable && firstShown.isEmpty()) {
            firstShown = path;
            shown = summary.orientation;
        } else if (summary.readable && summary.orientation != shown) {
            spdlog::error("Cannot merge videos shown at different orientations: {} ({}) and {} ({})",
                          firstShown.toStdString(), shown.describe(), path.toStdString(),
                          summary.orientation.describe());
            file.close();
            file.remove();
            return false;
        }
        // Quotes are written as they are: a path holding one makes the list unreadable and the
        // concat open fails with the library's reason.
        stream << "file '" << QString(path).replace(QLatin1Char('\\'), QLatin1Char('/')) << "'" << Qt::endl;
    }
    stream.flush();
    const bool written = stream.status() == QTextStream::Ok && file.error() == QFileDevice::NoError;
    file.close();
    if (!written) {
        spdlog::error("Failed to create temporary file list");
        file.remove();
        return false;
    }

    QFile readBack(listPath);
    if (readBack.open(QIODevice::ReadOnly | QIODevice::Text))
        spdlog::debug("Merge list {}:\n{}", listPath.toStdString(), readBack.readAll().toStdString());
    return true;
}

bool MergeJob::concatenate(const QString& listPath, AVDictionary** options, AVFormatContext* output,
                           const QString& outputPath, bool& outputCreated)
{
    // No forced format: the "ffconcat version 1.0" header wins the probe.
    ff::OpenFailure failure;
    const ff::InputFormatPtr input = ff::openInput(listPath, options, &failure);
    if (!input) {
        if (failure.missing)
            spdlog::error("Could not open concat demuxer: {}", ff::errorText(failure.code));
        else
            spdlog::error("Failed to retrieve input stream information");
        return false;
    }
    // The merged layout is the first file's, as the concat demuxer reports it.
    if (!MediaProbe::copyStreamLayout(input.get(), output))
        return false;

    if (!(output->oformat->flags & AVFMT_NOFILE)) {
        if (avio_open(&output->pb, outputPath.toUtf8().constData(), AVIO_FLAG_WRITE) < 0) {
            spdlog::error("Could not open output file: {}", outputPath.toStdString());
            return false;
        }
        outputCreated = true;
    }
    const int header = avformat_write_header(output, nullptr);
    if (header < 0) {
        spdlog::error("Error occurred when writing header: {}", ff::errorText(header));
        return false;
    }

    bool result = copyPackets(input.get(), output);
    // A cancelled or failed copy writes no trailer.
    if (result && av_write_trailer(output) < 0) {
        spdlog::error("Error writing trailer");
        result = false;
    }
    return result;
}

bool MergeJob::copyPackets(AVFormatContext* input, AVFormatContext* output)
{
    ff::PacketPtr packet = ff::makePacket();
    if (!packet)
        return false;
    std::vector<int64_t> lastPts(output->nb_streams, AV_NOPTS_VALUE);
    std::vector<int64_t> lastDts(output->nb_streams, AV_NOPTS_VALUE);
    const auto rounding = static_cast<AVRounding>(AV_ROUND_NEAR_INF | AV_ROUND_PASS_MINMAX);
    int videoPackets = 0;
    bool result = true;
    int read = 0;
    while ((read = av_read_frame(input, packet.get())) >= 0) {
        if (m_reporter.isCancelled()) {
            spdlog::info("Video merging operation cancelled by user");
            result = false;
            m_reporter.reportCancelled();
            av_packet_unref(packet.get());
            break;
        }
        const int i = packet->stream_index;
        if (i < 0 || i >= static_cast<int>(input->nb_streams) || i >= static_cast<int>(output->nb_streams)) {
            spdlog::error("Invalid stream index: {}", i);
            av_packet_unref(packet.get());
            continue;
        }
        const AVStream* inStream = input->streams[i];
        const AVStream* outStream = output->streams[i];
        packet->pts = av_rescale_q_rnd(packet->pts, inStream->time_base, outStream->time_base, rounding);
        packet->dts = av_rescale_q_rnd(packet->dts, inStream->time_base, outStream->time_base, rounding);
        packet->duration = av_rescale_q(packet->duration, inStream->time_base, outStream->time_base);

        // The "from" value logged is the previous packet's timestamp, not this packet's own.
        if (lastPts[i] != AV_NOPTS_VALUE && packet->pts != AV_NOPTS_VALUE && packet->pts <= lastPts[i]) {
            packet->pts = lastPts[i] + 1;
            spdlog::debug("Adjusted PTS for stream {} from {} to {}", i, lastPts[i], packet->pts);
        }
        if (lastDts[i] != AV_NOPTS_VALUE && packet->dts != AV_NOPTS_VALUE && packet->dts <= lastDts[i]) {
            packet->dts = lastDts[i] + 1;
            spdlog::debug("Adjusted DTS for stream {} from {} to {}", i, lastDts[i], packet->dts);
        }
        // May bring dts back to or below the previous one; the muxer then decides.
        if (packet->dts != AV_NOPTS_VALUE && packet->pts != AV_NOPTS_VALUE && packet->pts < packet->dts) {
            packet->dts = packet->pts;
            spdlog::debug("Adjusted DTS to equal PTS for stream {}: {}", i, packet->dts);
        }
        if (packet->pts != AV_NOPTS_VALUE)
            lastPts[i] = packet->pts;
        if (packet->dts != AV_NOPTS_VALUE)
            lastDts[i] = packet->dts;
        packet->pos = -1;

        const bool isVideo = inStream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO;
        const int written = av_interleaved_write_frame(output, packet.get());
        if (written < 0) {
            spdlog::error("Error writing packet: {}", ff::errorText(written));
            result = false;
            av_packet_unref(packet.get());
            break;
        }
        if (isVideo && ++videoPackets % 10 == 0)
            m_reporter.reportProgress(videoPackets);
        av_packet_unref(packet.get());
    }
    // The concat demuxer reports a later list entry it cannot open as a read error: that is
    // a failed merge, not the end of the input.
    if (result && read < 0 && read != AVERROR_EOF) {
        spdlog::error("Error reading input: {}", ff::errorText(read));
        result = false;
    }
    return result;
}
