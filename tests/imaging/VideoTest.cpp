#include "imaging/DecodingTest.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
}

namespace kelvara {
namespace {

/// Writes ten seconds of video in which every frame is a key frame: the first half second black, the rest
/// `light`. The container asks for a quarter turn clockwise.
void writeVideo(const std::string& path, PixelSize size, int light = 200, bool isHLG = false) {
    AVFormatContext* format = nullptr;
    ASSERT_GE(avformat_alloc_output_context2(&format, nullptr, nullptr, path.c_str()), 0);
    const auto* encoder = avcodec_find_encoder(AV_CODEC_ID_MPEG4);
    ASSERT_NE(encoder, nullptr);
    auto* codec = avcodec_alloc_context3(encoder);
    codec->width = size.width;
    codec->height = size.height;
    codec->pix_fmt = AV_PIX_FMT_YUV420P;
    codec->time_base = {1, 10};
    codec->gop_size = 1;
    if (isHLG) {
        codec->color_primaries = AVCOL_PRI_BT2020;
        codec->color_trc = AVCOL_TRC_ARIB_STD_B67;
        codec->colorspace = AVCOL_SPC_BT2020_NCL;
    }
    codec->bit_rate = 1'000'000;
    codec->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    ASSERT_GE(avcodec_open2(codec, encoder, nullptr), 0);
    auto* stream = avformat_new_stream(format, nullptr);
    avcodec_parameters_from_context(stream->codecpar, codec);
    stream->time_base = codec->time_base;
    auto* matrix = av_stream_new_side_data(stream, AV_PKT_DATA_DISPLAYMATRIX, 9 * sizeof(std::int32_t));
    av_display_rotation_set(reinterpret_cast<std::int32_t*>(matrix), 90); // clockwise for the writer
    ASSERT_GE(avio_open(&format->pb, path.c_str(), AVIO_FLAG_WRITE), 0);
    ASSERT_GE(avformat_write_header(format, nullptr), 0);
    auto* frame = av_frame_alloc();
    frame->format = codec->pix_fmt;
    frame->width = size.width;
    frame->height = size.height;
    av_frame_get_buffer(frame, 0);
    auto* packet = av_packet_alloc();
    for (int i = 0; i <= 100; ++i) {
        const bool isEnd = i == 100;
        if (!isEnd) {
            av_frame_make_writable(frame);
            const auto fill = [frame](int plane, int height, int value) {
                const auto bytes =
                    static_cast<std::size_t>(frame->linesize[plane]) * static_cast<std::size_t>(height);
                std::fill_n(frame->data[plane], bytes, static_cast<std::uint8_t>(value));
            };
            fill(0, size.height, i < 5 ? 16 : light);
            fill(1, size.height / 2, 128);
            fill(2, size.height / 2, 128);
            frame->pts = i;
        }
        avcodec_send_frame(codec, isEnd ? nullptr : frame);
        while (avcodec_receive_packet(codec, packet) == 0) {
            av_packet_rescale_ts(packet, codec->time_base, stream->time_base);
            packet->stream_index = 0;
            av_interleaved_write_frame(format, packet);
        }
    }
    av_write_trailer(format);
    avio_closep(&format->pb);
    av_packet_free(&packet);
    av_frame_free(&frame);
    avcodec_free_context(&codec);
    avformat_free_context(format);
}

TEST(VideoTest, thePosterIsAFrameAfterTheOpeningAndUpright) {
    const TemporaryFolder folder;
    const auto url = folder.at("a.mp4");
    ASSERT_NO_FATAL_FAILURE(writeVideo(url.path(), {128, 64}));
    const auto poster = ImageDecoder::decodeOriginal(url, 256, {});
    ASSERT_TRUE(poster);
    EXPECT_EQ(poster->size(), (PixelSize{64, 128}));
    EXPECT_TRUE(isNear(colorAt(*poster, 30, 60), {214, 214, 214}, 10)); // video's 200 of 16 to 235
    EXPECT_EQ(ImageDecoder::decodeOriginal(url, 32, {})->size(), (PixelSize{16, 32}));
    EXPECT_FALSE(ImageDecoder::embeddedThumbnail(url, {}));
    const auto whole = TemporaryFolder::read(url);
    for (std::size_t length = 0; length < whole.size(); length += whole.size() / 7) {
        const auto cut = folder.write("cut.mp4", std::string_view{whole}.substr(0, length));
        const auto image = ImageDecoder::decodeOriginal(cut, 32, {});
        if (image) {
            EXPECT_EQ(image->size().longestSide(), 32);
        }
    }
}

TEST(VideoTest, everyPixelOfAnUnscaledFrameIsFilled) {
    const TemporaryFolder folder;
    for (const PixelSize size : {PixelSize{134, 64}, PixelSize{130, 66}}) {
        const auto url = folder.at("a.mp4");
        ASSERT_NO_FATAL_FAILURE(writeVideo(url.path(), size));
        const auto poster = ImageDecoder::decodeOriginal(url, std::nullopt, {});
        ASSERT_TRUE(poster);
        for (int y = 0; y < poster->height(); ++y) {
            for (int x = 0; x < poster->width(); ++x)
                ASSERT_TRUE(isNear(colorAt(*poster, x, y), {214, 214, 214}, 10)) << x << ' ' << y;
        }
    }
}

TEST(VideoTest, highDynamicRangeComesOutAsAScreenShowsIt) {
    const TemporaryFolder folder;
    const auto url = folder.at("a.mp4");
    ASSERT_NO_FATAL_FAILURE(writeVideo(url.path(), {128, 64}, 180, true));
    const auto poster = ImageDecoder::prepareForDisplay(ImageDecoder::decodeOriginal(url, 64, {}), {});
    ASSERT_TRUE(poster);
    EXPECT_TRUE(isNear(colorAt(*poster, 8, 8), {228, 228, 228}, 4)); // three quarters are diffuse white
}

} // namespace
} // namespace kelvara
