#pragma once

#include <cstdlib>
#include <memory>

namespace tessarine {

/// Frees what xcb hands out.
struct XcbFree {
    void operator()(void* memory) const { std::free(memory); }
};

template <typename Reply> using XcbOwned = std::unique_ptr<Reply, XcbFree>;

} // namespace tessarine
