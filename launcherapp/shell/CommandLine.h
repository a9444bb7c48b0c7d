#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// The words after the program's name, as every mode reads them: there is no parser, a flag is
/// there or not, and a value is the word after the first occurrence of its flag. The word after
/// "--arg" is free text and never taken for a flag. A value.
class CommandLine {
public:
    explicit CommandLine(std::vector<std::string> arguments);

    const std::vector<std::string>& arguments() const { return arguments_; }

    bool has(std::string_view flag) const { return position(flag).has_value(); }

    /// The word after the flag; nothing when the flag is absent or the last word.
    std::optional<std::string> value(std::string_view flag) const;

    /// The first word that begins with two hyphens and is no option of this program; nothing when
    /// all are. Words of the families in `families` pass by how they begin.
    std::optional<std::string> firstUnknown(std::span<const std::string_view> knownFlags,
                                            std::span<const std::string_view> families) const;

private:
    std::optional<std::size_t> position(std::string_view flag) const;

    /// Whether the word stands right after an "--arg".
    bool isFreeText(std::size_t index) const;

    std::vector<std::string> arguments_;
};

} // namespace tessarine
