#include "LauncherCore/index/ItemList.h"

#include "LauncherCore/text/Folding.h"
#include "LauncherCore/text/Paths.h"

#include <algorithm>
#include <cassert>
#include <limits>

namespace tessarine {

namespace {

// Of home folders, with something to spare.
constexpr std::size_t ordinaryNameBytes = 24;
constexpr std::size_t ordinaryEntries = 8; ///< in a directory
constexpr std::size_t ordinaryPathBytes = 64;

std::string_view
slice(const std::string& text, const std::vector<std::uint32_t>& ends, std::size_t index) {
    const auto begin = index == 0 ? 0 : ends[index - 1];
    return std::string_view(text).substr(begin, ends[index] - begin);
}

std::string_view folderOf(std::string_view path) {
    const auto slash = path.rfind('/');
    return slash == std::string_view::npos ? std::string_view() : path.substr(0, slash);
}

} // namespace

std::string_view ItemList::name(std::size_t index) const {
    return slice(names_, nameEnds_, index);
}

std::string_view ItemList::norm(std::size_t index) const {
    return slice(norms_, normEnds_, index);
}

std::string ItemList::id(std::size_t index) const {
    std::string id;
    assignID(index, id);
    return id;
}

void ItemList::assignID(std::size_t index, std::string& id) const {
    id = directoryPath(directory(index));
    if (isItself(index))
        return;
    id += '/';
    id += name(index);
}

std::string ItemList::ext(std::size_t index) const {
    return isFolder(index) ? std::string()
                           : Folding::lowercase(IndexRules::pathExtension(name(index)));
}

IndexedItem ItemList::item(std::size_t index) const {
    return {.id = id(index),
            .name = std::string(name(index)),
            .norm = std::string(norm(index)),
            .isFolder = isFolder(index),
            .ext = ext(index)};
}

std::size_t ItemList::slashes(std::size_t index) const {
    return directories_[directory(index)].slashes + (isItself(index) ? 0 : 1);
}

std::string_view ItemList::directoryPath(std::uint32_t directory) const {
    const auto begin = directory == 0 ? 0 : directories_[directory - 1].end;
    return std::string_view(paths_).substr(begin, directories_[directory].end - begin);
}

std::uint64_t ItemList::itemHash(std::size_t index) const {
    const auto number = directory(index);
    const auto state = isItself(index) ? IndexRules::fnv1a(directoryPath(number))
                                       : IndexRules::fnv1a(name(index), directories_[number].hash);
    return IndexRules::itemHash(state, isFolder(index));
}

std::size_t ItemList::memoryBytes() const {
    return paths_.capacity() + directories_.capacity() * sizeof(Directory) +
           places_.capacity() * sizeof(std::uint32_t) + names_.capacity() +
           nameEnds_.capacity() * sizeof(std::uint32_t) + norms_.capacity() +
           normEnds_.capacity() * sizeof(std::uint32_t);
}

void ItemList::reserve(std::size_t itemCount) {
    places_.reserve(itemCount);
    nameEnds_.reserve(itemCount);
    normEnds_.reserve(itemCount);
    names_.reserve(itemCount * ordinaryNameBytes);
    norms_.reserve(itemCount * ordinaryNameBytes);
    directories_.reserve(itemCount / ordinaryEntries);
    paths_.reserve(itemCount / ordinaryEntries * ordinaryPathBytes);
}

std::uint32_t ItemList::addDirectory(std::string_view path) {
    assert(directories_.size() < directoryMask);
    paths_ += path;
    directories_.push_back({.end = static_cast<std::uint32_t>(paths_.size()),
                            .slashes = static_cast<std::uint32_t>(std::ranges::count(path, '/')),
                            .hash = IndexRules::fnv1a("/", IndexRules::fnv1a(path))});
    return static_cast<std::uint32_t>(directories_.size() - 1);
}

void ItemList::add(std::uint32_t directory,
                   std::string_view name,
                   std::string_view norm,
                   bool isFolder) {
    append(directory | (isFolder ? folderBit : 0), name, norm);
}

void ItemList::addItself(std::string_view path,
                         std::string_view name,
                         std::string_view norm,
                         bool isFolder) {
    append(addDirectory(path) | itselfBit | (isFolder ? folderBit : 0), name, norm);
}

void ItemList::add(std::string_view id,
                   std::string_view name,
                   std::string_view norm,
                   bool isFolder) {
    const auto folder = folderOf(id);
    // All but a drive's own item are named by the last part of their path.
    if (id.size() == folder.size() + 1 + name.size() && id.ends_with(name))
        add(directoryOf(folder), name, norm, isFolder);
    else
        addItself(id, name, norm, isFolder);
}

void ItemList::addFrom(const ItemList& other, std::size_t index) {
    const auto path = other.directoryPath(other.directory(index));
    if (other.isItself(index))
        addItself(path, other.name(index), other.norm(index), other.isFolder(index));
    else
        add(directoryOf(path), other.name(index), other.norm(index), other.isFolder(index));
}

ItemList ItemList::without(const std::vector<bool>& removed) const {
    // A few hundredths more: without them the first item added would double the memory.
    const auto roomy = [](std::size_t size) { return size + size / 32 + 64; };
    ItemList result;
    result.places_.reserve(roomy(places_.size()));
    result.names_.reserve(roomy(names_.size()));
    result.nameEnds_.reserve(roomy(nameEnds_.size()));
    result.norms_.reserve(roomy(norms_.size()));
    result.normEnds_.reserve(roomy(normEnds_.size()));
    result.paths_.reserve(roomy(paths_.size()));
    result.directories_.reserve(roomy(directories_.size()));

    constexpr auto absent = std::numeric_limits<std::uint32_t>::max();
    std::vector<std::uint32_t> numbers(directories_.size(), absent);
    result.digest_ = digest_;
    for (std::size_t i = 0; i < size(); ++i) {
        if (removed[i]) {
            result.digest_ -= itemHash(i);
            continue;
        }
        auto& number = numbers[directory(i)];
        if (number == absent)
            number = result.addDirectory(directoryPath(directory(i)));
        result.store(number | (places_[i] & ~directoryMask), name(i), norm(i));
    }
    return result;
}

void ItemList::shrink() {
    paths_.shrink_to_fit();
    directories_.shrink_to_fit();
    places_.shrink_to_fit();
    names_.shrink_to_fit();
    nameEnds_.shrink_to_fit();
    norms_.shrink_to_fit();
    normEnds_.shrink_to_fit();
}

bool ItemList::operator==(const ItemList& other) const {
    if (size() != other.size() || digest_ != other.digest_)
        return false;
    for (std::size_t i = 0; i < size(); ++i) {
        if (item(i) != other.item(i))
            return false;
    }
    return true;
}

void ItemList::append(std::uint32_t place, std::string_view name, std::string_view norm) {
    store(place, name, norm);
    digest_ += itemHash(size() - 1);
}

void ItemList::store(std::uint32_t place, std::string_view name, std::string_view norm) {
    places_.push_back(place);
    names_ += name;
    nameEnds_.push_back(static_cast<std::uint32_t>(names_.size()));
    norms_ += norm;
    normEnds_.push_back(static_cast<std::uint32_t>(norms_.size()));
}

std::uint32_t ItemList::directoryOf(std::string_view path) {
    // A walk goes down and comes back up, so the directory is that of the last item or one above
    // it; where it is neither, it is stored once more.
    while (!trail_.empty() && !Paths::isAtOrBelow(path, directoryPath(trail_.back())))
        trail_.pop_back();
    if (trail_.empty() || directoryPath(trail_.back()) != path)
        trail_.push_back(addDirectory(path));
    return trail_.back();
}

} // namespace tessarine
