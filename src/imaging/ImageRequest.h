#pragma once

#include "imaging/ImageLoader.h"

#include <functional>
#include <memory>

namespace kelvara {

/// Called once on the main thread, never before the request has returned; null when there is no image.
using ImageCallback = std::function<void(BitmapPtr)>;

/// Somebody's interest in an image. Lives on the main thread; its end withdraws the request: the callback is
/// not called afterwards, and the decode stops when nobody else waits for it.
class [[nodiscard]] ImageRequest {
public:
    /// No request.
    ImageRequest() = default;
    ImageRequest(ImageRequest&&) noexcept = default;
    ImageRequest& operator=(ImageRequest&& other) noexcept;
    ~ImageRequest() { cancel(); }

    void cancel();
    /// Whether the answer is still to come.
    [[nodiscard]] bool isPending() const { return m_delivery && m_delivery->callback; }

    /// For the image services: asks `loader` and delivers through `main`.
    static ImageRequest load(ImageLoader& loader, std::string key, ImageLoader::Priority priority,
                             ImageLoader::Work work, Executor& main, ImageCallback callback);

private:
    /// Touched on the main thread only, so that no answer can slip in after a withdrawal.
    struct Delivery {
        ImageCallback callback;
    };

    std::shared_ptr<Delivery> m_delivery;
    ImageLoader::Request m_request;
};

} // namespace kelvara
