#include "services/CopyService.h"
#include "services/PhotoExport.h"
#include "text/Localized.h"

#include <fmt/format.h>

namespace kelvara {

std::string CopyService::Export::title() const {
    const std::string format{ExportSettings::displayName(settings.format)};
    if (!look || !settings.appliesLook) return format;
    return fmt::format(fmt::runtime(localized("{} with {} applied")), format, look->title());
}

CopyService::Outcome CopyService::render(const Plan& plan, std::optional<Rating> rating) const {
    const auto& [preset, settings] = std::get<Plan::Render>(plan.action);
    PhotoExport photo{plan.source, plan.destination, std::nullopt, settings, rating};
    if (preset) photo.preset = *preset;
    // Like files that are copied, photos in progress are finished when the job is cancelled.
    const auto written = photo.run(m_files, {});
    if (written) return Copied{*written};
    const auto* file = std::get_if<FileError>(&written.error());
    return Failed{file ? failureReason(CopyError{*file}, plan) : message(written.error())};
}

} // namespace kelvara
