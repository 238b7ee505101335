#pragma once

#include "platform/SharePicker.h"

#include <utility>

namespace kelvara {

/// Keeps what was asked; the test answers.
class FakeSharePicker : public SharePicker {
public:
    struct Request {
        std::vector<FileURL> files;
        std::optional<Anchor> anchor{};
        OnEnd onEnd;
        std::function<void()> onUnavailable{}; ///< For devices nearby only.
    };

    void share(std::vector<FileURL> files, const std::optional<Anchor>& anchor, OnEnd onEnd) override {
        requests.push_back({std::move(files), anchor, std::move(onEnd)});
    }
    void shareNearby(std::vector<FileURL> files, OnEnd onEnd, std::function<void()> onUnavailable) override {
        requests.push_back({std::move(files), {}, std::move(onEnd), std::move(onUnavailable)});
    }

    std::vector<Request> requests;
};

} // namespace kelvara
