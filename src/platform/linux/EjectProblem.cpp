#include "platform/linux/EjectProblem.h"

#include "text/Localized.h"

#include <fmt/format.h>
#include <initializer_list>

namespace kelvara {

namespace {

constexpr std::string_view diskErrors = "org.freedesktop.UDisks2.Error.";
constexpr std::string_view busErrors = "org.freedesktop.DBus.Error.";

/// What follows the technical part: "target is busy". The message itself where it has no such part.
std::string_view reason(std::string_view message) {
    const auto colon = message.rfind(": ");
    auto text = colon == std::string_view::npos ? message : message.substr(colon + 2);
    while (!text.empty() && (text.back() == '.' || text.back() == '\n' || text.back() == ' '))
        text.remove_suffix(1);
    return text;
}

bool isOneOf(std::string_view error, std::string_view prefix, std::initializer_list<std::string_view> names) {
    if (!error.starts_with(prefix)) return false;
    error.remove_prefix(prefix.size());
    for (const auto name : names) {
        if (error == name) return true;
    }
    return false;
}

std::string busySentence(std::string_view message, std::string_view volumeName) {
    const auto why = reason(message);
    const auto details = why.empty() ? std::string{} : fmt::format(" ({})", why);
    return fmt::format(fmt::runtime(localized("“{}” is in use by another program{}. Close what uses it and "
                                              "try again.")),
                       volumeName, details);
}

} // namespace

std::string ejectProblem(std::string_view error, std::string_view message, std::string_view volumeName) {
    if (isOneOf(error, diskErrors, {"DeviceBusy"})) return busySentence(message, volumeName);
    if (isOneOf(error, diskErrors, {"NotAuthorized", "NotAuthorizedCanObtain"}) ||
        isOneOf(error, busErrors, {"AccessDenied", "AuthFailed", "InteractiveAuthorizationRequired"})) {
        return localized("You don't have permission to eject it.");
    }
    if (isOneOf(error, diskErrors, {"NotAuthorizedDismissed", "Cancelled"})) {
        return localized("Permission to eject it was not given.");
    }
    if (isOneOf(error, diskErrors, {"TimedOut", "Timedout"}) ||
        isOneOf(error, busErrors, {"NoReply", "Timeout", "TimedOut"})) {
        return localized("The system's disk service didn't answer in time.");
    }
    if (isOneOf(error, busErrors, {"ServiceUnknown", "NameHasNoOwner", "Disconnected"}) ||
        error.starts_with("org.freedesktop.DBus.Error.Spawn.")) {
        return diskServiceIsMissing();
    }
    if (isOneOf(error, busErrors, {"UnknownObject", "UnknownMethod", "UnknownInterface"})) {
        return localized("It was removed before it could be ejected.");
    }
    const auto why = reason(message);
    if (why.empty()) return localized("The system's disk service gave no reason.");
    return fmt::format("{}.", why);
}

std::string diskServiceIsMissing() {
    return localized(
        "The system's disk service (UDisks) isn't running. Unmount it in the way you mounted it, "
        "then take it out.");
}

} // namespace kelvara
