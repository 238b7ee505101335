#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvara {

/// The user's settings and remembered view state, one flat key each. A value that is missing or of another
/// type is empty, so that callers fall back to their default. Main thread only; writing never blocks on disk
/// and never fails loudly.
class Preferences {
public:
    virtual ~Preferences() = default;

    [[nodiscard]] virtual std::optional<bool> boolean(std::string_view key) const = 0;
    [[nodiscard]] virtual std::optional<std::int64_t> integer(std::string_view key) const = 0;
    [[nodiscard]] virtual std::optional<double> number(std::string_view key) const = 0;
    /// Texts are bytes: a path comes back as it went in, UTF-8 or not.
    [[nodiscard]] virtual std::optional<std::string> text(std::string_view key) const = 0;
    [[nodiscard]] virtual std::optional<std::vector<std::string>> texts(std::string_view key) const = 0;

    virtual void setBoolean(std::string_view key, bool value) = 0;
    virtual void setInteger(std::string_view key, std::int64_t value) = 0;
    virtual void setNumber(std::string_view key, double value) = 0;
    virtual void setText(std::string_view key, const std::string& value) = 0;
    virtual void setTexts(std::string_view key, const std::vector<std::string>& value) = 0;
    virtual void remove(std::string_view key) = 0;
};

} // namespace kelvara
