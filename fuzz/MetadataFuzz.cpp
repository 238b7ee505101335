// Any bytes as a photo: reading its metadata neither crashes nor hangs, and gives nothing that could not be
// shown.

#include "services/metadata/ExifReader.h"
#include "services/metadata/MetadataDump.h"
#include "services/metadata/TiffExcerpt.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace {

using namespace kelvara;

void require(bool condition) {
    if (!condition) std::abort();
}

/// A file in memory under a name with the extension of a kind of photo.
class PhotoFile {
public:
    explicit PhotoFile(const char* extension) {
        std::string path = "/dev/shm/kelvara-fuzz-XXXXXX";
        require(::mkdtemp(path.data()) != nullptr);
        m_folder = path;
        m_url = FileURL{path + "/photo." + extension};
    }
    PhotoFile(const PhotoFile&) = delete;
    PhotoFile& operator=(const PhotoFile&) = delete;
    ~PhotoFile() {
        ::unlink(m_url.path().c_str());
        ::rmdir(m_folder.c_str());
    }

    void write(const std::uint8_t* data, std::size_t size) const {
        const int descriptor = ::open(m_url.path().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        require(descriptor >= 0);
        require(::write(descriptor, data, size) == static_cast<ssize_t>(size));
        ::close(descriptor);
    }
    [[nodiscard]] const FileURL& url() const { return m_url; }

private:
    std::string m_folder;
    FileURL m_url;
};

} // namespace

/// The first byte chooses the kind of file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    static const std::array<PhotoFile, 3> files{PhotoFile{"jpg"}, PhotoFile{"heic"}, PhotoFile{"dng"}};
    const auto& file = files[data[0] % files.size()];
    file.write(data + 1, size - 1);
    const auto info = readExif(file.url(), {});
    require(info.summaryLine().size() < 2000);
    static_cast<void>(info.exposureBiasText() + info.focalLengthText());
    for (const auto& section : dumpMetadata(file.url(), {})) {
        require(!section.title.empty() && !section.rows.empty());
        for (const auto& row : section.rows) require(!row.value.empty());
    }
    return 0;
}
