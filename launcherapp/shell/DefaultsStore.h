#pragma once

#include "launcherapp/operations/StateFile.h"
#include "launcherapp/platform/Observers.h"
#include "launcherapp/platform/Subscription.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace tessarine {

class Diagnostics;
class DirectoryWatcher;
class MainQueue;

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
/// may be edited by hand, also while the program runs: a save changes the keys that were set and
/// leaves all else in the file as it finds it, so keys that this program doesn't know survive,
/// and an edit that nobody saw coming does too. Main thread only; saves run in the background.
class DefaultsStore {
public:
    /// Reads the file. One that is no JSON object is logged, and counts as empty.
    DefaultsStore(MainQueue& queue, StateFile file, Diagnostics& diagnostics);
    ~DefaultsStore();
    DefaultsStore(const DefaultsStore&) = delete;
    DefaultsStore& operator=(const DefaultsStore&) = delete;

    /// Nothing when the key is absent or holds another type. An integer also serves as a double.
    template <typename T> std::optional<T> value(std::string_view key) const;

    /// Sets the key and saves. A failure to save is logged; the value counts all the same.
    void set(std::string_view key, const DefaultsValue& value);

    /// Takes the key away and saves, if it is there.
    void remove(std::string_view key);

    /// From now on an edit of the file counts within half a second, however it is saved. A file
    /// that is removed is one without keys; while it holds no JSON object, which is logged once,
    /// what stood before goes on.
    void follow(DirectoryWatcher& watcher);

    /// Calls `edited` with the keys that hold something else since somebody edited the file; all
    /// of them have their new values by then.
    Subscription onEdit(std::function<void(const std::vector<std::string>& keys)> edited);

private:
    struct Contents;

    void change(std::string_view key);
    void save();
    void saved(const std::string& text, std::uint64_t upTo);
    void lookSoon();
    void look();
    void take(const std::optional<std::string>& text);

    MainQueue& queue_;
    StateFile file_;
    Diagnostics& diagnostics_;
    std::unique_ptr<Contents> contents_;
    bool looksSoon_ = false;
    Subscription watch_;
    Observers<std::vector<std::string>> observers_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(); ///< for what comes back later
};

} // namespace tessarine
