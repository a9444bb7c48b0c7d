#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The Exec key: quoting and field codes (the desktop entry standard 1.5, "The Exec key").
/// Pure; any thread.
namespace tessarine::ExecLine {

/// The arguments with their quoting read and their field codes still in place. `exec` has the
/// escapes of a desktop entry's string already read. Nothing when a quote is not closed or there
/// is no program.
std::optional<std::vector<std::string>> words(std::string_view exec);

/// What the field codes stand for.
struct Fields {
    std::vector<std::string> uris; ///< what to open: file URIs and URLs
    std::string icon;              ///< for %i; empty gives no arguments
    std::string name;              ///< for %c
    std::string path;              ///< for %k, the entry's own path
};

/// The commands to start, each a program and its arguments. One command, except that an entry
/// taking a single file (%f) or URL (%u) is started once for each. A program that takes files
/// only (%f, %F) gets no URL that isn't a file: such URLs are left out. %% is a percent sign; the
/// deprecated codes and unknown ones give nothing.
std::vector<std::vector<std::string>> commands(std::span<const std::string> words,
                                               const Fields& fields);

} // namespace tessarine::ExecLine
