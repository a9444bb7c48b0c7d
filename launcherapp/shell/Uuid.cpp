#include "launcherapp/shell/Uuid.h"

#include <cstdint>
#include <cstdio>
#include <random>

namespace tessarine {

std::string randomUuid() {
    static std::mt19937_64 generator{std::random_device{}()};
    const std::uint64_t high = (generator() & ~0xf000ull) | 0x4000ull;
    const std::uint64_t low = (generator() & ~(0xc0ull << 56)) | (0x80ull << 56);
    char text[37];
    std::snprintf(text,
                  sizeof text,
                  "%08x-%04x-%04x-%04x-%012llx",
                  static_cast<unsigned>(high >> 32),
                  static_cast<unsigned>(high >> 16 & 0xffff),
                  static_cast<unsigned>(high & 0xffff),
                  static_cast<unsigned>(low >> 48),
                  static_cast<unsigned long long>(low & 0xffffffffffffull));
    return text;
}

} // namespace tessarine
