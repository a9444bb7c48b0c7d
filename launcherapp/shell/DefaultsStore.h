#pragma once

#include "launcherapp/operations/StateFile.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tessarine {

class Diagnostics;

/// What one key of the preferences may hold.
using DefaultsValue = std::variant<bool,
                                   std::int64_t,
                                   double,
                                   std::string,
                                   std::vector<std::string>,
                                   std::vector<double>,
                                   std::map<std::string, std::string>,
                                   std::map<std::string, bool>,
                                   std::map<std::string, std::int64_t>>;

/// The preferences file: one flat JSON object in which a key stands only when the user set it. It
/// may be edited by hand, and is read again at every start; keys that this program doesn't know
/// survive its saves. Main thread only; saves run in the background.
class DefaultsStore {
public:
    /// Reads the file. One that is no JSON object is logged, and counts as empty.
    DefaultsStore(StateFile file, Diagnostics& diagnostics);
    ~DefaultsStore();
    DefaultsStore(const DefaultsStore&) = delete;
    DefaultsStore& operator=(const DefaultsStore&) = delete;

    /// Nothing when the key is absent or holds another type. An integer also serves as a double.
    template <typename T> std::optional<T> value(std::string_view key) const;

    /// Sets the key and saves. A failure to save is logged; the value counts all the same.
    void set(std::string_view key, const DefaultsValue& value);

    /// Takes the key away and saves, if it is there.
    void remove(std::string_view key);

private:
    struct Contents;

    void save();

    StateFile file_;
    std::unique_ptr<Contents> contents_;
};

} // namespace tessarine
