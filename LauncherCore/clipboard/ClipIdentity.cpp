#include "LauncherCore/clipboard/ClipIdentity.h"

#include <openssl/evp.h>

#include <array>
#include <initializer_list>
#include <memory>
#include <new>

namespace tessarine {

namespace {

constexpr std::size_t keptBytes = 12;

struct FreeContext {
    void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
};

/// Of the pieces one behind the other.
std::string digest(std::initializer_list<std::string_view> pieces) {
    const std::unique_ptr<EVP_MD_CTX, FreeContext> context(EVP_MD_CTX_new());
    std::array<unsigned char, EVP_MAX_MD_SIZE> bytes{};
    bool worked = context && EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) == 1;
    for (const auto piece : pieces)
        worked = worked && EVP_DigestUpdate(context.get(), piece.data(), piece.size()) == 1;
    // Nothing but a lack of memory makes it fail, and an id that is none would lose clippings.
    if (!worked || EVP_DigestFinal_ex(context.get(), bytes.data(), nullptr) != 1)
        throw std::bad_alloc();
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < keptBytes; ++i) {
        text += digits[bytes[i] >> 4];
        text += digits[bytes[i] & 0xf];
    }
    return text;
}

} // namespace

std::string ClipIdentity::ofText(std::string_view text) {
    return digest({"text:", text});
}

std::string ClipIdentity::ofFiles(std::string_view paths) {
    return digest({"file:", paths});
}

std::string ClipIdentity::ofPicture(std::string_view bytes) {
    return digest({bytes});
}

} // namespace tessarine
