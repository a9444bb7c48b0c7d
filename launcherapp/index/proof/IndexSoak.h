#pragma once

#include "launcherapp/index/FileIndex.h"
#include "launcherapp/index/walk/IndexWalker.h"
#include "launcherapp/operations/Selftest.h"
#include "launcherapp/platform/Subscription.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

struct Environment;
class MountedVolumes;
class Prefs;

/// A trial of the index under sustained change: a folder of its own below the home folder is
/// indexed and watched as a search folder would be, while files come, are renamed and go in it, 50
/// a second. It fails when the process used a tenth of a core or more, or when the last changes
/// are not found at the end. The folder is removed again. Main thread only.
class IndexSoak {
public:
    static constexpr int pokesPerSecond = 50;

    using Done = std::function<void(SelftestResult)>;

    /// `cpuSeconds` is the processor time that the process has used so far.
    IndexSoak(FileIndex::Doors doors,
              std::shared_ptr<IndexWalker> walker,
              Prefs& prefs,
              const Environment& environment,
              std::function<double()> cpuSeconds);
    ~IndexSoak();

    /// Once. `print` gets a line each second, `done` the verdict in the end.
    void start(double seconds, std::function<void(std::string_view)> print, Done done);

private:
    struct Trial;

    void write(const std::string& path);
    void poke();
    void pokeOnce();
    void settle();
    void awaitLastChanges();
    bool finds(const std::string& path) const;
    std::optional<std::string> problem() const; ///< why the last changes are not all found
    void finish();
    void report(const SelftestResult& result);

    FileIndex::Doors doors_;
    const std::shared_ptr<IndexWalker> walker_;
    Prefs& prefs_;
    const std::string home_;
    std::function<double()> cpuSeconds_;
    std::unique_ptr<Trial> trial_;
};

} // namespace tessarine
