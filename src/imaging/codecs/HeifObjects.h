#pragma once

#include <libheif/heif.h>

#include <memory>

namespace kelvara {

struct HeifFree {
    void operator()(heif_context* context) const { heif_context_free(context); }
    void operator()(heif_image_handle* handle) const { heif_image_handle_release(handle); }
    void operator()(heif_image* image) const { heif_image_release(image); }
    void operator()(heif_encoder* encoder) const { heif_encoder_release(encoder); }
    void operator()(heif_color_profile_nclx* profile) const { heif_nclx_color_profile_free(profile); }
    void operator()(heif_decoding_options* options) const { heif_decoding_options_free(options); }
};

/// An object of libheif with its owner.
template <typename T> using HeifOwned = std::unique_ptr<T, HeifFree>;

[[nodiscard]] inline bool heifWorked(const heif_error& error) { return error.code == heif_error_Ok; }

} // namespace kelvara
