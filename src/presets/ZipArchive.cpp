#include "presets/ZipArchive.h"

#include <array>
#include <zip.h>

namespace kelvara {

void ZipArchive::Close::operator()(zip* archive) const { ::zip_discard(archive); }

Result<ZipArchive, ZipArchive::Problem> ZipArchive::open(std::string bytes) {
    ZipArchive result;
    result.m_bytes = std::make_unique<const std::string>(std::move(bytes));
    auto* source = ::zip_source_buffer_create(result.m_bytes->data(), result.m_bytes->size(), 0, nullptr);
    if (source == nullptr) return Failure{Problem::damaged};
    result.m_archive.reset(::zip_open_from_source(source, ZIP_RDONLY, nullptr));
    if (!result.m_archive) {
        ::zip_source_free(source); // the archive owns it only once it is open
        return Failure{Problem::damaged};
    }
    const auto count = ::zip_get_num_entries(result.m_archive.get(), 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        const char* name = ::zip_get_name(result.m_archive.get(), static_cast<zip_uint64_t>(i), 0);
        result.m_names.emplace_back(name != nullptr ? name : "");
    }
    return result;
}

Result<std::string, ZipArchive::Problem> ZipArchive::read(std::size_t entry, std::size_t maximumBytes) const {
    zip_stat_t status;
    ::zip_stat_init(&status);
    if (::zip_stat_index(m_archive.get(), entry, 0, &status) != 0) return Failure{Problem::damaged};
    if ((status.valid & ZIP_STAT_ENCRYPTION_METHOD) != 0 && status.encryption_method != ZIP_EM_NONE) {
        return Failure{Problem::encrypted};
    }
    const std::unique_ptr<zip_file_t, int (*)(zip_file_t*)> file{::zip_fopen_index(m_archive.get(), entry, 0),
                                                                 ::zip_fclose};
    if (!file) return Failure{Problem::damaged};

    std::string bytes;
    std::array<char, 64 * 1024> part{};
    for (;;) {
        const auto length = ::zip_fread(file.get(), part.data(), part.size());
        if (length < 0) return Failure{Problem::damaged};
        if (length == 0) return bytes;
        bytes.append(part.data(), static_cast<std::size_t>(length));
        if (bytes.size() > maximumBytes) return Failure{Problem::tooLarge};
    }
}

} // namespace kelvara
