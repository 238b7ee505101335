#pragma once

#include "imaging/ImageExecutors.h"
#include "model/ExifInfo.h"
#include "model/FileURL.h"
#include "model/MetadataSection.h"

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <vector>

namespace kelvara {

/// Somebody's interest in a file's metadata. Lives on the main thread; its end withdraws the request: the
/// callback is not called afterwards, and what has not begun is not read.
class [[nodiscard]] MetadataRequest {
public:
    /// No request.
    MetadataRequest() = default;
    MetadataRequest(MetadataRequest&& other) noexcept = default;
    MetadataRequest& operator=(MetadataRequest&& other) noexcept;
    ~MetadataRequest() { cancel(); }

    void cancel() { m_stop.request_stop(); }

private:
    friend class MetadataService;
    explicit MetadataRequest(std::stop_source stop) : m_stop{std::move(stop)} {}

    std::stop_source m_stop{std::nostopstate};
};

/// Capture metadata of photos, read once and kept in memory.
class MetadataService {
public:
    /// Before it forgets everything it knows; some tens of megabytes.
    static constexpr std::size_t cacheCount = 100'000;

    /// Who waits: somebody who looks at this one photo, or a grid full of them, whose pictures come first.
    enum class Priority { visible, background };
    /// Called once on the main thread, never before the request has returned; with nothing but empty fields
    /// for a file that can't be read. What the callback of a withdrawn request owns may end on a background
    /// thread.
    using ExifCallback = std::function<void(const ExifInfo&)>;
    using SectionsCallback = std::function<void(std::vector<MetadataSection>)>;

    /// How files are read; both run on a background thread.
    struct Reading {
        std::function<ExifInfo(const FileURL&, const std::stop_token&)> exif;
        std::function<std::vector<MetadataSection>(const FileURL&, const std::stop_token&)> sections;

        [[nodiscard]] static Reading ofFiles();
    };

    /// The executors outlive it.
    explicit MetadataService(ImageExecutors executors, Reading reading = Reading::ofFiles());

    /// Any thread; never waits for a file.
    [[nodiscard]] std::optional<ExifInfo> cachedExif(const FileURL& url) const;
    /// From the cache or the file. Main thread.
    MetadataRequest exif(const FileURL& url, Priority priority, ExifCallback onMain);
    /// Everything the file says about itself; not kept. Main thread.
    MetadataRequest detailedMetadata(const FileURL& url, SectionsCallback onMain);

    /// The files may be others from now on; what is being read now is delivered but not kept.
    void emptyCache();

private:
    struct Cache;
    template <typename Work, typename Deliver>
    MetadataRequest request(Executor& executor, Work work, Deliver deliver);

    ImageExecutors m_executors;
    std::shared_ptr<const Reading> m_reading; // what is being read keeps both
    std::shared_ptr<Cache> m_cache;
};

} // namespace kelvara
