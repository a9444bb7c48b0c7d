#include "LauncherCore/text/JsonFields.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace tessarine {

namespace {

using Json = nlohmann::json;

bool fitsInteger(const Json& member) {
    return member.is_number_unsigned() ? std::in_range<std::int64_t>(member.get<std::uint64_t>())
                                       : member.is_number_integer();
}

template <typename Value> bool isA(const Json& member) {
    if constexpr (std::is_same_v<Value, std::string>)
        return member.is_string();
    else if constexpr (std::is_same_v<Value, bool>)
        return member.is_boolean();
    else if constexpr (std::is_same_v<Value, double>)
        return member.is_number();
    else if constexpr (std::is_same_v<Value, std::int64_t>)
        return fitsInteger(member);
    else
        return member.is_array() && std::ranges::all_of(member, &Json::is_string);
}

} // namespace

JsonFields::JsonFields(Json& value) : value_(value), isWhole_(value.is_object()) {}

Json* JsonFields::member(const char* key) {
    if (!value_.is_object())
        return nullptr;
    const auto found = value_.find(key);
    if (found == value_.end())
        return nullptr;
    ++asked_;
    return found->is_null() ? nullptr : &*found;
}

template <typename Value> std::optional<Value> JsonFields::optional(const char* key) {
    auto* found = member(key);
    if (!found)
        return std::nullopt;
    if (!isA<Value>(*found)) {
        spoil();
        return std::nullopt;
    }
    if constexpr (std::is_same_v<Value, std::string>)
        return std::move(found->get_ref<std::string&>());
    else
        return found->get<Value>();
}

template std::optional<std::string> JsonFields::optional(const char*);
template std::optional<std::vector<std::string>> JsonFields::optional(const char*);
template std::optional<bool> JsonFields::optional(const char*);
template std::optional<double> JsonFields::optional(const char*);
template std::optional<std::int64_t> JsonFields::optional(const char*);

bool JsonFields::hasOthers() const {
    return value_.is_object() && value_.size() > asked_;
}

} // namespace tessarine
