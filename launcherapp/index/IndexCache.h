#pragma once

#include "LauncherCore/index/ItemList.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tessarine {

class NameIndex;

/// The form in which the index outlives the program: a JSON array of objects with the keys "id",
/// "name", "norm", "isFolder" and "ext". It only saves time at start, so whatever is wrong with it
/// makes it count as absent. Both ways go piece by piece, since the whole document would take more
/// memory than the index itself.
namespace IndexCache {

/// Writes the document. Items whose path is not UTF-8 can't be said in JSON and are left out.
class Writer {
public:
    explicit Writer(const NameIndex& index) : index_(index) {}

    /// The next piece, valid until the one after; nothing at the end.
    std::optional<std::string_view> next();

private:
    void addItem(const ItemList& list, std::size_t item);
    void enterDirectory(const ItemList& list, std::size_t item);

    const NameIndex& index_;
    std::size_t list_ = 0;
    std::size_t item_ = 0;
    enum class Stage { beginning, items, ended } stage_ = Stage::beginning;
    bool isFirst_ = true;
    std::string piece_;
    /// The path of the last item's directory as JSON, since many items follow each other in one.
    std::string directory_;
    std::optional<std::pair<const ItemList*, std::uint32_t>> directoryOf_;
    bool directoryIsUtf8_ = true;
};

/// Reads a document. After the first fault it takes nothing more.
class Reader {
public:
    using IsWanted = std::function<bool(std::string_view id)>;

    explicit Reader(IsWanted isWanted);
    ~Reader();

    /// Whether more may come.
    bool take(std::string_view piece);

    /// The items that are wanted; nothing when the text was no such document.
    std::optional<ItemList> finish();

private:
    struct Parser;

    bool parse(std::string_view array);

    IsWanted isWanted_;
    std::unique_ptr<Parser> parser_;
    std::string text_; ///< what was taken and not yet parsed
    bool isWhole_ = true;
    ItemList items_;
};

} // namespace IndexCache
} // namespace tessarine
