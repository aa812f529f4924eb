#pragma once

namespace kalvorn {

// What Java receives when an operation cannot reach its service.
constexpr int kServiceAbsent = -9999;
constexpr const char* kInvalidService = "INVALID_SERVICE";

// What a helper returns for arguments that cannot be.
constexpr int kInvalidParameter = -9999;

// What Java receives when something on this side of the service fails.
constexpr int kLocalFailure = -1;

}  // namespace kalvorn
