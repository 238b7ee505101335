#pragma once

#include "services/CopyService.h"
#include "support/FailingFileSystem.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace kelvara {

/// A card with photos, a folder to copy them to, and the engine between them.
class CopyTest : public testing::Test {
protected:
    using Plan = CopyService::Plan;

    /// Puts a photo onto the card.
    PhotoItem photo(std::string_view name, std::string_view bytes, std::optional<FileTime> date = {}) {
        const auto url = card.write(name, bytes);
        return {url, static_cast<std::int64_t>(bytes.size()), date};
    }
    CopyService::PlanRequest request(std::vector<PhotoItem> items) const {
        return {std::move(items), target.url(), card.url(), false};
    }
    std::vector<Plan> planned(std::vector<PhotoItem> items) const {
        auto plans = service.plan(request(std::move(items)));
        EXPECT_TRUE(plans);
        return plans ? *plans : std::vector<Plan>{};
    }
    CopyService::Report copy(const std::vector<Plan>& plans, const CopyService::Ratings& ratings = {},
                             const std::stop_token& stop = {}) const {
        return service.copy(plans, target.url(), ratings, stop, [](const auto&) {});
    }

    static bool isSkipped(const Plan& plan) {
        return std::holds_alternative<Plan::SkipExisting>(plan.action);
    }

    TemporaryFolder card;
    TemporaryFolder target;
    FailingFileSystem files;
    CopyService service{files, [this](const FileURL& sidecar, Rating rating) -> Result<void, std::string> {
                            const auto written =
                                files.writeFileAtomically(sidecar, std::to_string(rating.rawValue()));
                            if (!written) return Failure{std::string{"no sidecar"}};
                            return {};
                        }};
};

} // namespace kelvara
