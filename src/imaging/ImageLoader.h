#pragma once

#include "async/Task.h"
#include "imaging/Bitmap.h"
#include "imaging/ImageCache.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>

namespace kelvara {

/// Stands before a cache: requests for one key share one run of the work that makes the image, and the run is
/// cancelled only when all of them have withdrawn. Thread-safe; its end cancels all runs and calls nobody.
class ImageLoader {
public:
    enum class Priority { visible, prefetch };
    /// Makes the image; begun once on the executor of its priority. Gives null when `stop` cut it short.
    using Work = std::function<Task<BitmapPtr>(std::stop_token stop)>;
    /// Called once on the thread that finished the image, or on the caller's for an image that is cached.
    using Done = std::function<void(BitmapPtr)>;
    class Request;

    /// The executors outlive it and its runs.
    ImageLoader(std::size_t costLimit, std::size_t countLimit, Executor& visible, Executor& prefetch);
    ~ImageLoader();
    ImageLoader(const ImageLoader&) = delete;
    ImageLoader& operator=(const ImageLoader&) = delete;

    /// From the cache, from the run that is under way for the key, or from `work`. A visible request takes a
    /// prefetch that has not begun over to its own executor and `work`. A null result is delivered but not
    /// cached.
    [[nodiscard]] Request load(std::string key, Priority priority, Work work, Done done);
    /// The same for nobody; can't be withdrawn.
    void prefetch(std::string key, Work work);

    [[nodiscard]] ImageCache& cache() const;
    /// Stops what is being made for the key, so that who waits for it gets null, and takes it off the cache.
    /// The next request begins anew.
    void drop(std::string_view key);
    /// Empties the cache; what is being made now is still delivered, but not kept.
    void forgetAll();

private:
    struct Run;
    struct State;

    std::shared_ptr<State> m_state; // runs keep it until they end
};

/// A place among those who wait for an image; its end withdraws. Its `done` may still be called if the image
/// is finished at that very moment.
class ImageLoader::Request {
public:
    Request() = default;
    Request(Request&& other) noexcept = default;
    Request& operator=(Request&& other) noexcept;
    ~Request() { cancel(); }

    void cancel();

private:
    friend class ImageLoader;
    Request(std::weak_ptr<State> state, std::weak_ptr<Run> run, std::uint64_t waiter)
        : m_state{std::move(state)}, m_run{std::move(run)}, m_waiter{waiter} {}

    std::weak_ptr<State> m_state;
    std::weak_ptr<Run> m_run;
    std::uint64_t m_waiter = 0;
};

} // namespace kelvara
