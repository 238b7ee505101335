#pragma once

#include "services/CopyService.h"

#include <string>
#include <variant>

namespace kelvara {

/// What the copy sheet shows.
struct CopyIdle {
    friend bool operator==(const CopyIdle&, const CopyIdle&) = default;
};
struct CopyFailed {
    std::string message;
    friend bool operator==(const CopyFailed&, const CopyFailed&) = default;
};
using CopyState = std::variant<CopyIdle, CopyService::Progress, CopyService::Report, CopyFailed>;

} // namespace kelvara
