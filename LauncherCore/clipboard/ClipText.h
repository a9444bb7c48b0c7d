#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tessarine {

/// A copied text that is kept, with what a search asks of it for each keystroke worked out once.
/// Shared and never changed, so that copying a history of texts costs reference counts. Any thread;
/// making one of five million characters takes 30 ms for ASCII and half a second for other scripts.
class ClipText {
public:
    ClipText();

    /// Bytes that are not UTF-8 become U+FFFD.
    explicit ClipText(std::string text);

    const std::string& string() const { return content_->text; }

    /// By `Folding::fold`.
    const std::string& folded() const {
        return content_->folded ? *content_->folded : content_->text;
    }

    /// Whether the folded text holds `folded`, which is folded itself; every text holds nothing.
    bool holds(std::string_view folded) const;

    std::size_t characters() const { return content_->characters; } ///< user-perceived

    bool isLink() const { return content_->isLink; } ///< by `ClipClassifier`

    bool operator==(const ClipText& other) const {
        return content_ == other.content_ || string() == other.string();
    }

private:
    struct Content {
        std::string text;
        std::optional<std::string> folded; ///< nothing when it is the text itself
        std::size_t characters = 0;
        bool isLink = false;
    };

    std::shared_ptr<const Content> content_;
};

} // namespace tessarine
