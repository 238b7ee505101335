#pragma once

#include "support/TemporaryFolder.h"

#include <cstdlib>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace kelvara {

struct CommandResult {
    int exitCode = -1; ///< -1: ended by a signal.
    std::string output;
    std::string errors;

    [[nodiscard]] nlohmann::json json() const {
        auto parsed = nlohmann::json::parse(output, nullptr, false);
        EXPECT_FALSE(parsed.is_discarded()) << output;
        return parsed;
    }
};

/// Becomes the program; for the child of a fork.
[[noreturn]] inline void becomeProgram(const std::vector<std::string>& arguments) {
    std::vector<char*> pointers{const_cast<char*>(KELVARA_CLI)};
    for (const auto& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    ::execv(KELVARA_CLI, pointers.data());
    ::_exit(127);
}

inline int exitCodeOf(pid_t child) {
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Runs the real program on folders of the test's own.
class CommandLineTest : public testing::Test {
protected:
    CommandResult run(const std::vector<std::string>& arguments) const {
        const auto output = m_outputs.at("output");
        const auto errors = m_outputs.at("errors");
        const auto child = ::fork();
        if (child == 0) {
            const auto direct = [](const FileURL& file, int descriptor) {
                ::dup2(::open(file.path().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), descriptor);
            };
            ::setenv("TZ", "UTC0", 1);
            direct(output, STDOUT_FILENO);
            direct(errors, STDERR_FILENO);
            becomeProgram(arguments);
        }
        CommandResult result;
        result.exitCode = exitCodeOf(child);
        result.output = TemporaryFolder::read(output);
        result.errors = TemporaryFolder::read(errors);
        return result;
    }

    /// Writes a file onto the card that was modified so many seconds after the beginning of 1970.
    FileURL photo(std::string_view name, std::string_view bytes, time_t seconds) const {
        auto url = card.write(name, bytes);
        const struct timespec times[2] = {{seconds, 0}, {seconds, 0}};
        EXPECT_EQ(::utimensat(AT_FDCWD, url.path().c_str(), times, 0), 0);
        return url;
    }

    TemporaryFolder card;
    TemporaryFolder target;

private:
    TemporaryFolder m_outputs;
};

} // namespace kelvara
