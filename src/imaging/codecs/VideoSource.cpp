#include "imaging/codecs/VideoSource.h"

#include <array>
#include <cmath>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
#include <libswscale/swscale.h>
}

namespace kelvara {
namespace {

struct Free {
    void operator()(AVFormatContext* format) const { avformat_close_input(&format); }
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};
template <typename T> using Owned = std::unique_ptr<T, Free>;

/// Packets that may pass before the first frame; a broken stream is given up then.
constexpr int mostPackets = 2000;

/// Asked by the library while it reads; anything but 0 ends that. Without a token there is nothing to stop.
int askWhetherToStop(void* stop) {
    const auto* token = *static_cast<const std::stop_token**>(stop);
    return token && token->stop_requested() ? 1 : 0;
}

Owned<AVCodecContext> openDecoder(const AVStream& stream) {
    const auto* codec = avcodec_find_decoder(stream.codecpar->codec_id);
    Owned<AVCodecContext> decoder{codec ? avcodec_alloc_context3(codec) : nullptr};
    if (!decoder || avcodec_parameters_to_context(decoder.get(), stream.codecpar) < 0) return nullptr;
    decoder->thread_count = 1; // the pool decides how many threads work
    decoder->skip_frame = AVDISCARD_NONKEY;
    decoder->max_pixels = Bitmap::maximumPixels;
    if (avcodec_open2(decoder.get(), codec, nullptr) < 0) return nullptr;
    return decoder;
}

/// Of the RGB that its numbers become; streams use the code points as they are.
ColorProfilePtr profileOf(const AVFrame& frame) {
    auto profile = ColorProfile::fromCodePoints(frame.color_primaries, frame.color_trc);
    return profile ? profile : ColorProfile::sRGB();
}

/// The frame's pixels, scaled to the size in which it is shown.
BitmapPtr bitmapOf(const AVFrame& frame, PixelSize size) {
    // The fast conversion, which this flag rules out, leaves the last columns of a frame that isn't scaled
    // unwritten unless its width is a multiple of eight.
    constexpr int flags = SWS_AREA | SWS_ACCURATE_RND;
    const Owned<SwsContext> scaler{
        sws_getContext(frame.width, frame.height, static_cast<AVPixelFormat>(frame.format), size.width,
                       size.height, AV_PIX_FMT_BGR0, flags, nullptr, nullptr, nullptr)};
    auto bitmap = Bitmap::create(size, profileOf(frame));
    if (!scaler || !bitmap) return nullptr;
    // The library numbers coefficients as streams do, but takes those of standard definition for one that
    // says nothing.
    const bool isHighDefinition = frame.colorspace == AVCOL_SPC_UNSPECIFIED && frame.height >= 720;
    const auto* coefficients = sws_getCoefficients(isHighDefinition ? SWS_CS_ITU709 : frame.colorspace);
    const int isFullRange = frame.color_range == AVCOL_RANGE_JPEG ? 1 : 0;
    constexpr int one = 1 << 16;
    sws_setColorspaceDetails(scaler.get(), coefficients, isFullRange, sws_getCoefficients(SWS_CS_DEFAULT), 1,
                             0, one, one);
    const std::array<std::uint8_t*, 4> planes{bitmap->data()};
    const std::array<int, 4> strides{static_cast<int>(bitmap->rowBytes())};
    if (sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, planes.data(), strides.data()) <=
        0) {
        return nullptr;
    }
    for (int y = 0; y < bitmap->height(); ++y) {
        const auto row = bitmap->row(y);
        for (std::size_t i = 3; i < row.size(); i += 4) row[i] = 255;
    }
    return bitmap;
}

class VideoSource : public ImageSource {
public:
    VideoSource() = default;
    bool open(const FileURL& url);

    [[nodiscard]] std::optional<PixelSize> pixelSize() const override { return shownSize(); }
    [[nodiscard]] Orientation orientation() const override;
    [[nodiscard]] BitmapPtr storedPreview(std::optional<int>, const std::stop_token&) override {
        return nullptr;
    }
    [[nodiscard]] BitmapPtr image(std::optional<int> maximum, const std::stop_token& stop) override;

private:
    /// With square pixels; anamorphic video is stored narrower than it is shown.
    [[nodiscard]] PixelSize shownSize() const;
    [[nodiscard]] Owned<AVFrame> nextFrame(AVCodecContext& decoder) const;

    const std::stop_token* m_stop = nullptr; // of the call that runs
    Owned<AVFormatContext> m_format;
    const AVStream* m_stream = nullptr;
};

bool VideoSource::open(const FileURL& url) {
    static const bool isQuiet = (av_log_set_level(AV_LOG_QUIET), true);
    static_cast<void>(isQuiet);
    auto* format = avformat_alloc_context();
    if (!format) return false;
    format->interrupt_callback = {askWhetherToStop, &m_stop};
    // With its scheme a name such as "http:x.mp4" is a file and nothing else.
    const auto address = "file:" + url.path();
    if (avformat_open_input(&format, address.c_str(), nullptr, nullptr) < 0) return false; // frees it
    m_format.reset(format);
    if (avformat_find_stream_info(format, nullptr) < 0) return false;
    const int index = av_find_best_stream(format, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (index < 0) return false;
    m_stream = format->streams[index];
    return !shownSize().isEmpty();
}

PixelSize VideoSource::shownSize() const {
    PixelSize size{m_stream->codecpar->width, m_stream->codecpar->height};
    const auto aspect = m_stream->codecpar->sample_aspect_ratio;
    if (aspect.num <= 0 || aspect.den <= 0) return size;
    const double width = static_cast<double>(size.width) * aspect.num / aspect.den;
    constexpr double widest = 1 << 16;
    if (width >= 1 && width <= widest) size.width = static_cast<int>(std::lround(width));
    return size;
}

Orientation VideoSource::orientation() const {
    const auto* matrix = av_stream_get_side_data(m_stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr);
    if (!matrix) return {};
    const double counterClockwise = av_display_rotation_get(reinterpret_cast<const std::int32_t*>(matrix));
    if (std::isnan(counterClockwise)) return {};
    constexpr std::array quarterTurns{1, 8, 3, 6};
    const auto quarters = static_cast<unsigned>(std::lround(counterClockwise / 90)) & 3U;
    return Orientation{quarterTurns[quarters]};
}

Owned<AVFrame> VideoSource::nextFrame(AVCodecContext& decoder) const {
    Owned<AVPacket> packet{av_packet_alloc()};
    Owned<AVFrame> frame{av_frame_alloc()};
    if (!packet || !frame) return nullptr;
    for (int i = 0; i < mostPackets && !m_stop->stop_requested(); ++i) {
        const bool isAtEnd = av_read_frame(m_format.get(), packet.get()) < 0;
        const bool isOurs = isAtEnd || packet->stream_index == m_stream->index;
        if (isOurs) avcodec_send_packet(&decoder, isAtEnd ? nullptr : packet.get());
        av_packet_unref(packet.get());
        if (isOurs && avcodec_receive_frame(&decoder, frame.get()) == 0) return frame;
        if (isAtEnd) break;
    }
    return nullptr;
}

BitmapPtr VideoSource::image(std::optional<int> maximum, const std::stop_token& stop) {
    m_stop = &stop;
    const auto decoder = openDecoder(*m_stream);
    Owned<AVFrame> frame;
    if (decoder && m_format->duration > 0) {
        const auto start = m_format->start_time == AV_NOPTS_VALUE ? 0 : m_format->start_time;
        av_seek_frame(m_format.get(), -1, start + m_format->duration / 10, AVSEEK_FLAG_BACKWARD);
        frame = nextFrame(*decoder);
    }
    if (decoder && !frame) {
        avcodec_flush_buffers(decoder.get());
        av_seek_frame(m_format.get(), -1, 0, AVSEEK_FLAG_BACKWARD);
        frame = nextFrame(*decoder);
    }
    m_stop = nullptr;
    if (!frame || stop.stop_requested()) return nullptr;
    const auto size = maximum ? shownSize().fittedTo(*maximum) : shownSize();
    return turnedUpright(bitmapOf(*frame, size), orientation(), stop);
}

} // namespace

std::unique_ptr<ImageSource> openVideo(const FileURL& url) {
    auto source = std::make_unique<VideoSource>();
    if (!source->open(url)) return nullptr;
    return source;
}

} // namespace kelvara
