#pragma once

#include "launcherapp/query/rows/ClipRows.h"

#include <functional>
#include <string>

namespace tessarine {

class ClipboardPaster;
class ClipboardStore;
class ClipGroupsRuntime;
class ClipImages;
class MainQueue;
class Prefs;
class SearchModel;
struct Ability;

/// Connects the search model to the clipboard: its rows, its filter menu, its previews, and what
/// they do. Main thread only; what it refers to outlives it.
class ClipboardWiring {
public:
    struct Services {
        SearchModel& model;
        MainQueue& queue;
        Prefs& prefs;
        ClipboardStore& store;
        ClipGroupsRuntime& groups;
        ClipboardPaster& paster;
        ClipImages& images;
        std::function<Ability()> typing;  ///< whether keys can be sent on this desktop
        std::function<Ability()> copying; ///< whether anything can be put on its clipboard
        std::string home;                 ///< shown as "~" in paths
    };

    explicit ClipboardWiring(Services services);
    ClipboardWiring(const ClipboardWiring&) = delete;
    ClipboardWiring& operator=(const ClipboardWiring&) = delete;

private:
    void wireList();
    void wireFilters();
    void wireRows();
    void wireTyping();
    ClipRowSources sources();
    bool hideAndUse(const std::string& id,
                    const std::function<void(const ClipboardEntry& entry)>& use);
    void paste(const std::string& id);
    bool copyToTop(const std::string& id);
    void hidePanel();

    Services services_;
};

} // namespace tessarine
