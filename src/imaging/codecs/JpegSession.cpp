#include "imaging/codecs/JpegSession.h"

#include <algorithm>
#include <span>
#include <utility>

namespace kelvara {

namespace {

/// A progressive file with thousands of scans over a large area would cost minutes for a few kilobytes.
constexpr int mostScans = 500;

} // namespace

JpegSession::JpegSession(ByteRange bytes, std::stop_token stop) {
    m_input.bytes = std::move(bytes);
    m_progress.stop = std::move(stop);
    m_state.err = jpeg_std_error(&m_errors);
    m_errors.error_exit = giveUp;
    m_errors.emit_message = silence;
    m_state.client_data = this;
    guarded([this] { jpeg_create_decompress(&m_state); });
    m_input.manager.init_source = [](j_decompress_ptr) {};
    m_input.manager.fill_input_buffer = fill;
    m_input.manager.skip_input_data = skip;
    m_input.manager.resync_to_restart = jpeg_resync_to_restart;
    m_input.manager.term_source = [](j_decompress_ptr) {};
    m_state.src = &m_input.manager;
    m_progress.manager.progress_monitor = checkProgress;
    m_state.progress = &m_progress.manager;
}

JpegSession::~JpegSession() { jpeg_destroy_decompress(&m_state); }

void JpegSession::giveUp(j_common_ptr state) { static_cast<JpegSession*>(state->client_data)->fail(); }

void JpegSession::silence(j_common_ptr state, int level) {
    if (level < 0) ++state->err->num_warnings;
}

void JpegSession::checkProgress(j_common_ptr state) {
    const auto& progress = *reinterpret_cast<Progress*>(state->progress);
    const int scan = reinterpret_cast<j_decompress_ptr>(state)->input_scan_number;
    if (scan > mostScans || progress.stop.stop_requested()) giveUp(state);
}

boolean JpegSession::fill(j_decompress_ptr state) {
    auto& input = *reinterpret_cast<Input*>(state->src);
    auto count = input.bytes.read(input.position, std::span{input.buffer}.first(input.nextFill));
    input.position += count;
    input.nextFill = std::min(input.nextFill * 4, input.buffer.size());
    if (count == 0) {
        // Beyond the end of a truncated file: an end marker lets the library finish with what it has.
        input.buffer[0] = 0xFF;
        input.buffer[1] = JPEG_EOI;
        count = 2;
    }
    input.manager.next_input_byte = input.buffer.data();
    input.manager.bytes_in_buffer = count;
    return TRUE;
}

void JpegSession::skip(j_decompress_ptr state, long count) {
    auto& input = *reinterpret_cast<Input*>(state->src);
    if (count <= 0) return;
    const auto wanted = static_cast<std::size_t>(count);
    const auto buffered = std::min(wanted, input.manager.bytes_in_buffer);
    input.manager.next_input_byte += buffered;
    input.manager.bytes_in_buffer -= buffered;
    input.position += wanted - buffered;
}

} // namespace kelvara
