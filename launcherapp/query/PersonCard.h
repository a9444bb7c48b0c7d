#pragma once

#include "LauncherCore/sources/ContactField.h"
#include "launcherapp/platform/Image.h"

#include <optional>
#include <string>
#include <vector>

namespace tessarine {

/// A person as the panel shows them when their card is open. A value.
struct PersonCard {
    std::string id;   ///< of the contact, without the prefix of its row
    std::string name; ///< never empty
    std::string line; ///< what tells them apart, as "Boatbuilder, Tidewater Yard"; may be empty
    std::vector<ContactField> fields;
    std::optional<Image> photo;
};

} // namespace tessarine
