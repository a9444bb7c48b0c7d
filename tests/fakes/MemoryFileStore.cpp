#include "tests/fakes/MemoryFileStore.h"

#include <algorithm>
#include <utility>

namespace tessarine {

namespace {

/// As many links as Linux follows in one path.
constexpr int maximumLinks = 40;

std::string parentOf(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

std::string joined(const std::string& folder, const std::string& name) {
    return folder == "/" ? "/" + name : folder + "/" + name;
}

/// Reads "." and ".." of a link's target away.
std::string normalised(const std::string& path) {
    std::string result;
    std::size_t start = 0;
    while (start < path.size()) {
        const auto end = std::min(path.find('/', start), path.size());
        const auto part = path.substr(start, end - start);
        if (part == "..")
            result.erase(std::min(result.rfind('/'), result.size()));
        else if (!part.empty() && part != ".")
            result += "/" + part;
        start = end + 1;
    }
    return result.empty() ? "/" : result;
}

} // namespace

MemoryFileStore::MemoryFileStore() {
    nodes_["/"] = {.type = Node::Type::folder};
}

void MemoryFileStore::folder(const std::string& path) {
    if (path != "/")
        folder(parentOf(path));
    nodes_.try_emplace(path, Node{.type = Node::Type::folder});
}

void MemoryFileStore::file(const std::string& path, std::string_view bytes) {
    folder(parentOf(path));
    nodes_[path] = {.type = Node::Type::file, .content = std::string(bytes), .modified = now};
}

void MemoryFileStore::link(const std::string& path, std::string target) {
    folder(parentOf(path));
    nodes_[path] = {.type = Node::Type::link, .content = std::move(target)};
}

MemoryFileStore::Node* MemoryFileStore::node(const std::string& path) {
    const auto found = nodes_.find(path);
    return found == nodes_.end() ? nullptr : &found->second;
}

const MemoryFileStore::Node* MemoryFileStore::node(const std::string& path) const {
    const auto found = nodes_.find(path);
    return found == nodes_.end() ? nullptr : &found->second;
}

bool MemoryFileStore::isForbidden(const std::string& resolved) const {
    return std::ranges::any_of(forbidden_, [&](const std::string& path) {
        return resolved == path || resolved.starts_with(path + "/");
    });
}

std::optional<std::string> MemoryFileStore::resolve(const std::string& path, int linksLeft) const {
    if (linksLeft == 0)
        return std::nullopt;
    if (path == "/")
        return path;
    const auto parent = resolve(parentOf(path), linksLeft);
    if (!parent)
        return std::nullopt;
    const auto here = joined(*parent, path.substr(path.rfind('/') + 1));
    const Node* found = node(here);
    if (!found)
        return std::nullopt;
    if (found->type != Node::Type::link)
        return here;
    const auto& target = found->content;
    return resolve(normalised(target.starts_with('/') ? target : joined(*parent, target)),
                   linksLeft - 1);
}

std::optional<std::string> MemoryFileStore::read(const std::string& path,
                                                 std::size_t limitBytes) const {
    const auto real = resolve(path, maximumLinks);
    if (!real)
        return std::nullopt;
    if (isForbidden(*real))
        throw FileError(path + " could not be read: Permission denied");
    const Node* found = node(*real);
    if (found->type != Node::Type::file)
        throw FileError(path + " could not be read: it is no regular file");
    if (found->content.size() > limitBytes)
        throw FileError(path + " could not be read: it is too large");
    ++reads;
    return found->content;
}

void MemoryFileStore::save(const std::string& path, std::string_view bytes) {
    const auto real = resolve(path, maximumLinks).value_or(path);
    makeDirectories(parentOf(real));
    if (isForbidden(real) || (node(real) && node(real)->type == Node::Type::folder))
        throw FileError(path + " could not be saved");
    nodes_[real] = {.type = Node::Type::file, .content = std::string(bytes), .modified = now};
}

bool MemoryFileStore::readPieces(const std::string& path,
                                 const std::function<bool(std::string_view)>& take) const {
    const auto bytes = read(path, static_cast<std::size_t>(-1));
    // Small pieces, so that whoever puts them together meets every seam.
    constexpr std::size_t pieceBytes = 7;
    for (std::size_t at = 0; bytes && at < bytes->size(); at += pieceBytes) {
        if (!take(std::string_view(*bytes).substr(at, pieceBytes)))
            break;
    }
    return bytes.has_value();
}

void MemoryFileStore::savePieces(const std::string& path,
                                 const std::function<std::optional<std::string_view>()>& next) {
    std::string bytes;
    while (const auto piece = next())
        bytes += *piece;
    save(path, bytes);
}

void MemoryFileStore::append(const std::string& path, std::string_view bytes) {
    const auto before = read(path, std::string::npos).value_or("");
    if (!node(resolve(parentOf(path), maximumLinks).value_or("")))
        throw FileError(path + " could not be opened: its folder does not exist");
    save(path, before + std::string(bytes));
}

std::optional<std::vector<DirectoryEntry>> MemoryFileStore::entries(const std::string& path) const {
    if (beforeEntries)
        beforeEntries(path);
    const auto real = resolve(path, maximumLinks);
    if (!real || isForbidden(*real) || node(*real)->type != Node::Type::folder)
        return std::nullopt;
    std::vector<DirectoryEntry> result;
    const auto prefix = *real == "/" ? "/" : *real + "/";
    for (auto it = nodes_.upper_bound(prefix); it != nodes_.end(); ++it) {
        if (!it->first.starts_with(prefix))
            break;
        const auto name = it->first.substr(prefix.size());
        if (name.find('/') != std::string::npos)
            continue;
        const auto what = info(it->first);
        result.push_back({.name = name,
                          .kind = what ? what->kind : FileKind::other,
                          .isLink = it->second.type == Node::Type::link});
    }
    return result;
}

std::optional<FileInfo> MemoryFileStore::info(const std::string& path) const {
    const auto real = resolve(path, maximumLinks);
    if (!real)
        return std::nullopt;
    const Node* found = node(*real);
    const bool isFolder = found->type == Node::Type::folder;
    return FileInfo{.kind = isFolder ? FileKind::directory : FileKind::file,
                    .sizeBytes = found->content.size(),
                    .modified = found->modified,
                    .executable = isFolder || found->executable};
}

std::optional<std::string> MemoryFileStore::realPath(const std::string& path) const {
    return resolve(path, maximumLinks);
}

void MemoryFileStore::makeDirectories(const std::string& path) {
    if (isForbidden(path))
        throw FileError(path + " could not be made: Permission denied");
    if (const auto what = info(path)) {
        if (what->kind != FileKind::directory)
            throw FileError(path + " could not be made: a file is in its place");
        return;
    }
    folder(path);
}

void MemoryFileStore::rename(const std::string& from, const std::string& to) {
    const Node* found = node(from);
    if (!found || isForbidden(from) || isForbidden(to))
        throw FileError(from + " could not be renamed");
    nodes_[to] = *found;
    nodes_.erase(from);
}

void MemoryFileStore::remove(const std::string& path) {
    if (isForbidden(path))
        throw FileError(path + " could not be removed: Permission denied");
    std::erase_if(nodes_, [&](const auto& entry) {
        return entry.first == path || entry.first.starts_with(path + "/");
    });
}

} // namespace tessarine
