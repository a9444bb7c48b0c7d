#include "launcherapp/shell/modes/Modes.h"

#include <gmock/gmock.h>

#include <set>

namespace tessarine {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

using Words = std::vector<std::string>;

TEST(CommandLine, aValueIsTheWordAfterTheFirstOccurrence) {
    const CommandLine line(Words{"--run", "a", "--arg", "--run", "--run", "b"});
    EXPECT_EQ(line.value("--run"), "a");
    EXPECT_EQ(line.value("--arg"), "--run");
    EXPECT_EQ(CommandLine(Words{"--bench"}).value("--bench"), std::nullopt);
    EXPECT_FALSE(CommandLine(Words{"--run", "x", "--arg", "--doctor"}).has("--doctor"));
}

TEST(Modes, wordsThatAreNoOptionsAreRefusedInThreeLines) {
    const struct {
        Words words;
        std::optional<std::string> unknown;
        const char* reason;
    } cases[] = {
        {{}, std::nullopt, "no words at all"},
        {{"foo", "-x", "-"}, std::nullopt, "only words with two hyphens are looked at"},
        {{"--nonsense"}, "--nonsense", "no option"},
        {{"--search", "--json", "--scan-timing"}, std::nullopt, "every option is known"},
        {{"--selftest-no-such-thing", "--render-x", "--benchmark"}, std::nullopt, "the families"},
        {{"--menubar-x", "--copied-toast-shots", "--graph-shot2"}, std::nullopt, "the families"},
        {{"--menubar", "--graph"}, "--menubar", "a family's beginning must be whole"},
        {{"--run", "x", "--arg", "--x"}, std::nullopt, "free text"},
        {{"--query", "--x"}, "--x", "a value of any other flag is looked at"},
        {{"--"}, "--", "two hyphens alone"},
        {{"--first", "--second"}, "--first", "the first is named"},
    };

    for (const auto& [words, unknown, reason] : cases) {
        const auto refusal = Modes::refusal(CommandLine(words));
        ASSERT_EQ(refusal.has_value(), unknown.has_value()) << reason;
        if (!refusal)
            continue;
        EXPECT_THAT(*refusal, StartsWith("Tessarine: unknown option " + *unknown + "\n"));
        EXPECT_THAT(*refusal, HasSubstr("\nknown options: --actions --actions-check --apply "));
        EXPECT_THAT(*refusal, HasSubstr("\nsubcommands: startup\n"));
    }
}

TEST(Modes, noFlagStandsTwice) {
    const auto& flags = Modes::knownFlags();
    EXPECT_EQ(std::set(flags.begin(), flags.end()).size(), flags.size());
}

TEST(Modes, aModeEitherRunsOrSaysWhatItLacks) {
    for (const auto modes : {Modes::early(), Modes::resident()}) {
        for (const auto& mode : modes) {
            if (mode.flag == "--version")
                continue;
            SCOPED_TRACE(mode.flag);
            EXPECT_NE(mode.run == nullptr, mode.needs.empty());
            Words words{std::string(mode.flag)};
            if (mode.value == Mode::Value::next) {
                EXPECT_FALSE(Modes::endEarly(CommandLine(words))) << "without its value";
                words.push_back("value");
            }
            const auto ending = Modes::endEarly(CommandLine(words));
            EXPECT_EQ(ending.has_value(), mode.run == nullptr);
            if (!ending)
                continue;
            EXPECT_EQ(ending->status, 2);
            const auto name = mode.flag.substr(mode.flag.find_first_not_of('-'));
            EXPECT_THAT(ending->lines,
                        ElementsAre(StartsWith(std::string(name) + ": NOT MEASURED, ")));
        }
    }
}

TEST(Modes, theSubcommandIsTheFirstWordOnly) {
    EXPECT_EQ(Modes::endEarly(CommandLine(Words{"startup", "status"}))->status, 2);
    EXPECT_FALSE(Modes::endEarly(CommandLine(Words{"--search", "startup"})));
}

TEST(Modes, versionComesBeforeEverythingElse) {
    const auto ending = Modes::endEarly(CommandLine(Words{"--doctor", "--version"}));
    EXPECT_EQ(ending->status, 0);
    EXPECT_THAT(ending->lines,
                ElementsAre(testing::MatchesRegex("Tessarine [0-9.]+ \\([0-9]+\\)")));
}

TEST(Modes, wordsThatNoModeClaimsLeaveTheProgramResident) {
    for (const Words& words : {Words{},
                               Words{"foo"},
                               Words{"--selftest-no-such-thing"},
                               Words{"--demo"},
                               Words{"--search"}}) {
        EXPECT_FALSE(Modes::endEarly(CommandLine(words)));
        EXPECT_FALSE(Modes::endsByItself(CommandLine(words)));
    }
    EXPECT_TRUE(Modes::endsByItself(CommandLine(Words{"--search", "x"})));
}

} // namespace
} // namespace tessarine
