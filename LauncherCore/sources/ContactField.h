#pragma once

#include <string>

namespace tessarine {

/// One thing that an address book knows of a person. A value; any thread.
struct ContactField {
    enum class Kind { phone, email, url, address, date, text };

    std::string id; ///< the same in every run; told apart from the person's other fields by it
    Kind kind = Kind::text;
    std::string label;   ///< "mobile", "birthday"; may be empty
    std::string value;   ///< raw
    std::string display; ///< as shown, on one line

    bool operator==(const ContactField&) const = default;
};

} // namespace tessarine
