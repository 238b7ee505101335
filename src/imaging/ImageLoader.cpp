#include "imaging/ImageLoader.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kelvara {

/// One making of an image, shared by all who wait for it. Its fields belong to the state's lock, `stop` to
/// itself.
struct ImageLoader::Run {
    struct Waiter {
        std::uint64_t id;
        Done done; // empty for a prefetch
    };

    std::string key;
    Work work; // empty once begun
    Priority priority;
    std::vector<Waiter> waiters;
    std::stop_source stop;
};

struct ImageLoader::State : std::enable_shared_from_this<State> {
    State(std::size_t costLimit, std::size_t countLimit, Executor& visibleExecutor,
          Executor& prefetchExecutor)
        : cache{costLimit, countLimit}, visible{visibleExecutor}, prefetch{prefetchExecutor} {}

    void postBegin(const std::shared_ptr<Run>& run, Priority priority);
    void begin(const std::shared_ptr<Run>& run);
    void finish(const std::shared_ptr<Run>& run, const BitmapPtr& image);
    void withdraw(const std::shared_ptr<Run>& run, std::uint64_t waiter);
    /// Takes an ended run off the lists, under the lock. Whether it was the one that requests for its key
    /// join.
    bool remove(const Run& run);

    ImageCache cache;
    Executor& visible;
    Executor& prefetch;
    std::mutex mutex;
    std::unordered_map<std::string, std::shared_ptr<Run>> inFlight;
    std::vector<std::shared_ptr<Run>>
        forgotten; // still made, for those who wait for them, but not to be kept
    std::uint64_t lastWaiter = 0;
};

bool ImageLoader::State::remove(const Run& run) {
    const auto found = inFlight.find(run.key);
    if (found != inFlight.end() && found->second.get() == &run) {
        inFlight.erase(found);
        return true;
    }
    std::erase_if(forgotten, [&run](const auto& candidate) { return candidate.get() == &run; });
    return false;
}

void ImageLoader::State::postBegin(const std::shared_ptr<Run>& run, Priority priority) {
    auto& executor = priority == Priority::visible ? visible : prefetch;
    executor.post([state = shared_from_this(), run] { state->begin(run); });
}

void ImageLoader::State::begin(const std::shared_ptr<Run>& run) {
    Work work;
    {
        const std::lock_guard lock{mutex};
        work = std::exchange(run->work, nullptr);
    }
    if (!work) return; // begun already, by a request that was more urgent
    if (run->stop.stop_requested()) return finish(run, nullptr);
    start(work(run->stop.get_token()),
          [state = shared_from_this(), run](const BitmapPtr& image) { state->finish(run, image); });
}

void ImageLoader::State::finish(const std::shared_ptr<Run>& run, const BitmapPtr& image) {
    std::vector<Run::Waiter> waiters;
    {
        const std::lock_guard lock{mutex};
        if (remove(*run) && image) cache.store(run->key, image);
        waiters.swap(run->waiters);
    }
    for (const auto& waiter : waiters) {
        if (waiter.done) waiter.done(image);
    }
}

void ImageLoader::State::withdraw(const std::shared_ptr<Run>& run, std::uint64_t id) {
    Run::Waiter withdrawn; // what its callback owns ends outside the lock
    {
        const std::lock_guard lock{mutex};
        const auto waiter = std::find_if(run->waiters.begin(), run->waiters.end(),
                                         [id](const Run::Waiter& candidate) { return candidate.id == id; });
        if (waiter == run->waiters.end()) return; // answered already
        withdrawn = std::move(*waiter);
        run->waiters.erase(waiter);
        if (!run->waiters.empty()) return;
        remove(*run);
    }
    run->stop.request_stop();
}

ImageLoader::ImageLoader(std::size_t costLimit, std::size_t countLimit, Executor& visible, Executor& prefetch)
    : m_state{std::make_shared<State>(costLimit, countLimit, visible, prefetch)} {}

ImageLoader::~ImageLoader() {
    forgetAll();
    std::vector<std::shared_ptr<Run>> runs;
    std::vector<Run::Waiter> waiters; // what their callbacks own ends outside the lock
    {
        const std::lock_guard lock{m_state->mutex};
        runs.swap(m_state->forgotten);
        for (const auto& run : runs)
            std::move(run->waiters.begin(), run->waiters.end(), std::back_inserter(waiters));
        for (const auto& run : runs) run->waiters.clear();
    }
    for (const auto& run : runs) run->stop.request_stop();
}

ImageLoader::Request ImageLoader::load(std::string key, Priority priority, Work work, Done done) {
    std::shared_ptr<Run> run;
    std::uint64_t id = 0;
    bool needsBegin = false;
    BitmapPtr cached;
    {
        const std::lock_guard lock{m_state->mutex};
        cached = m_state->cache.find(key);
        if (!cached) {
            id = ++m_state->lastWaiter;
            auto& shared = m_state->inFlight[key];
            if (!shared) {
                shared = std::make_shared<Run>(Run{std::move(key), std::move(work), priority, {}, {}});
                needsBegin = true;
            } else if (shared->work && shared->priority == Priority::prefetch &&
                       priority == Priority::visible) {
                shared->priority = priority;
                std::swap(shared->work, work); // which may queue for the file by its own priority
                needsBegin = true;
            }
            shared->waiters.push_back({id, std::move(done)});
            run = shared;
        }
    }
    if (cached) {
        if (done) done(std::move(cached));
        return {};
    }
    if (needsBegin) m_state->postBegin(run, priority);
    return Request{m_state, run, id};
}

void ImageLoader::prefetch(std::string key, Work work) {
    auto request = load(std::move(key), Priority::prefetch, std::move(work), nullptr);
    request.m_run.reset(); // stays among the waiters to the end
}

ImageCache& ImageLoader::cache() const { return m_state->cache; }

void ImageLoader::drop(std::string_view key) {
    std::shared_ptr<Run> run;
    {
        const std::lock_guard lock{m_state->mutex};
        m_state->cache.store(key, nullptr);
        const auto found = m_state->inFlight.find(std::string{key});
        if (found == m_state->inFlight.end()) return;
        run = found->second;
        m_state->inFlight.erase(found);
        m_state->forgotten.push_back(run);
    }
    run->stop.request_stop();
}

void ImageLoader::forgetAll() {
    const std::lock_guard lock{m_state->mutex};
    for (auto& [key, run] : m_state->inFlight) m_state->forgotten.push_back(std::move(run));
    m_state->inFlight.clear();
    m_state->cache.clear();
}

ImageLoader::Request& ImageLoader::Request::operator=(Request&& other) noexcept {
    if (this != &other) {
        cancel();
        m_state = std::move(other.m_state);
        m_run = std::move(other.m_run);
        m_waiter = other.m_waiter;
    }
    return *this;
}

void ImageLoader::Request::cancel() {
    const auto state = m_state.lock();
    const auto run = std::exchange(m_run, {}).lock();
    if (state && run) state->withdraw(run, m_waiter);
}

} // namespace kelvara
