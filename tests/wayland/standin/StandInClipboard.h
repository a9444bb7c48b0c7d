#pragma once

#include "launcherapp/platform/linux/files/FileDescriptor.h"
#include "tests/wayland/standin/StandInCompositor.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tessarine {

/// A stand-in's clipboard, which programs reach by ext-data-control alone. Of them it hears
/// "watch", "unwatch", "claim", "drop claim" and "want TYPE". Main thread only.
class StandInClipboard {
public:
    /// Called on the compositor's thread for each program that wants a content; the pipe closes
    /// when it is let go of.
    using Answer = std::function<void(const std::string& type, FileDescriptor into)>;

    explicit StandInClipboard(StandInCompositor& compositor);
    /// Lets all programs go.
    ~StandInClipboard();
    StandInClipboard(const StandInClipboard&) = delete;
    StandInClipboard& operator=(const StandInClipboard&) = delete;

    /// Another program puts something there. Without types it empties it.
    void copy(const std::vector<std::string>& types, Answer answer = {});

    /// Another program wants what lies there: the end of a pipe that it reads, which nobody writes
    /// into when nothing lies there.
    FileDescriptor paste(const std::string& type);

    /// What lies there.
    std::vector<std::string> types();

    /// It is shown no more to the programs that watch it now.
    void finish();

    /// Called instead of taking what a program puts there; on the compositor's thread. Set before
    /// anybody does.
    std::function<void()> onClaim;

private:
    struct Requests;
    struct Content;

    void put(std::shared_ptr<Content> content);
    void tell(wl_resource* device);
    void forget(wl_resource* source);

    StandInCompositor& compositor_;
    StandInCompositor::Service service_;
    // Of the compositor's thread:
    std::vector<wl_resource*> devices_;
    std::shared_ptr<Content> content_; ///< null when nothing lies there
};

} // namespace tessarine
