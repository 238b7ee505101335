#include "samplecard/MP4.h"
#include "samplecard/Scene.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace kelvara::samplecard {
namespace {

TEST(VideoTest, playsForItsLengthAndKnowsWhenItWasMade) {
    MP4Options options;
    options.width = 96;
    options.height = 64;
    options.seconds = 1;
    options.time = 1714716765;
    const std::string bytes = encodeMP4(paint(Scene::sea, 144, 96, 1), options);
    const auto path = std::filesystem::path{testing::TempDir()} / "samplecard-video.mp4";
    std::ofstream{path, std::ios::binary} << bytes;

    AVFormatContext* format = nullptr;
    ASSERT_EQ(avformat_open_input(&format, path.c_str(), nullptr, nullptr), 0);
    ASSERT_GE(avformat_find_stream_info(format, nullptr), 0);
    ASSERT_EQ(format->nb_streams, 1U);
    const AVStream* stream = format->streams[0];
    EXPECT_EQ(stream->codecpar->width, 96);
    EXPECT_EQ(stream->codecpar->height, 64);
    EXPECT_NEAR(static_cast<double>(format->duration) / AV_TIME_BASE, 1.0, 0.05);
    const AVDictionaryEntry* created = av_dict_get(format->metadata, "creation_time", nullptr, 0);
    ASSERT_NE(created, nullptr);
    EXPECT_EQ(std::string{created->value}.substr(0, 19), "2024-05-03T06:12:45");
    EXPECT_NE(avcodec_find_decoder(stream->codecpar->codec_id), nullptr);

    int packets = 0;
    AVPacket* packet = av_packet_alloc();
    for (; av_read_frame(format, packet) == 0; av_packet_unref(packet)) ++packets;
    EXPECT_EQ(packets, 25);
    av_packet_free(&packet);
    avformat_close_input(&format);
    std::filesystem::remove(path);
}

} // namespace
} // namespace kelvara::samplecard
