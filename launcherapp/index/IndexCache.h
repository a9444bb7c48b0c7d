#pragma once

#include "LauncherCore/index/ItemList.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

class NameIndex;

/// The form in which the index outlives the program: a JSON array of objects with the keys "id",
/// "name", "norm", "isFolder" and "ext". It only saves time at start, so whatever is wrong with it
/// makes it count as absent. Pure; any thread.
namespace IndexCache {

/// Far above the largest index; a larger file is something else.
inline constexpr std::size_t maximumBytes = std::size_t{512} << 20;

/// The document. Items whose path is not UTF-8 can't be said in JSON and are left out.
std::string document(const NameIndex& index);

/// The items that `isWanted` accepts by their path. Nothing for a text that is no such document;
/// an empty list for one without items.
std::optional<ItemList> items(std::string document,
                              const std::function<bool(std::string_view id)>& isWanted);

} // namespace IndexCache
} // namespace tessarine
