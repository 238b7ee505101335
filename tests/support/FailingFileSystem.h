#pragma once

#include "platform/linux/LinuxFileSystem.h"

#include <functional>
#include <memory>
#include <optional>
#include <system_error>

namespace kelvara {

/// The real file system with accidents: each function that a test sets runs inside the operation of its name,
/// on the thread of the caller. Set before the operations begin.
class FailingFileSystem : public LinuxFileSystem {
public:
    /// Runs before a copy; an error makes it fail.
    std::function<std::optional<std::errc>(const FileURL& from, const FileURL& temporary)> onCopy;
    /// Runs before a new file is written; an error makes it fail.
    std::function<std::optional<std::errc>(const FileURL& temporary)> onCreate;
    /// Runs before a copy is made durable; an error makes that fail.
    std::function<std::optional<std::errc>(const FileURL& temporary)> onSync;
    /// Runs before a copy takes its name.
    std::function<void(const FileURL& temporary, const FileURL& destination)> onPlace;
    /// The size of a copy to report instead of the real one.
    std::function<std::int64_t(std::int64_t size)> onSize;
    /// Runs before the names in a folder are made durable; an error makes that fail.
    std::function<std::optional<std::errc>(const FileURL& folder)> onSyncNames;
    /// The capacity to report, instead of the real one when set; none is unknown.
    std::optional<std::optional<std::int64_t>> capacity;

    Result<std::unique_ptr<PendingCopy>, FileError> copyFile(const FileURL& from, const FileURL& temporary,
                                                             CopyReading reading,
                                                             std::stop_token stop) override {
        if (auto failure = onCopy ? onCopy(from, temporary) : std::nullopt)
            return Failure{error(temporary, *failure)};
        auto copy = LinuxFileSystem::copyFile(from, temporary, reading, std::move(stop));
        if (!copy) return copy;
        return std::unique_ptr<PendingCopy>{new FailingCopy{*this, temporary, std::move(*copy)}};
    }
    Result<std::unique_ptr<PendingCopy>, FileError> createFile(const FileURL& temporary,
                                                               std::string_view bytes) override {
        if (auto failure = onCreate ? onCreate(temporary) : std::nullopt)
            return Failure{error(temporary, *failure)};
        auto file = LinuxFileSystem::createFile(temporary, bytes);
        if (!file) return file;
        return std::unique_ptr<PendingCopy>{new FailingCopy{*this, temporary, std::move(*file)}};
    }
    Result<void, FileError> syncNames(const FileURL& folder) override {
        if (auto failure = onSyncNames ? onSyncNames(folder) : std::nullopt)
            return Failure{error(folder, *failure)};
        return LinuxFileSystem::syncNames(folder);
    }
    [[nodiscard]] std::optional<std::int64_t> availableCapacity(const FileURL& folder) const override {
        return capacity ? *capacity : LinuxFileSystem::availableCapacity(folder);
    }

private:
    class FailingCopy : public PendingCopy {
    public:
        FailingCopy(const FailingFileSystem& files, FileURL temporary, std::unique_ptr<PendingCopy> real)
            : m_files{files}, m_temporary{std::move(temporary)}, m_real{std::move(real)} {}

        [[nodiscard]] Result<std::int64_t, FileError> size() const override {
            auto size = m_real->size();
            if (size && m_files.onSize) return m_files.onSize(*size);
            return size;
        }
        [[nodiscard]] std::int64_t unwrittenBytes() const override { return m_real->unwrittenBytes(); }
        Result<void, FileError> sync() override {
            if (auto failure = m_files.onSync ? m_files.onSync(m_temporary) : std::nullopt)
                return Failure{error(m_temporary, *failure)};
            return m_real->sync();
        }
        [[nodiscard]] bool syncVolume() override { return !m_files.onSync && m_real->syncVolume(); }
        [[nodiscard]] Result<bool, FileError> isIntact() const override { return m_real->isIntact(); }
        Result<void, FileError> place(const FileURL& destination) override {
            if (m_files.onPlace) m_files.onPlace(m_temporary, destination);
            return m_real->place(destination);
        }

    private:
        const FailingFileSystem& m_files;
        FileURL m_temporary;
        std::unique_ptr<PendingCopy> m_real;
    };

    static FileError error(const FileURL& url, std::errc code) { return {url, std::make_error_code(code)}; }
};

} // namespace kelvara
