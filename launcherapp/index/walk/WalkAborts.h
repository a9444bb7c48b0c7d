#pragma once

#include <functional>
#include <mutex>
#include <set>
#include <span>
#include <string>
#include <string_view>

namespace tessarine {

/// The paths that are being left, and the walks under way, which end because of them. All paths
/// are without slashes at their ends. Any thread.
class WalkAborts {
public:
    /// From now on, until it is readmitted, every walk that begins at or below the path ends.
    void add(const std::string& path);

    void readmit(std::span<const std::string> paths);

    /// Readmits each path once no walk at or below it is under way.
    void readmitWhenIdle(std::span<const std::string> paths);

    /// Whether a walk that began here is to end.
    bool contains(std::string_view start) const;

    /// Makes it known that a walk is under way, for as long as this lives.
    class Running {
    public:
        Running(WalkAborts& aborts, const std::string& start);
        ~Running();
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;

    private:
        WalkAborts& aborts_;
        std::multiset<std::string>::iterator entry_;
    };

private:
    void readmitIdle();

    mutable std::mutex lock_; ///< held for the length of a look-up alone
    std::set<std::string, std::less<>> paths_;
    std::set<std::string> left_;         ///< of them, those that only wait for their walks to end
    std::multiset<std::string> running_; ///< where the walks under way began
};

} // namespace tessarine
