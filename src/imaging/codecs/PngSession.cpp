#include "imaging/codecs/PngSession.h"

#include <string_view>
#include <utility>

namespace kelvara {
namespace {

/// Enough for any colour profile; a chunk may also unpack to no more.
constexpr png_alloc_size_t mostChunkBytes = 8U << 20;

/// Chunks that say nothing about the pixels and may be many and large: names of four letters, each with its
/// end mark.
constexpr std::string_view unread{"iTXt\0tEXt\0zTXt\0sPLT\0hIST\0pCAL\0sCAL\0oFFs\0tIME\0", 45};

} // namespace

PngSession::PngSession(ByteRange bytes) : m_bytes{std::move(bytes)} {
    m_state =
        png_create_read_struct(PNG_LIBPNG_VER_STRING, this, giveUp, [](png_structp, png_const_charp) {});
    if (m_state) m_info = png_create_info_struct(m_state);
    if (!m_info) refuse();
    guarded([this] {
        png_set_read_fn(m_state, this, read);
        png_set_chunk_malloc_max(m_state, mostChunkBytes);
        png_set_chunk_cache_max(m_state, 64);
        png_set_keep_unknown_chunks(m_state, PNG_HANDLE_CHUNK_NEVER,
                                    reinterpret_cast<png_const_bytep>(unread.data()),
                                    static_cast<int>(unread.size() / 5));
    });
}

PngSession::~PngSession() { png_destroy_read_struct(&m_state, &m_info, nullptr); }

void PngSession::giveUp(png_structp state, png_const_charp) {
    static_cast<PngSession*>(png_get_error_ptr(state))->fail();
}

void PngSession::read(png_structp state, png_bytep to, std::size_t count) {
    auto* session = static_cast<PngSession*>(png_get_io_ptr(state));
    const auto done = session->m_bytes.read(session->m_position, {to, count});
    session->m_position += done;
    if (done < count) png_error(state, "truncated");
}

} // namespace kelvara
