# Writes a C++ source with the text files given in TABLES (parted by "|") to OUTPUT.
# cmake -DTABLES=a.txt|b.txt -DOUTPUT=EmbeddedTables.cpp -P EmbedTables.cmake
string(REPLACE "|" ";" tables "${TABLES}")
set(literals "")
set(entries "")
set(index 0)
foreach(table IN LISTS tables)
    get_filename_component(name "${table}" NAME_WE)
    # Read as hexadecimal, since a list of CMake's would lose semicolons and brackets.
    file(READ "${table}" bytes HEX)
    string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
    string(APPEND literals "constexpr char table${index}[] = {${bytes}};\n")
    string(APPEND entries "    {\"${name}\", {table${index}, sizeof table${index}}},\n")
    math(EXPR index "${index} + 1")
endforeach()
file(WRITE "${OUTPUT}" "#include \"LauncherCore/data/EmbeddedTables.h\"

namespace tessarine {
namespace {
${literals}
constexpr EmbeddedTable tables[] = {
${entries}};
} // namespace

std::span<const EmbeddedTable> embeddedTables() {
    return tables;
}
} // namespace tessarine
")
