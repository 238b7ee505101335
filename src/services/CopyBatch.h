#pragma once

#include "services/CopyService.h"

#include <chrono>
#include <memory>
#include <vector>

namespace kelvara {

/// Files that are written one after the other and then made durable and named together, because waiting for
/// the medium costs about as much for one small file as for many. Belongs to one thread.
class CopyService::Batch {
public:
    /// `service` outlives it.
    explicit Batch(const CopyService& service) : m_service{service} {}

    /// Writes a file that is to be copied, and its sidecar, under temporary names. `plan` outlives the batch.
    void add(const Plan& plan, std::optional<Rating> rating);
    /// Whether it holds as much as should be at stake at once.
    [[nodiscard]] bool isFull() const;
    /// Whether what it holds should not wait until this file is written.
    [[nodiscard]] bool shouldFinishBefore(const Plan& plan) const;
    /// Gives the files their names, and their outcomes once these can't be lost. The batch is empty then.
    std::vector<Finished> finish();

private:
    struct Entry {
        const Plan& plan;
        std::optional<Rating> rating;
        Outcome outcome;
        std::unique_ptr<PendingCopy> photo{};   // none where it is skipped or failed
        std::unique_ptr<PendingCopy> sidecar{}; // none where there is nothing to carry along
        bool isSynced = false;                  // as a part of its volume
        bool hasNewName = false;
    };

    Result<void, CopyError> write(Entry& entry) const;
    void syncVolumes();
    Result<void, CopyError> settle(Entry& entry) const;
    /// These two fail with the reason as a sentence.
    Result<void, std::string> writeSidecar(Entry& entry);
    Result<void, std::string> settleSidecar(Entry& entry) const;
    void settlePhotos();
    void settleSidecars();
    void syncNames();

    const CopyService& m_service;
    std::vector<Entry> m_entries;
    std::int64_t m_unwrittenBytes = 0;
    std::chrono::steady_clock::time_point m_start; // when the first file was added
};

} // namespace kelvara
