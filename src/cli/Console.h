#pragma once

#include "model/FileURL.h"

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace kelvara::cli {

/// What the program ends with; docs/cli.md promises the numbers.
enum class ExitCode { success = 0, failure = 1, usage = 2, interrupted = 130 };

/// Why a command can't go on: the sentence for stderr and the exit code.
struct CommandError {
    std::string text;
    ExitCode code = ExitCode::failure;
};

using JSON = nlohmann::ordered_json;

/// A name for people to read on one line of a terminal: what is neither text nor printable is replaced.
[[nodiscard]] std::string printable(std::string_view bytes);

/// "file:///card/caf%E9.jpg": names a file exactly, in plain ASCII, whatever bytes its path is made of.
[[nodiscard]] std::string fileURI(const FileURL& url);

/// Sets one key to the path as text and another to its exact URI.
void setPath(JSON& object, const char* key, const char* uriKey, const FileURL& url);

void printError(std::string_view text);
/// Prints what went wrong; gives its code.
[[nodiscard]] ExitCode fail(const CommandError& error);
void printText(std::string_view text);
void printJSON(const JSON& json);

/// `code`, or failure where not all that was printed has been written.
[[nodiscard]] ExitCode finished(ExitCode code);

} // namespace kelvara::cli
