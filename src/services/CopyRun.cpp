#include "services/CopyRun.h"

#include "services/CopyBatch.h"

#include <algorithm>
#include <iterator>
#include <system_error>

namespace kelvara {

namespace {

bool isRendered(const CopyService::Plan& plan) {
    return std::holds_alternative<CopyService::Plan::Render>(plan.action);
}

} // namespace

CopyService::Run::Run(const CopyService& service, const std::vector<Plan>& plans, const Ratings& ratings,
                      const std::stop_token& stop)
    : m_service{service}, m_plans{plans}, m_ratings{ratings}, m_stop{stop} {
    const bool renders = std::ranges::any_of(plans, isRendered);
    m_running = std::min(renders ? maximumRendersInFlight : maximumInFlight, plans.size());
    for (std::size_t i = 0, count = m_running; i < count; ++i) {
        try {
            m_threads.emplace_back([this] { work(); });
        } catch (const std::system_error&) { // no more threads to be had: those there are do it all
            {
                const std::scoped_lock lock{m_mutex};
                m_running -= count - std::max<std::size_t>(i, 1);
            }
            if (i == 0) work();
            break;
        }
    }
}

std::optional<CopyService::Finished> CopyService::Run::next() {
    std::unique_lock lock{m_mutex};
    m_changed.wait(lock, [this] { return !m_finished.empty() || m_running == 0; });
    if (m_finished.empty()) return std::nullopt;
    auto finished = std::move(m_finished.front());
    m_finished.pop_front();
    return finished;
}

void CopyService::Run::work() {
    Batch batch{m_service};
    while (const auto* plan = take()) {
        if (batch.shouldFinishBefore(*plan)) give(batch.finish());
        const auto found = m_ratings.find(plan->source);
        const auto rating = found == m_ratings.end() ? std::nullopt : std::optional{found->second};
        if (isRendered(*plan)) {
            give({{*plan, m_service.render(*plan, rating)}});
            continue;
        }
        batch.add(*plan, rating);
        if (batch.isFull()) give(batch.finish());
    }
    give(batch.finish());
    const std::scoped_lock lock{m_mutex};
    --m_running;
    m_changed.notify_one();
}

/// The next plan to begin; null when there is none.
const CopyService::Plan* CopyService::Run::take() {
    const std::scoped_lock lock{m_mutex};
    if (m_begun == m_plans.size() || m_stop.stop_requested()) return nullptr;
    return &m_plans[m_begun++];
}

void CopyService::Run::give(std::vector<Finished> finished) {
    const std::scoped_lock lock{m_mutex};
    std::move(finished.begin(), finished.end(), std::back_inserter(m_finished));
    m_changed.notify_one();
}

} // namespace kelvara
