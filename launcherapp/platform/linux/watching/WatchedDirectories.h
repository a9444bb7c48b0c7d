#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// The directories of one tree that are to be watched, and which of the kernel's watches belongs
/// to each: many of them in little memory. One directory may have two paths (a bind mount), which
/// then share a watch. Knows nothing of the kernel itself; one thread only.
class WatchedDirectories {
public:
    /// An index is good until the next `replace`.
    using Index = std::uint32_t;

    enum class State : std::uint8_t {
        gone,    ///< not there any more, or not ours to watch
        waiting, ///< for its watch
        watched,
        polled,  ///< for want of watches
        resting, ///< polled for a while, since too much happens there
    };

    /// No moment of a file system.
    static constexpr std::int64_t noStamp = std::numeric_limits<std::int64_t>::min();

    struct Directory {
        std::uint32_t pathBegin = 0;
        int descriptor = -1;          ///< of the kernel, while `watched`
        std::int64_t stamp = noStamp; ///< when it last changed, for those that are polled
        State state = State::waiting;
        /// Another directory may have its path by now.
        bool isDoubtful = false;
    };

    std::size_t size() const { return directories_.size(); }

    const char* path(Index index) const { return paths_.c_str() + at(index).pathBegin; }

    const Directory& at(Index index) const { return directories_[index]; }

    /// How many are in a state.
    std::size_t count(State state) const { return counts_[static_cast<std::size_t>(state)]; }

    /// The directory and those below it, in the order of their paths.
    std::vector<Index> atOrBelow(std::string_view path) const;

    std::optional<Index> find(std::string_view path) const;

    /// Those that share this watch.
    std::vector<Index> sharing(int descriptor) const;

    bool isInUse(int descriptor) const { return !sharing(descriptor).empty(); }

    void setState(Index index, State state);

    void setStamp(Index index, std::int64_t stamp) { directories_[index].stamp = stamp; }

    void setDoubtful(Index index) { directories_[index].isDoubtful = true; }

    /// The directory is watched by this descriptor from now on.
    void attach(Index index, int descriptor);

    /// Takes the directory's watch from it. Gives the descriptor if nobody uses that any more.
    std::optional<int> detach(Index index);

    /// Makes these the directories. One that was among them before keeps its state, unless it is
    /// gone or doubtful: then it waits, and loses its watch, as those do that are no longer among
    /// them. Gives the watches that nobody uses any more.
    std::vector<int> replace(std::vector<std::string> paths);

private:
    struct Link {
        int descriptor;
        Index index; ///< `unlinked` when it no longer counts
    };

    static constexpr Index unlinked = std::numeric_limits<Index>::max();

    std::size_t lowerBound(std::string_view path) const;
    void link(int descriptor, Index index);

    std::string paths_;                  ///< each with a zero byte after it
    std::vector<Directory> directories_; ///< by path, by its bytes
    std::vector<Link> links_;            ///< by descriptor
    std::size_t unlinkedCount_ = 0;
    std::array<std::size_t, 5> counts_{};
};

} // namespace tessarine
