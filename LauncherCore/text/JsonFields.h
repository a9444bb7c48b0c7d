#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <optional>
#include <utility>

namespace tessarine {

/// Reads the members of an object that somebody else may have written, each key once. A member of
/// another type than it should be, or a required one that is absent, spoils the whole; null stands
/// for absent.
class JsonFields {
public:
    /// Long texts are moved out of `value`, which outlives this object. A value that is no object
    /// is spoilt.
    explicit JsonFields(nlohmann::json& value);

    /// Nothing when the member is absent. For std::string, std::vector<std::string>, bool, double
    /// and std::int64_t; a whole number only where it is written as one.
    template <typename Value> std::optional<Value> optional(const char* key);

    /// The member whatever it is; null when it is absent.
    nlohmann::json* member(const char* key);

    /// What was read, or an empty value after noting that it is missing.
    template <typename Value> Value required(std::optional<Value> value) {
        if (!value)
            spoil();
        return std::move(value).value_or(Value());
    }

    void spoil() { isWhole_ = false; }

    bool isWhole() const { return isWhole_; }

    /// Whether the object has members that nobody asked for.
    bool hasOthers() const;

private:
    nlohmann::json& value_;
    std::size_t asked_ = 0; ///< members that are there
    bool isWhole_ = true;
};

} // namespace tessarine
