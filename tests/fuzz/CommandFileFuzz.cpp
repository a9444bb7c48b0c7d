// The user's commands file: whatever the bytes, what can be read goes through a save unchanged.

#include "LauncherCore/commands/Chord.h"
#include "LauncherCore/commands/CommandFile.h"
#include "tests/fuzz/FuzzHarness.h"

#include <cstdlib>
#include <string_view>

using namespace tessarine;

std::vector<std::string> fuzzSeeds() {
    return {
        CommandFile::starter().encoded(),
        R"({"version": 4.0, "commands": [{"id": "n", "kind": "teleport", "x": [1, 2.5, null]}]})",
        R"({"commands": [{"id": "a", "name": "A", "kind": "jump", "press": ["OK", ""],
            "hotkey": "⌃⌥⇧⌘++", "aliases": ["a b"], "activate": false}, [[]], 7]})",
    };
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (const auto chord = Chord::parse(text); chord && Chord::parse(chord->text()) != chord)
        std::abort();
    LenientCommandFile first;
    try {
        first = CommandFile::decodeLenient(text);
    } catch (const CommandFileError&) {
        return 0; // told in words
    }
    first.file.problems();
    const auto second = CommandFile::decodeLenient(first.file.encoded(first.unreadable));
    if (second.file != first.file || second.unreadable != first.unreadable)
        std::abort();
    return 0;
}
