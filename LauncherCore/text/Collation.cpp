#include "LauncherCore/text/Collation.h"

#include "LauncherCore/text/UnicodeText.h"

#include <unicode/coll.h>

#include <cstdint>

namespace tessarine {

namespace {

icu::Locale collationLocale(std::string_view name) {
    const auto language = name.substr(0, name.find_first_of(".@"));
    // ICU reads "C" as an English of code-point order, in which every capital precedes "a".
    if (language.empty() || language == "C" || language == "POSIX")
        return icu::Locale::getRoot();
    return icu::Locale::createCanonical(std::string(name).c_str());
}

} // namespace

struct Collation::State {
    std::unique_ptr<icu::Collator> collator;
};

Collation::Collation(std::string_view locale) : state_(std::make_unique<State>()) {
    UErrorCode error = U_ZERO_ERROR;
    state_->collator.reset(icu::Collator::createInstance(collationLocale(locale), error));
    if (U_FAILURE(error)) {
        error = U_ZERO_ERROR;
        state_->collator.reset(icu::Collator::createInstance(icu::Locale::getRoot(), error));
    }
    if (state_->collator)
        state_->collator->setStrength(icu::Collator::SECONDARY);
}

Collation::~Collation() = default;
Collation::Collation(Collation&&) noexcept = default;
Collation& Collation::operator=(Collation&&) noexcept = default;

std::string Collation::sortKey(std::string_view text) const {
    // Without ICU's data there is no collator; the bytes themselves are an order too.
    if (!state_->collator)
        return std::string(text);
    const auto unicode = UnicodeText::decoded(text);
    std::string key(text.size() * 3 + 16, '\0');
    const auto fill = [&] {
        return state_->collator->getSortKey(unicode,
                                            reinterpret_cast<std::uint8_t*>(key.data()),
                                            static_cast<std::int32_t>(key.size()));
    };
    auto length = static_cast<std::size_t>(fill());
    if (length > key.size()) {
        key.resize(length);
        length = static_cast<std::size_t>(fill());
    }
    key.resize(length);
    return key;
}

} // namespace tessarine
