#include "samplecard/MP4.h"

#include <cmath>
#include <cstddef>
#include <ctime>
#include <fmt/format.h>
#include <memory>
#include <stdexcept>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

namespace kelvara::samplecard {
namespace {

int check(int result, const char* what) {
    if (result < 0) throw std::runtime_error(fmt::format("video: {} failed ({})", what, result));
    return result;
}

class Muxer {
public:
    explicit Muxer(const MP4Options& options) : m_options{options} {
        check(avformat_alloc_output_context2(&m_format, nullptr, "mp4", nullptr), "making the container");
        check(avio_open_dyn_buf(&m_format->pb), "opening the buffer");
        openEncoder();
        m_stream = avformat_new_stream(m_format, nullptr);
        if (!m_stream) throw std::runtime_error("video: no stream");
        m_stream->time_base = m_codec->time_base;
        check(avcodec_parameters_from_context(m_stream->codecpar, m_codec), "describing the stream");
        const std::time_t seconds = options.time;
        std::tm parts{};
        gmtime_r(&seconds, &parts);
        const std::string created =
            fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.000000Z", parts.tm_year + 1900, parts.tm_mon + 1,
                        parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec);
        av_dict_set(&m_format->metadata, "creation_time", created.c_str(), 0);
        // Without the library's version in the file it is the same everywhere.
        m_format->flags |= AVFMT_FLAG_BITEXACT;
        check(avformat_write_header(m_format, nullptr), "writing the header");
        m_frame = av_frame_alloc();
        m_frame->format = m_codec->pix_fmt;
        m_frame->width = options.width;
        m_frame->height = options.height;
        check(av_frame_get_buffer(m_frame, 0), "making a frame");
        m_packet = av_packet_alloc();
        m_scaler = sws_getContext(options.width, options.height, AV_PIX_FMT_RGB48LE, options.width,
                                  options.height, m_codec->pix_fmt,
                                  SWS_BILINEAR | SWS_BITEXACT | SWS_ACCURATE_RND, nullptr, nullptr, nullptr);
        if (!m_scaler) throw std::runtime_error("video: no colour conversion");
    }
    Muxer(const Muxer&) = delete;
    Muxer& operator=(const Muxer&) = delete;
    ~Muxer() {
        sws_freeContext(m_scaler);
        av_packet_free(&m_packet);
        av_frame_free(&m_frame);
        avcodec_free_context(&m_codec);
        if (m_format && m_format->pb) {
            std::uint8_t* unused = nullptr;
            avio_close_dyn_buf(m_format->pb, &unused);
            av_free(unused);
        }
        avformat_free_context(m_format);
    }

    void add(const Picture& picture, int left, int top) {
        check(av_frame_make_writable(m_frame), "reusing the frame");
        const auto* source = reinterpret_cast<const std::uint8_t*>(picture.at(left, top));
        const int stride = picture.width * 6;
        sws_scale(m_scaler, &source, &stride, 0, m_options.height, m_frame->data, m_frame->linesize);
        m_frame->pts = m_next++;
        encode(m_frame);
    }

    std::string finished() {
        encode(nullptr);
        check(av_write_trailer(m_format), "writing the end");
        std::uint8_t* buffer = nullptr;
        const int size = avio_close_dyn_buf(m_format->pb, &buffer);
        m_format->pb = nullptr;
        std::string bytes{reinterpret_cast<const char*>(buffer), static_cast<std::size_t>(size)};
        av_free(buffer);
        return bytes;
    }

private:
    void openEncoder() {
        const AVCodec* codec = nullptr;
        for (const char* name : {"libx264", "libopenh264", "mpeg4"})
            if (!codec) codec = avcodec_find_encoder_by_name(name);
        if (!codec) throw std::runtime_error("video: no encoder");
        m_codec = avcodec_alloc_context3(codec);
        m_codec->width = m_options.width;
        m_codec->height = m_options.height;
        m_codec->time_base = {1, m_options.framesPerSecond};
        m_codec->framerate = {m_options.framesPerSecond, 1};
        m_codec->pix_fmt = AV_PIX_FMT_YUV420P;
        m_codec->gop_size = m_options.framesPerSecond;
        m_codec->bit_rate = std::int64_t{m_options.width} * m_options.height * 6;
        m_codec->thread_count = 1; // several would make the bytes depend on the machine
        m_codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER | AV_CODEC_FLAG_BITEXACT;
        // An option of libx264 only; the other encoders refuse it, which does no harm.
        av_opt_set(m_codec->priv_data, "preset", "veryfast", 0);
        check(avcodec_open2(m_codec, codec, nullptr), "opening the encoder");
    }

    void encode(const AVFrame* frame) {
        check(avcodec_send_frame(m_codec, frame), "encoding");
        while (avcodec_receive_packet(m_codec, m_packet) == 0) {
            av_packet_rescale_ts(m_packet, m_codec->time_base, m_stream->time_base);
            m_packet->stream_index = m_stream->index;
            m_packet->duration = av_rescale_q(1, m_codec->time_base, m_stream->time_base);
            check(av_interleaved_write_frame(m_format, m_packet), "writing a frame");
        }
    }

    MP4Options m_options;
    AVFormatContext* m_format = nullptr;
    AVCodecContext* m_codec = nullptr;
    AVStream* m_stream = nullptr;
    AVFrame* m_frame = nullptr;
    AVPacket* m_packet = nullptr;
    SwsContext* m_scaler = nullptr;
    std::int64_t m_next = 0;
};

} // namespace

std::string encodeMP4(const Picture& picture, const MP4Options& options) {
    if (picture.width < options.width || picture.height < options.height)
        throw std::runtime_error("video: the picture is smaller than the frame");
    av_log_set_level(AV_LOG_ERROR);
    const auto muxer = std::make_unique<Muxer>(options);
    const int frames = std::max(2, static_cast<int>(std::lround(options.seconds * options.framesPerSecond)));
    for (int i = 0; i < frames; ++i) {
        const double along = static_cast<double>(i) / (frames - 1);
        muxer->add(picture, static_cast<int>((picture.width - options.width) * along),
                   static_cast<int>((picture.height - options.height) * (1 - along)));
    }
    return muxer->finished();
}

} // namespace kelvara::samplecard
