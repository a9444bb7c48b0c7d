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
    try {
        const auto first = CommandFile::decodeLenient(text);
        first.file.problems();
        const auto saved = first.file.encoded(first.unreadable);
        const auto second = CommandFile::decodeLenient(saved);
        if (second.file != first.file || second.unreadable != first.unreadable)
            std::abort();
    } catch (const CommandFileError&) {
        // told in words
    }
    return 0;
}
