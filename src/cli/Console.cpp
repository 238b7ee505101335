#include "cli/Console.h"

#include <cstdint>
#include <cstdio>
#include <fmt/format.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace kelvara::cli {

std::string printable(std::string_view bytes) {
    // Decoding replaces what is no UTF-8; control characters could move the cursor or fake a line.
    const auto text = icu::UnicodeString::fromUTF8({bytes.data(), static_cast<std::int32_t>(bytes.size())});
    icu::UnicodeString shown;
    for (std::int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        const auto character = text.char32At(i);
        shown.append(u_iscntrl(character) ? UChar32{0xFFFD} : character);
    }
    std::string result;
    shown.toUTF8String(result);
    return result;
}

std::string fileURI(const FileURL& url) { return url.uri(); }

void setPath(JSON& object, const char* key, const char* uriKey, const FileURL& url) {
    object[key] = url.path();
    object[uriKey] = fileURI(url);
}

void printError(std::string_view text) { fmt::print(stderr, "kelvara-cli: {}\n", text); }

ExitCode fail(const CommandError& error) {
    printError(error.text);
    return error.code;
}

void printText(std::string_view text) { std::fwrite(text.data(), 1, text.size(), stdout); }

void printJSON(const JSON& json) {
    // Paths that are no text must not make the output invalid; the URI beside them is exact.
    printText(json.dump(2, ' ', false, JSON::error_handler_t::replace) + '\n');
}

ExitCode finished(ExitCode code) {
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return code;
    printError("The output couldn't be written.");
    return ExitCode::failure;
}

} // namespace kelvara::cli
