#pragma once

#include "platform/Trash.h"
#include "support/TemporaryFolder.h"

#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace kelvara {

/// A Trash of the test's own for real files; refuses what the test names. May be used from several threads.
class FakeTrash : public Trash {
public:
    Result<void, FileError> moveToTrash(const FileURL& url) override {
        const std::scoped_lock lock{m_mutex};
        if (const auto refusal = m_refusals.find(url); refusal != m_refusals.end()) {
            return Failure{FileError{url, std::make_error_code(refusal->second)}};
        }
        std::error_code code;
        std::filesystem::rename(url.path(), m_folder.at(std::to_string(m_names.size())).path(), code);
        if (code) return Failure{FileError{url, code}};
        m_names.emplace_back(url.name());
        return {};
    }
    void refuse(const FileURL& url, std::errc reason = std::errc::permission_denied) {
        m_refusals[url] = reason;
    }
    /// In the order in which the files came.
    [[nodiscard]] std::vector<std::string> names() const {
        const std::scoped_lock lock{m_mutex};
        return m_names;
    }

private:
    TemporaryFolder m_folder;
    mutable std::mutex m_mutex;
    std::map<FileURL, std::errc> m_refusals;
    std::vector<std::string> m_names;
};

} // namespace kelvara
