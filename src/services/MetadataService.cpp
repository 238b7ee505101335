#include "services/MetadataService.h"

#include "services/metadata/ExifReader.h"
#include "services/metadata/MetadataDump.h"

#include <mutex>
#include <unordered_map>
#include <utility>

namespace kelvara {

MetadataRequest& MetadataRequest::operator=(MetadataRequest&& other) noexcept {
    if (this != &other) {
        cancel();
        m_stop = std::move(other.m_stop);
    }
    return *this;
}

struct MetadataService::Cache {
    mutable std::mutex mutex;
    std::unordered_map<FileURL, ExifInfo> records;
    unsigned generation = 0; ///< Counts how often it was emptied.

    [[nodiscard]] std::optional<ExifInfo> find(const FileURL& url) const {
        const std::lock_guard lock{mutex};
        const auto found = records.find(url);
        return found == records.end() ? std::nullopt : std::optional{found->second};
    }
    void store(const FileURL& url, const ExifInfo& info, unsigned begunIn) {
        const std::lock_guard lock{mutex};
        if (begunIn != generation) return;
        if (records.size() >= cacheCount) records.clear();
        records.insert_or_assign(url, info);
    }
    [[nodiscard]] unsigned currentGeneration() const {
        const std::lock_guard lock{mutex};
        return generation;
    }
};

MetadataService::Reading MetadataService::Reading::ofFiles() {
    return {.exif = readExif, .sections = dumpMetadata};
}

MetadataService::MetadataService(ImageExecutors executors, Reading reading)
    : m_executors{executors}, m_reading{std::make_shared<const Reading>(std::move(reading))},
      m_cache{std::make_shared<Cache>()} {}

template <typename Work, typename Deliver>
MetadataRequest MetadataService::request(Executor& executor, Work work, Deliver deliver) {
    const std::stop_source source;
    executor.post([&main = m_executors.main, stop = source.get_token(), work = std::move(work),
                   deliver = std::move(deliver)]() mutable {
        if (stop.stop_requested()) return;
        auto result = work(stop);
        main.post([stop, result = std::move(result), deliver = std::move(deliver)]() mutable {
            if (!stop.stop_requested()) deliver(std::move(result));
        });
    });
    return MetadataRequest{source};
}

std::optional<ExifInfo> MetadataService::cachedExif(const FileURL& url) const { return m_cache->find(url); }

MetadataRequest MetadataService::exif(const FileURL& url, Priority priority, ExifCallback onMain) {
    auto& executor = priority == Priority::visible ? m_executors.visible : m_executors.prefetch;
    auto read = [cache = m_cache, reading = m_reading, url,
                 begun = m_cache->currentGeneration()](const std::stop_token& stop) {
        if (auto known = cache->find(url)) return *known;
        auto info = reading->exif(url, stop);
        // Cut short, or of a file that could not be read, it says nothing that is worth keeping.
        if (!stop.stop_requested() && info != ExifInfo{}) cache->store(url, info, begun);
        return info;
    };
    return request(executor, std::move(read), std::move(onMain));
}

MetadataRequest MetadataService::detailedMetadata(const FileURL& url, SectionsCallback onMain) {
    auto read = [reading = m_reading, url](const std::stop_token& stop) {
        return reading->sections(url, stop);
    };
    return request(m_executors.visible, std::move(read), std::move(onMain));
}

void MetadataService::emptyCache() {
    std::unordered_map<FileURL, ExifInfo> dropped; // freed after the lock
    const std::lock_guard lock{m_cache->mutex};
    ++m_cache->generation;
    dropped.swap(m_cache->records);
}

} // namespace kelvara
