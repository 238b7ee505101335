#include "services/VolumeService.h"

#include "text/NameOrder.h"

#include <algorithm>
#include <utility>

namespace kelvara {

void VolumeService::mountedVolumes(std::function<void(std::vector<VolumeInfo>)> onAnswer) {
    const auto number = ++*m_latest;
    m_volumes.list([latest = std::weak_ptr{m_latest}, number, locale = m_locale,
                    onAnswer = std::move(onAnswer)](std::vector<VolumeInfo> volumes) {
        const auto wanted = latest.lock();
        if (!wanted || *wanted != number) return;
        const NameOrder order{locale};
        std::stable_sort(volumes.begin(), volumes.end(), [&](const VolumeInfo& a, const VolumeInfo& b) {
            if (a.isRemovable != b.isRemovable) return a.isRemovable;
            return order.precedes(a.name, b.name);
        });
        onAnswer(std::move(volumes));
    });
}

} // namespace kelvara
