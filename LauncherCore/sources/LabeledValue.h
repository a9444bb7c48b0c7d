#pragma once

#include <string>

namespace tessarine {

/// One phone number or address of a contact, with the label it has there ("home", "work").
struct LabeledValue {
    std::string label;
    std::string value;

    bool operator==(const LabeledValue&) const = default;
};

} // namespace tessarine
