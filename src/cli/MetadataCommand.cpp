#include "cli/MetadataCommand.h"

#include "cli/MediaFolder.h"
#include "services/metadata/ExifReader.h"
#include "services/metadata/MetadataDump.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <fmt/format.h>
#include <iterator>

namespace kelvara::cli {

namespace {

/// "2024-03-09T14:05:33", as the camera's clock said.
std::string dateText(std::chrono::local_seconds date, char separator) {
    const auto day = std::chrono::floor<std::chrono::days>(date);
    const std::chrono::year_month_day calendar{day};
    const std::chrono::hh_mm_ss time{date - day};
    return fmt::format("{:04}-{:02}-{:02}{}{:02}:{:02}:{:02}", int{calendar.year()},
                       unsigned{calendar.month()}, unsigned{calendar.day()}, separator, time.hours().count(),
                       time.minutes().count(), time.seconds().count());
}

template <typename T> JSON orNull(const std::optional<T>& field) {
    return field ? JSON(*field) : JSON(nullptr);
}
JSON orNull(const std::string& text) { return text.empty() ? JSON(nullptr) : JSON(text); }

JSON exifJSON(const ExifInfo& info) {
    return {{"cameraMake", orNull(info.cameraMake)},
            {"cameraModel", orNull(info.cameraModel)},
            {"lensModel", orNull(info.lensModel)},
            {"captureDate", info.captureDate ? JSON(dateText(*info.captureDate, 'T')) : JSON(nullptr)},
            {"fNumber", orNull(info.fNumber)},
            {"exposureTime", orNull(info.exposureTime)},
            {"iso", orNull(info.iso)},
            {"focalLength", orNull(info.focalLength)},
            {"exposureBias", orNull(info.exposureBias)},
            {"pixelWidth", orNull(info.pixelWidth)},
            {"pixelHeight", orNull(info.pixelHeight)},
            {"orientation", orNull(info.orientation)},
            {"apertureText", orNull(info.apertureText())},
            {"shutterText", orNull(info.shutterText())},
            {"exposureBiasText", orNull(info.exposureBiasText())},
            {"focalLengthText", orNull(info.focalLengthText())},
            {"summaryLine", info.summaryLine()}};
}

JSON sectionsJSON(const std::vector<MetadataSection>& sections) {
    auto list = JSON::array();
    for (const auto& section : sections) {
        auto rows = JSON::array();
        for (const auto& row : section.rows) rows.push_back({{"label", row.label}, {"value", row.value}});
        list.push_back({{"title", section.title}, {"rows", std::move(rows)}});
    }
    return list;
}

/// Aligned lines of what there is.
void addRow(std::string& text, std::string_view label, std::string_view value) {
    if (!value.empty()) fmt::format_to(std::back_inserter(text), "{:<13}  {}\n", label, printable(value));
}

std::string exifText(const ExifInfo& info) {
    std::string text;
    const auto make = info.cameraMake.value_or("");
    const auto model = info.cameraModel.value_or("");
    addRow(text, "Camera", make.empty() || model.empty() ? make + model : make + ' ' + model);
    addRow(text, "Lens", info.lensModel.value_or(""));
    addRow(text, "Aperture", info.apertureText());
    addRow(text, "Shutter", info.shutterText());
    addRow(text, "ISO", info.iso ? std::to_string(*info.iso) : "");
    addRow(text, "Focal Length", info.focalLengthText());
    addRow(text, "Exposure Bias", info.exposureBiasText());
    addRow(text, "Captured", info.captureDate ? dateText(*info.captureDate, ' ') : "");
    if (info.pixelWidth && info.pixelHeight) {
        addRow(text, "Dimensions", fmt::format("{} × {}", *info.pixelWidth, *info.pixelHeight));
    }
    addRow(text, "Orientation", info.orientation ? std::to_string(*info.orientation) : "");
    return text;
}

std::string sectionsText(const std::vector<MetadataSection>& sections) {
    std::string text;
    for (const auto& section : sections) {
        fmt::format_to(std::back_inserter(text), "\n{}\n", printable(section.title));
        for (const auto& row : section.rows) {
            fmt::format_to(std::back_inserter(text), "  {}: {}\n", printable(row.label),
                           printable(row.value));
        }
    }
    return text;
}

} // namespace

MetadataCommand::MetadataCommand(CLI::App& app)
    : Command{app, "metadata", "Show how a photo was taken, and all that its file says"} {
    m_command->add_option("FILE", m_file, "A photo or video")->required();
    m_command->add_flag("--full", m_isFull, "Everything the file says about itself, by section");
}

ExitCode MetadataCommand::run() const {
    const auto file = readableFile(m_file);
    if (!file) return fail(file.error());
    const auto info = readExif(*file, {});
    const auto sections = m_isFull ? dumpMetadata(*file, {}) : std::vector<MetadataSection>{};
    if (!m_asJSON) {
        printText(exifText(info) + sectionsText(sections));
        return ExitCode::success;
    }
    JSON json;
    setPath(json, "file", "fileURL", *file);
    json.update(exifJSON(info));
    if (m_isFull) json["sections"] = sectionsJSON(sections);
    printJSON(json);
    return ExitCode::success;
}

} // namespace kelvara::cli
