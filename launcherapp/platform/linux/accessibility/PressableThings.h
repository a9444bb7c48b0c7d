#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// What counts as a button of another program, and by which names. Pure; any thread.
namespace tessarine::PressableThings {

/// Whether things of this AT-SPI role are pressed: buttons, menu items, boxes, links, tabs, items.
bool isPressable(std::int64_t role);

/// Whether an AT-SPI state set says that the thing is on screen. What isn't has nothing on screen
/// below it either.
bool isOnScreen(std::span<const std::uint32_t> states);

/// Whether it takes a press, or is greyed out.
bool isEnabled(std::span<const std::uint32_t> states);

/// How near what a program calls a thing is to the name that the user wrote.
enum class Likeness {
    none,
    butForMarks, ///< the same without the marks of mnemonics ("_Save", "&Save") in either
    same,        ///< but for case and white space at its ends
};

/// Marks count where they tell two things apart: "my_file" is no mark's, should "myfile" be there.
Likeness likeness(std::string_view text, std::string_view name);

/// Which of a thing's actions is its press, by their names; nothing when none is. One without a
/// name is a press only where it is all that the thing does.
std::optional<std::size_t> pressAction(std::span<const std::string> actions);

} // namespace tessarine::PressableThings
