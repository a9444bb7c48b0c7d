#include "LauncherCore/index/MountInfo.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace tessarine {

namespace {

struct Line {
    MountEntry entry;
    std::uint64_t parent = 0; ///< id of the mount on which this one stands
};

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    while (!text.empty()) {
        const auto end = std::min(text.find(separator), text.size());
        if (end > 0)
            parts.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return parts;
}

std::optional<std::uint64_t> number(std::string_view digits) {
    std::uint64_t value = 0;
    const auto* const end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, value);
    return result.ec == std::errc{} && result.ptr == end ? std::optional(value) : std::nullopt;
}

/// "ID PARENT MAJOR:MINOR ROOT PATH OPTIONS [TAG...] - TYPE SOURCE OPTIONS"
std::optional<Line> parseLine(std::string_view text) {
    constexpr std::ptrdiff_t fieldsBeforeTags = 6;
    const auto fields = split(text, ' ');
    if (fields.size() < fieldsBeforeTags + 3)
        return std::nullopt;
    const auto dash = std::find(fields.begin() + fieldsBeforeTags, fields.end(), "-");
    const auto id = number(fields[0]);
    const auto parent = number(fields[1]);
    if (!id || !parent || fields.end() - dash < 3 || !fields[4].starts_with('/'))
        return std::nullopt;
    return Line{.entry = {.id = *id,
                          .path = MountInfo::unescaped(fields[4]),
                          .root = MountInfo::unescaped(fields[3]),
                          .source = MountInfo::unescaped(dash[2]),
                          .type = MountInfo::unescaped(dash[1])},
                .parent = *parent};
}

/// Which mounts no path leads to any more.
class Hidden {
public:
    explicit Hidden(const std::vector<Line>& lines) {
        for (const auto& line : lines) {
            mounts_.emplace(line.entry.id, &line);
            // The topmost mount's parent may be itself, or a mount that only the kernel sees.
            if (line.parent != line.entry.id)
                taken_.emplace(line.parent, line.entry.path);
        }
    }

    bool contains(const Line& line) const {
        const auto* mount = &line;
        if (isCovered(*mount))
            return true;
        // Each step leads to a mount below; the bound is for a text that runs in a circle.
        for (std::size_t steps = 0; steps <= mounts_.size(); ++steps) {
            if (isBypassed(*mount))
                return true;
            const auto parent = mounts_.find(mount->parent);
            if (parent == mounts_.end() || parent->second == mount)
                return false;
            // Unless this very mount is what covers it.
            if (mount->entry.path != parent->second->entry.path && isCovered(*parent->second))
                return true;
            mount = parent->second;
        }
        return false;
    }

private:
    /// Another mount stands exactly on this one.
    bool isCovered(const Line& line) const {
        return taken_.contains({line.entry.id, line.entry.path});
    }

    /// A later mount of the same parent stands on a folder on the way to this one.
    bool isBypassed(const Line& line) const {
        auto path = line.entry.path;
        for (auto slash = path.rfind('/'); slash != std::string::npos && slash > 0;
             slash = path.rfind('/')) {
            path.resize(slash);
            if (taken_.contains({line.parent, path}))
                return true;
        }
        return false;
    }

    std::map<std::uint64_t, const Line*> mounts_;
    std::set<std::pair<std::uint64_t, std::string>> taken_; ///< parent and mount point
};

} // namespace

std::string MountInfo::unescaped(std::string_view field) {
    const auto isOctal = [](char c) { return c >= '0' && c <= '7'; };
    std::string bytes;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size() && field[i + 1] <= '3' &&
            isOctal(field[i + 1]) && isOctal(field[i + 2]) && isOctal(field[i + 3])) {
            const int value =
                (field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 + field[i + 3] - '0';
            bytes += static_cast<char>(value);
            i += 3;
        } else {
            bytes += field[i];
        }
    }
    return bytes;
}

std::vector<MountEntry> MountInfo::parse(std::string_view text) {
    std::vector<Line> lines;
    for (const auto line : split(text, '\n')) {
        if (auto parsed = parseLine(line))
            lines.push_back(std::move(*parsed));
    }
    const Hidden hidden(lines);
    std::vector<MountEntry> mounts;
    for (const auto& line : lines) {
        if (!hidden.contains(line))
            mounts.push_back(line.entry);
    }
    // Whatever the parents say, one point has one mount: the last.
    std::map<std::string_view, const MountEntry*> last;
    for (const auto& mount : mounts)
        last[mount.path] = &mount;
    std::vector<MountEntry> visible;
    for (const auto& mount : mounts) {
        if (last[mount.path] == &mount)
            visible.push_back(mount);
    }
    return visible;
}

} // namespace tessarine
