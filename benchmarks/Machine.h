#pragma once

#include "tests/fakes/FakeServices.h"

#include <array>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace tessarine {

inline constexpr int applicationCount = 500;
inline constexpr int commandCount = 200;
inline constexpr int keystrokeCount = 1000;

inline constexpr std::array words{
    "Image",    "Viewer",   "Text",     "Editor", "Music",   "Player",  "System", "Monitor",
    "Terminal", "Network",  "Calendar", "Photo",  "Éditeur", "Manager", "Disk",   "Usage",
    "Screen",   "Recorder", "日本語",   "Draw",   "Office",  "Calc",    "Backup", "Chat"};

inline std::string word(std::mt19937& random) {
    return words[random() % words.size()];
}

/// Services in memory with that many applications and commands, and a history of use.
struct Machine {
    Machine() {
        for (int i = 0; i < applicationCount; ++i)
            services.install("org.example.App" + std::to_string(i),
                             word(random) + " " + word(random) + " " + std::to_string(i),
                             "GenericName=" + word(random) + "\nKeywords=" + word(random) + ";" +
                                 word(random) + ";" + word(random) + ";\n");
        for (int i = 0; i < commandCount; ++i)
            commands.push_back({.id = "c" + std::to_string(i),
                                .name = word(random) + " " + word(random),
                                .keyword = "k" + std::to_string(i),
                                .kind = CommandKind::search,
                                .url = "https://example.com/?q={query}",
                                .aliases = {{word(random)}}});
        services.startCatalog();
        model = services.makeModel();
        model->families.commands = [this] { return std::span<const CommandSpec>(commands); };
        for (int i = 0; i < 400; ++i) {
            const auto& app = services.catalog.apps()[random() % applicationCount];
            services.usage.record(app.id);
            services.usage.recordChoice(app.name.substr(0, 3 + random() % 6), app.id);
        }
    }

    /// Texts as they are typed: words letter by letter, with misses, answers and arguments.
    std::vector<std::string> keystrokes() {
        std::vector<std::string> texts;
        while (texts.size() < keystrokeCount) {
            auto text = word(random);
            if (random() % 3 == 0)
                text += " " + word(random);
            if (random() % 5 == 0)
                text = "zq" + text;
            if (random() % 7 == 0)
                text = "k" + std::to_string(random() % commandCount) + " " + text;
            for (std::size_t length = 1; length <= text.size(); ++length)
                texts.push_back(text.substr(0, length));
        }
        texts.resize(keystrokeCount);
        return texts;
    }

    std::mt19937 random{20260101};
    FakeServices services;
    std::vector<CommandSpec> commands;
    std::unique_ptr<SearchModel> model;
};

} // namespace tessarine
