#pragma once

#include <cstdint>

namespace tessarine {

/// How long clippings are kept. The default keeps 500, however old.
struct ClipRetention {
    std::int64_t textDays = 0;  ///< 0 or less: texts never age out
    std::int64_t fileDays = 0;  ///< 0 or less: file lists never age out
    std::int64_t imageDays = 0; ///< 0 or less: pictures never age out
    std::int64_t keep = 500;    ///< clippings at most

    bool operator==(const ClipRetention&) const = default;
};

} // namespace tessarine
