#include "platform/linux/MemoryPressure.h"

#include <array>
#include <charconv>
#include <chrono>
#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>
#include <utility>

namespace kelvara {
namespace {

// 150 ms lost in 2 s. Windows of whole 2 s are those that the kernel allows everybody.
constexpr std::string_view trigger{"some 150000 2000000"};
constexpr std::int64_t stallShare = 13;
constexpr std::chrono::seconds lookInterval{4};

/// "some avg10=0.00 avg60=0.00 avg300=0.00 total=123" is the first line, in microseconds.
std::optional<std::int64_t> totalStall(std::string_view pressure) {
    constexpr std::string_view kind{"some "}, field{"total="};
    const auto line = pressure.substr(0, pressure.find('\n'));
    const auto at = line.find(field);
    if (!line.starts_with(kind) || at == std::string_view::npos) return std::nullopt;
    const auto digits = line.substr(at + field.size());
    std::int64_t total = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), total);
    if (result.ec != std::errc{}) return std::nullopt;
    return total;
}

} // namespace

bool StallMeter::isShort(std::string_view pressure, std::int64_t microsecondsSinceLast) {
    const auto total = totalStall(pressure);
    const auto last = std::exchange(m_total, total);
    return total && last && (*total - *last) * stallShare > microsecondsSinceLast;
}

MemoryPressure::MemoryPressure(std::function<void()> onShortage, const char* pressureFile)
    : m_onShortage{std::move(onShortage)}, m_file{::open(pressureFile, O_RDWR | O_NONBLOCK | O_CLOEXEC)} {
    // The end mark belongs to it.
    if (m_file.isOpen() && ::write(m_file.get(), trigger.data(), trigger.size() + 1) > 0) {
        m_notifier = std::make_unique<QSocketNotifier>(m_file.get(), QSocketNotifier::Exception);
        QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                         [this] { report(); });
        return;
    }
    // Older kernels let only the administrator ask to be called.
    m_file = FileDescriptor{::open(pressureFile, O_RDONLY | O_CLOEXEC)};
    if (!m_file.isOpen()) return;
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { look(); });
    m_timer.setTimerType(Qt::VeryCoarseTimer);
    m_timer.start(lookInterval);
}

void MemoryPressure::look() {
    std::array<char, 256> text{};
    const auto length = ::pread(m_file.get(), text.data(), text.size(), 0);
    const std::string_view pressure{text.data(), length > 0 ? static_cast<std::size_t>(length) : 0};
    if (m_meter.isShort(pressure, std::chrono::microseconds{lookInterval}.count())) report();
}

void MemoryPressure::report() {
    m_onShortage();
    // The allocator keeps freed blocks below its largest one otherwise.
    ::malloc_trim(0);
}

} // namespace kelvara
