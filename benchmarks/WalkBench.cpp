// The walk of a tree that the kernel has in memory, beside a bare opendir/readdir loop over the
// very same directories. Bar: 1.2 times the loop, by the median of the ratios of the rounds. Then
// what `reconcile` takes when one directory of the tree changed.
//
// WalkBench [FOLDER]: the trees are made below FOLDER, or the system's temporary folder, and
// removed at the end.

#include "benchmarks/TreeGenerator.h"
#include "launcherapp/index/walk/IndexWalker.h"
#include "launcherapp/platform/linux/files/PosixDirectoryReader.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <filesystem>
#include <fstream>

namespace tessarine {
namespace {

constexpr double bar = 1.2;
constexpr int rounds = 21;
constexpr std::array<std::size_t, 2> entryCounts{100'000, 400'000};

/// Deep and large enough for everything the trees hold.
constexpr IndexWalker::Policy everything{.folderDepth = 20, .fileDepth = 20, .budget = 10'000'000};

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

/// How many entries there are, ".", ".." and all.
std::size_t bareLoop(const std::vector<std::string>& directories) {
    std::size_t count = 0;
    for (const auto& path : directories) {
        DIR* directory = ::opendir(path.c_str());
        if (!directory)
            continue;
        while (::readdir(directory))
            ++count;
        ::closedir(directory);
    }
    return count;
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

template <typename Function> double millisecondsOf(const Function& function) {
    const double began = now();
    function();
    return (now() - began) * 1000;
}

class Scratch {
public:
    explicit Scratch(const std::string& above) : path((above + "/tessarine-walk-XXXXXX")) {
        if (!::mkdtemp(path.data())) {
            std::perror(path.c_str());
            std::exit(1);
        }
    }

    ~Scratch() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    std::string path;
};

void measureReconcile(const IndexWalker& walker, const std::string& root, const ItemList& items) {
    const auto folder = [&] {
        for (std::size_t i = items.size() / 2; i < items.size(); ++i) {
            if (items.isFolder(i))
                return items.id(i);
        }
        return root;
    }();
    std::vector<double> times;
    std::vector<double> idle;
    auto current = items;
    for (int round = 0; round < rounds; ++round) {
        const std::vector<std::string> changed{folder};
        idle.push_back(walker.reconcile(root, changed, everything, current, changed.size()).millis);
        std::ofstream(folder + "/new file " + std::to_string(round) + ".txt");
        auto repaired = walker.reconcile(root, changed, everything, current, changed.size());
        if (repaired.added != 1)
            std::exit(1);
        times.push_back(repaired.millis);
        current = std::move(repaired.items);
    }
    std::printf("  reconcile, one directory: %.1f ms with a file more, %.1f ms with no change "
                "(medians)\n",
                median(times),
                median(idle));
}

bool measure(const std::string& above, std::size_t entryCount) {
    const Scratch folder(above);
    makeTree(folder.path, plannedTree(entryCount));
    const IndexWalker walker(std::make_shared<PosixDirectoryReader>(), now);

    const auto first = walker.walkTree(folder.path, 1, everything);
    std::vector<std::string> directories{folder.path};
    for (std::size_t i = 0; i < first.items.size(); ++i) {
        if (first.items.isFolder(i))
            directories.push_back(first.items.id(i));
    }
    const auto dots = 2 * directories.size();
    if (first.items.size() != entryCount || bareLoop(directories) != entryCount + dots) {
        std::printf("the walks disagree with the tree: %zu items\n", first.items.size());
        return false;
    }

    std::vector<double> bare;
    std::vector<double> ours;
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        bare.push_back(millisecondsOf([&] { bareLoop(directories); }));
        ours.push_back(walker.walkTree(folder.path, 1, everything).millis);
        ratios.push_back(ours.back() / bare.back());
    }
    std::printf("%zu entries in %zu directories: bare loop %.1f ms, walkTree %.1f ms (medians)\n"
                "  ratio: median %.2f, best %.2f, worst %.2f; bar %.1f\n",
                entryCount,
                directories.size(),
                median(bare),
                median(ours),
                median(ratios),
                *std::ranges::min_element(ratios),
                *std::ranges::max_element(ratios),
                bar);
    measureReconcile(walker, folder.path, first.items);
    return median(ratios) <= bar;
}

} // namespace
} // namespace tessarine

int main(int argc, char** argv) {
    const std::string above = argc > 1 ? argv[1] : std::filesystem::temp_directory_path().string();
    bool isWithin = true;
    for (const auto entryCount : tessarine::entryCounts)
        isWithin = tessarine::measure(above, entryCount) && isWithin;
    return isWithin ? 0 : 1;
}
