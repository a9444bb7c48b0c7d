#pragma once

#include "LauncherCore/commands/CommandSpec.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tessarine {

/// A text that is no commands file at all; `what()` says where and why, for the user.
class CommandFileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct LenientCommandFile;

/// The user's "commands.json": an object with "version" and "commands". Pure; any thread.
struct CommandFile {
    std::int64_t version = 1; ///< written back as read; nothing depends on it
    std::vector<CommandSpec> commands;

    bool operator==(const CommandFile&) const = default;

    /// Reads what can be read: a command of a newer version, or one with a mistake in it, costs
    /// the user no other. Throws CommandFileError when the text is no JSON, or no object with a
    /// list of commands.
    static LenientCommandFile decodeLenient(std::string_view data);

    /// The file's text: keys sorted, lines indented, slashes as they are, what is absent left out.
    std::string encoded() const;

    /// The same with these entries at the end of the commands, as they were read.
    std::string encoded(const std::vector<std::string>& keeping) const;

    /// What is wrong, in words: first of each command, then what two of them both claim.
    std::vector<std::string> problems() const;

    /// What a command claims that one before it has, in words.
    struct Duplicate {
        std::size_t command = 0; ///< position of the later one
        std::string problem;     ///< "duplicate id: x", and so on

        bool operator==(const Duplicate&) const = default;
    };

    /// In the order of the commands; of one command its id, keyword, hotkey.
    std::vector<Duplicate> duplicates() const;

    /// What a first run writes.
    static CommandFile starter();
};

/// What could be read of a commands file.
struct LenientCommandFile {
    CommandFile file;
    std::vector<std::string> unreadable; ///< JSON texts of the entries not understood, in order
};

} // namespace tessarine
