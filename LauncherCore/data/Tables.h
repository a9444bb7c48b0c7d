#pragma once

#include <string_view>
#include <vector>

/// The tables that come with the program: the text files of this folder, which the build compiles
/// in. A line is a row and its fields are parted by "|"; empty lines and lines that begin
/// with "# " are for the reader. Pure; any thread.
namespace tessarine::Tables {

using Row = std::vector<std::string_view>;

/// The rows of `<name>.txt`, in the file's order; views of the program's own data. A name that
/// isn't there is a bug, and in release an empty table.
std::vector<Row> rows(std::string_view name);

/// The parts of a field that is itself a list, parted by commas, without blanks around them.
std::vector<std::string_view> list(std::string_view field);

} // namespace tessarine::Tables
