#include "cli/PictureCommand.h"

#include "cli/InterruptWatch.h"
#include "cli/MediaFolder.h"
#include "cli/PictureReading.h"
#include "imaging/writing/Encoders.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <fmt/format.h>

namespace kelvara::cli {

namespace {

bool isPNG(const FileURL& output) { return CLI::detail::to_lower(std::string{output.extension()}) == "png"; }

std::string checkExtension(const std::string& path) {
    const auto extension = CLI::detail::to_lower(std::filesystem::path{path}.extension().native());
    const bool isKnown = extension == ".png" || extension == ".jpg" || extension == ".jpeg";
    return isKnown ? std::string{} : "The name must end in .jpg, .jpeg or .png";
}

std::optional<std::string> encoded(const Bitmap& picture, bool asPNG, const std::stop_token& stop) {
    constexpr double quality = 0.9;
    EmbeddedBlocks blocks;
    blocks.profile = picture.profile();
    return asPNG ? encodedPng(picture, PixelFormat::bgrx8, blocks, stop)
                 : encodedJpeg(picture, quality, blocks, stop);
}

bool isSameFile(const FileURL& a, const FileURL& b) {
    std::error_code ignored;
    return a == b || std::filesystem::equivalent(a.path(), b.path(), ignored);
}

} // namespace

PictureCommand::PictureCommand(CLI::App& app, const std::string& name, const std::string& description,
                               FileSystem& files)
    : Command{app, name, description}, m_files{files} {
    m_command->add_option("FILE", m_file, "A photo or video")->required();
    m_command->add_option("--output", m_output, "Where to write it: a JPEG or PNG, by the name's extension")
        ->required()
        ->check(checkExtension)
        ->option_text("OUTPUT");
}

ExitCode PictureCommand::make(std::optional<int> size, const Change& change) const {
    const auto file = readableFile(m_file);
    if (!file) return fail(file.error());
    const auto output = resolved(m_output);
    if (!output) return fail(output.error());
    if (isSameFile(*file, *output)) return fail({"A photo can't be replaced by a picture made of it."});

    const InterruptWatch interrupt;
    const auto& stop = interrupt.token();
    const auto original = pictureIn(*file, size, stop);
    if (!original) return fail(original.error());
    const auto picture = change(*original, stop);
    if (stop.stop_requested()) return fail({"Cancelled", ExitCode::interrupted});
    if (!picture) return fail({"There is not enough memory."});
    const auto bytes = encoded(*picture, isPNG(*output), stop);
    if (!bytes) return fail({"The picture couldn't be encoded."});
    if (const auto written = m_files.writeFileAtomically(*output, *bytes); !written) {
        return fail({printable(message(written.error()))});
    }
    if (m_asJSON) {
        JSON json;
        setPath(json, "file", "fileURL", *file);
        setPath(json, "output", "outputURL", *output);
        json["width"] = picture->width();
        json["height"] = picture->height();
        printJSON(json);
    }
    return ExitCode::success;
}

} // namespace kelvara::cli
