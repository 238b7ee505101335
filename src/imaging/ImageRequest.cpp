#include "imaging/ImageRequest.h"

#include <utility>

namespace kelvara {

ImageRequest& ImageRequest::operator=(ImageRequest&& other) noexcept {
    if (this != &other) {
        cancel();
        m_delivery = std::move(other.m_delivery);
        m_request = std::move(other.m_request);
    }
    return *this;
}

void ImageRequest::cancel() {
    m_request.cancel();
    // Moved out first: what the callback owns may hold this very request.
    if (const auto delivery = std::exchange(m_delivery, nullptr)) std::exchange(delivery->callback, nullptr);
}

ImageRequest ImageRequest::load(ImageLoader& loader, std::string key, ImageLoader::Priority priority,
                                ImageLoader::Work work, Executor& main, ImageCallback callback) {
    ImageRequest request;
    request.m_delivery = std::make_shared<Delivery>(Delivery{std::move(callback)});
    auto deliver = [&main, delivery = request.m_delivery](BitmapPtr image) {
        main.post([delivery, image = std::move(image)]() mutable {
            const auto onMain = std::exchange(delivery->callback, nullptr);
            if (onMain) onMain(std::move(image));
        });
    };
    request.m_request = loader.load(std::move(key), priority, std::move(work), std::move(deliver));
    return request;
}

} // namespace kelvara
