#include "launcherapp/platform/linux/watching/InotifyDirectoryWatcher.h"

#include "LauncherCore/text/Paths.h"
#include "launcherapp/platform/linux/files/FileDescriptor.h"

#include <QObject>
#include <QSocketNotifier>
#include <array>
#include <cstdint>
#include <cstring>
#include <map>
#include <optional>
#include <set>
#include <sys/inotify.h>
#include <utility>

namespace tessarine {

namespace {

constexpr std::uint32_t onItself = IN_ONLYDIR | IN_EXCL_UNLINK | IN_DELETE_SELF | IN_MOVE_SELF;
/// For a directory that somebody asked for.
constexpr std::uint32_t everyChange =
    onItself | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE | IN_ATTRIB;
/// For one above it, in which only an arrival matters.
constexpr std::uint32_t arrivals = onItself | IN_CREATE | IN_MOVED_TO;
constexpr std::uint32_t itsEnd = IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED | IN_UNMOUNT;

} // namespace

class InotifyDirectoryWatcher::State : public std::enable_shared_from_this<State> {
public:
    explicit State(MainQueue& queue)
        : queue_(queue), kernel_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

    void start() {
        if (!kernel_)
            return; // too many instances: nothing is watched, and whoever polls still finds changes
        notifier_ = std::make_unique<QSocketNotifier>(kernel_.number(), QSocketNotifier::Read);
        QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
            readEvents();
        });
    }

    int add(const std::vector<std::string>& directories,
            Seconds latency,
            std::function<void(const DirectoryChanges&)> changed) {
        const int id = ++lastWatch_;
        watches_.emplace(id, Watch{.latency = latency, .changed = std::move(changed)});
        for (const auto& directory : directories) {
            auto& request = requests_[directory];
            request.watches.insert(id);
            if (!request.placedAt)
                place(directory, request);
        }
        return id;
    }

    void remove(int id) {
        watches_.erase(id);
        for (auto it = requests_.begin(); it != requests_.end();) {
            it->second.watches.erase(id);
            if (!it->second.watches.empty()) {
                ++it;
                continue;
            }
            displace(it->first, it->second);
            it = requests_.erase(it);
        }
    }

private:
    /// One watch that somebody holds.
    struct Watch {
        Seconds latency;
        std::function<void(const DirectoryChanges&)> changed;
        std::set<std::string> directories = {}; ///< changed since the last report
        bool dropped = false;
        bool reportPending = false;
        std::optional<Seconds> lastReport = {};
    };

    /// One directory that watches ask for.
    struct Request {
        std::set<int> watches;
        /// Itself, or the nearest one above it that exists; nothing when neither can be watched.
        std::optional<std::string> placedAt;
    };

    /// One directory that the kernel watches. Two paths of one directory share a descriptor.
    struct Place {
        int descriptor = -1;
        std::set<std::string> requests;
    };

    std::optional<int> kernelWatch(const std::string& path, std::uint32_t mask) const {
        const int descriptor =
            ::inotify_add_watch(kernel_.number(), path.c_str(), mask | IN_MASK_ADD);
        return descriptor < 0 ? std::nullopt : std::optional(descriptor);
    }

    void attach(const std::string& directory,
                Request& request,
                const std::string& path,
                int descriptor) {
        places_[path].descriptor = descriptor;
        places_[path].requests.insert(directory);
        pathsOf_[descriptor].insert(path);
        request.placedAt = path;
    }

    void place(const std::string& directory, Request& request) {
        if (!kernel_)
            return;
        for (std::string path = directory;; path = std::string(Paths::parent(path))) {
            const auto descriptor = kernelWatch(path, path == directory ? everyChange : arrivals);
            if (descriptor) {
                attach(directory, request, path, *descriptor);
                break;
            }
            if (path == "/")
                return;
        }
        // What arrived between the failed try and the watch above it told nobody.
        if (*request.placedAt == directory)
            return;
        if (const auto descriptor = kernelWatch(directory, everyChange)) {
            displace(directory, request);
            attach(directory, request, directory, *descriptor);
            noteChange(directory, request);
        }
    }

    void displace(const std::string& directory, Request& request) {
        if (!request.placedAt)
            return;
        const auto place = places_.find(*request.placedAt);
        request.placedAt.reset();
        if (place == places_.end())
            return;
        place->second.requests.erase(directory);
        if (!place->second.requests.empty())
            return;
        const int descriptor = place->second.descriptor;
        auto& paths = pathsOf_[descriptor];
        paths.erase(place->first);
        places_.erase(place);
        if (paths.empty()) {
            pathsOf_.erase(descriptor);
            ::inotify_rm_watch(kernel_.number(), descriptor);
        }
    }

    void readEvents() {
        // Enough for some hundred events; what is left wakes us again, after the rest of the loop.
        alignas(inotify_event) std::array<char, 32768> buffer;
        const auto length = ::read(kernel_.number(), buffer.data(), buffer.size());
        const auto alive = shared_from_this();
        for (ssize_t at = 0; at < length;) {
            inotify_event event;
            std::memcpy(&event, buffer.data() + at, sizeof event);
            at += static_cast<ssize_t>(sizeof event + event.len);
            if (event.mask & IN_Q_OVERFLOW)
                noteDropped();
            else
                handle(event.wd, event.mask);
        }
        reportAll();
    }

    void handle(int descriptor, std::uint32_t mask) {
        const auto found = pathsOf_.find(descriptor);
        if (found == pathsOf_.end())
            return;
        const auto paths = found->second; // placing anew changes the original
        if (mask & itsEnd) {
            for (const auto& path : paths)
                loseDirectory(path);
            return;
        }
        for (const auto& path : paths) {
            for (const auto& directory : requestsAt(path)) {
                auto& request = requests_.at(directory);
                if (path == directory) {
                    noteChange(directory, request);
                    continue;
                }
                // Something arrived above: it may be the directory itself, or one nearer to it.
                displace(directory, request);
                place(directory, request);
                if (request.placedAt == directory)
                    noteChange(directory, request);
            }
        }
    }

    /// The directory was removed, renamed or unmounted: what was asked for there is looked for
    /// again by its path.
    void loseDirectory(const std::string& path) {
        for (const auto& directory : requestsAt(path)) {
            auto& request = requests_.at(directory);
            displace(directory, request);
            place(directory, request);
            if (path == directory)
                noteChange(directory, request);
        }
    }

    std::set<std::string> requestsAt(const std::string& path) const {
        const auto place = places_.find(path);
        return place == places_.end() ? std::set<std::string>{} : place->second.requests;
    }

    void noteChange(const std::string& directory, const Request& request) {
        for (const int id : request.watches)
            watches_.at(id).directories.insert(directory);
        reportSoon();
    }

    /// The kernel's queue was full: a directory's end or arrival may be among what was lost, so
    /// each is looked for again.
    void noteDropped() {
        for (auto& [id, watch] : watches_)
            watch.dropped = true;
        for (auto& [directory, request] : requests_) {
            displace(directory, request);
            place(directory, request);
        }
    }

    /// For changes found outside `readEvents`, which reports at its end.
    void reportSoon() {
        queue_.post([weak = weak_from_this()] {
            if (const auto state = weak.lock())
                state->reportAll();
        });
    }

    void reportAll() {
        std::set<int> due;
        for (const auto& [id, watch] : watches_) {
            if ((watch.dropped || !watch.directories.empty()) && !watch.reportPending)
                due.insert(id);
        }
        for (const int id : due)
            reportWhenDue(id);
    }

    void reportWhenDue(int id) {
        const auto found = watches_.find(id);
        if (found == watches_.end())
            return;
        auto& watch = found->second;
        const auto now = queue_.uptime();
        const auto next = watch.lastReport ? *watch.lastReport + watch.latency : now;
        if (next <= now) {
            report(id);
            return;
        }
        watch.reportPending = true;
        queue_.postAfter(next - now, [weak = weak_from_this(), id] {
            if (const auto state = weak.lock())
                state->report(id);
        });
    }

    void report(int id) {
        const auto found = watches_.find(id);
        if (found == watches_.end())
            return;
        auto& watch = found->second;
        watch.reportPending = false;
        watch.lastReport = queue_.uptime();
        const DirectoryChanges changes{
            .directories = {watch.directories.begin(), watch.directories.end()},
            .dropped = watch.dropped};
        watch.directories.clear();
        watch.dropped = false;
        const auto changed = watch.changed; // the callback may end this very watch
        changed(changes);
    }

    MainQueue& queue_;
    FileDescriptor kernel_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::map<int, Watch> watches_;
    std::map<std::string, Request> requests_;
    std::map<std::string, Place> places_;          ///< by path
    std::map<int, std::set<std::string>> pathsOf_; ///< by the kernel's descriptor
    int lastWatch_ = 0;
};

InotifyDirectoryWatcher::InotifyDirectoryWatcher(MainQueue& queue)
    : state_(std::make_shared<State>(queue)) {
    state_->start();
}

InotifyDirectoryWatcher::~InotifyDirectoryWatcher() = default;

Subscription InotifyDirectoryWatcher::watch(const std::vector<std::string>& directories,
                                            Seconds latency,
                                            std::function<void(const DirectoryChanges&)> changed) {
    const int id = state_->add(directories, latency, std::move(changed));
    return Subscription([weak = std::weak_ptr(state_), id] {
        if (const auto state = weak.lock())
            state->remove(id);
    });
}

} // namespace tessarine
