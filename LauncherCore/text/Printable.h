#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Foreign bytes as a line of a log can show them. Pure; any thread.
namespace tessarine::Printable {

/// At most `most` bytes from the beginning, not cutting a character in two.
std::string_view beginning(std::string_view bytes, std::size_t most);

/// On one line: line ends as "\n" and "\r", tabs as "\t", other control characters of ASCII as
/// "\x1b"; the other characters that steer text are left out, and what is no UTF-8 is U+FFFD. None
/// can end the line, hide in it, or turn it round.
std::string line(std::string_view bytes);

} // namespace tessarine::Printable
