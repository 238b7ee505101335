#include "services/CopyService.h"
#include "text/ByteCount.h"
#include "text/Localized.h"

#include <fmt/format.h>

namespace kelvara {

namespace {

template <typename... Cases> struct Overloaded : Cases... { using Cases::operator()...; };
template <typename... Cases> Overloaded(Cases...) -> Overloaded<Cases...>;

bool isGone(const std::error_code& code) {
    return code == std::errc::no_such_file_or_directory || code == std::errc::no_such_device ||
           code == std::errc::no_such_device_or_address || code == std::errc::not_connected;
}

} // namespace

std::string message(const CopyService::CopyError& error) {
    return std::visit(
        Overloaded{
            [](const CopyService::NotEnoughSpace& space) {
                return fmt::format(fmt::runtime(localized("Not enough space: {} needed, {} available.")),
                                   byteCountText(space.needed), byteCountText(space.available));
            },
            [](const CopyService::DestinationInsideSource&) {
                return localized("Choose a destination outside the folder you're copying from.");
            },
            [](const CopyService::SizeMismatch&) {
                return localized("The copy's size doesn't match the original.");
            },
            [](const CopyService::ContentsMismatch&) {
                return localized("The copy's contents don't match the original.");
            },
            [](const CopyService::Cancelled&) { return localized("Cancelled"); },
            [](const FileError& file) { return message(file); },
        },
        error);
}

std::string failureReason(const CopyService::CopyError& error, const CopyService::Plan& plan) {
    const auto* file = std::get_if<FileError>(&error);
    if (file == nullptr) return message(error);
    if (isGone(file->code)) {
        return file->url == plan.source ? localized("The original is gone. Was the card removed?")
                                        : localized("The destination folder is gone. Was its drive removed?");
    }
    if (file->code == std::errc::file_exists) {
        return localized("Another file of this name appeared at the destination.");
    }
    if (file->code == std::errc::device_or_resource_busy && file->url != plan.source) {
        return localized("Another copy of this file is being written at the destination.");
    }
    // The report names the file; the error may name a temporary one that means nothing to the user.
    return localized(file->code.message());
}

} // namespace kelvara
