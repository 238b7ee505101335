// Any bytes as a sidecar: reading and rating it neither crashes nor damages it.

#include "services/XMPService.h"
#include "support/FakeFileSystem.h"

#include <cstdlib>
#include <expat.h>
#include <memory>

namespace {

using namespace kelvara;

void require(bool condition) {
    if (!condition) std::abort();
}

/// The judgement of a parser that does not share the service's handling of namespaces.
bool isXMLWithNamespaces(std::string_view bytes) {
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser{
        XML_ParserCreateNS(nullptr, '\n'), &XML_ParserFree};
    return XML_Parse(parser.get(), bytes.data(), static_cast<int>(bytes.size()), XML_TRUE) == XML_STATUS_OK;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes{reinterpret_cast<const char*>(data), size};
    const auto before = XMPService::rating(bytes);
    const auto rating = *Rating::fromRawValue(before == Rating::fromRawValue(3) ? 4 : 3);

    const FileURL sidecar{"/a.xmp"};
    FakeFileSystem files;
    files.addFile(sidecar.path(), bytes);
    XMPService service{files, [] { return std::chrono::system_clock::from_time_t(1'000'000'000); }};
    if (!service.setRating(rating, sidecar)) {
        require(files.bytes(sidecar.path()) == bytes);
        return 0;
    }
    const auto after = files.bytes(sidecar.path()).value();
    require(XMPService::rating(after) == rating);
    require(!isXMLWithNamespaces(bytes) || isXMLWithNamespaces(after));
    require(service.setRating(rating, sidecar).hasValue());
    require(files.bytes(sidecar.path()) == after);
    return 0;
}
