// What a user feels of the panel: how long after a key it is there. Presses real keys on the
// display it is run on and watches the panel's window from outside, over a connection of its own;
// the clock runs from just before the press is sent until the display has told of the drawing.
//
// tests/desktop/with-desktop PanelProbe [OPTION VALUE]... [PROGRAM [ARGUMENT]...]
//   --chord super+space   what summons the program
//   --names 0             how many files stand in its home folder; its log tells when it knows them
//   --rounds 200          presses and keys
//   --starts 9            measured starts
//   --soak 0              shows between two looks at its memory
//   --idle 0              seconds without a key, to see what it costs
//
// Ends with 1 when a bar is missed. What goes on inside of a show is PanelShowBench's to measure.
//
// PanelProbeSubject, the least that a panel can be, is measured before the program in the same run.

#include "benchmarks/PanelProbeDisplay.h"
#include "benchmarks/StolenTime.h"
#include "benchmarks/TreeGenerator.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

extern char** environ;

namespace tessarine {
namespace {

using namespace std::chrono_literals;
using Clock = PanelProbeDisplay::Clock;
using Sight = PanelProbeDisplay::Sight;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr std::uint32_t keysymReturn = 0xff0d;
constexpr std::uint32_t keysymEscape = 0xff1b;
constexpr std::uint32_t keysymBackSpace = 0xff08;
constexpr int fieldHeight = 58; ///< of the panel's first row, which holds the field
constexpr auto quiet = 25ms;    ///< without any drawing: what was asked for is there
constexpr auto patience = 2s;

/// What is measured, and the bars: design figures for two cores without vertical sync.
struct Bar {
    const char* what;
    double median;
    double worst; ///< 0 for no bar
};

constexpr Bar pressBar{"hotkey press to first painted panel", 6, 16};
constexpr Bar keyBar{"typed key to painted list", 8, 16};
constexpr Bar startBar{"start to hotkey registered", 90, 0};
constexpr double idleBar = 0.3; ///< percent of a core

// What a show leaves behind it comes again with each, so a leak of one small block shows over a
// thousand; caches that fill once (icons, glyphs, the allocator's pools) fill in the first hundred
// shows, which don't count. 2 MB over 1,000 shows is 2 KB a show: less than the smallest picture of
// an icon, and about what the allocator moves by itself.
constexpr int showsBeforeSoak = 100;
constexpr double growthBar = 2; ///< MB over a thousand shows

struct Options {
    std::map<std::string, std::string> values{{"--chord", "super+space"},
                                              {"--names", "0"},
                                              {"--rounds", "200"},
                                              {"--starts", "9"},
                                              {"--soak", "0"},
                                              {"--idle", "0"}};
    std::vector<std::string> program;

    /// An application with a name of a hundred letters, which leaves a mark when it is launched;
    /// nothing for a program that launches nothing.
    std::string blindMark;
    std::string log; ///< of the program

    int number(const std::string& name) const { return std::atoi(values.at(name).c_str()); }
};

/// Neighbours among them differ, so that a letter that was lost or came twice is seen.
std::string blindLetters() {
    constexpr int count = 100;
    std::string letters;
    for (int i = 0; i < count; ++i)
        letters.push_back(static_cast<char>('a' + (i * 7) % 26));
    return letters;
}

double median(std::vector<double> values) {
    std::ranges::sort(values);
    return values[values.size() / 2];
}

/// Times in milliseconds, in the order in which they were taken.
struct Sample {
    std::vector<double> times;
    int missing = 0;   ///< what never came
    int uncounted = 0; ///< the machine's host took the processor away meanwhile

    /// `measure` gives a time, or nothing when what it waited for never came.
    template <typename Measure> void take(Measure measure) {
        stolen_.wasTaken();
        const auto time = measure();
        if (!time)
            ++missing;
        else if (stolen_.wasTaken())
            ++uncounted;
        else
            times.push_back(*time);
    }

private:
    StolenTime stolen_;
};

/// Prints the figures with their ratios to the bar; whether they are within it.
bool report(const Bar& bar, const Sample& sample) {
    const auto& times = sample.times;
    if (sample.missing > 0)
        std::printf("  %s: %d never came\n", bar.what, sample.missing);
    if (sample.uncounted > 0)
        std::printf("  %s: %d not counted, as the machine's host took the processor away\n",
                    bar.what,
                    sample.uncounted);
    if (times.empty())
        return false;
    const double middle = median(times);
    const auto slowest = std::ranges::max_element(times);
    std::printf(
        "  %s: median %.2f ms, worst %.2f ms over %zu", bar.what, middle, *slowest, times.size());
    std::printf("; of the bar %.2f", middle / bar.median);
    if (bar.worst > 0)
        std::printf(" and %.2f", *slowest / bar.worst);
    std::printf("; slowest: number %td\n", 1 + (slowest - times.begin()));
    return sample.missing == 0 && middle <= bar.median && (bar.worst == 0 || *slowest <= bar.worst);
}

/// The program under the probe, ended with this.
class Subject {
public:
    explicit Subject(const std::vector<std::string>& command) {
        std::vector<char*> words;
        for (const auto& word : command)
            words.push_back(const_cast<char*>(word.c_str()));
        words.push_back(nullptr);
        startedAt = Clock::now();
        if (::posix_spawnp(&process_, words[0], nullptr, nullptr, words.data(), environ) != 0) {
            std::perror(words[0]);
            std::exit(1);
        }
    }

    ~Subject() {
        ::kill(process_, SIGTERM);
        ::waitpid(process_, nullptr, 0);
    }

    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;

    /// Resident memory in MB.
    double memory() const {
        std::ifstream file("/proc/" + std::to_string(process_) + "/statm");
        double total = 0;
        double resident = 0;
        file >> total >> resident;
        return resident * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1e6;
    }

    /// Processor time in seconds.
    double processorTime() const {
        std::ifstream file("/proc/" + std::to_string(process_) + "/stat");
        std::string text((std::istreambuf_iterator<char>(file)), {});
        text.erase(0, text.rfind(')') + 1); // the name before may hold anything
        double user = 0;
        double system = 0;
        std::sscanf(
            text.c_str(), " %*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %lf %lf", &user, &system);
        return (user + system) / static_cast<double>(::sysconf(_SC_CLK_TCK));
    }

    Clock::time_point startedAt;

private:
    pid_t process_ = 0;
};

class Probe {
public:
    Probe(const Options& options, PanelProbeDisplay& display)
        : options_(options), display_(display),
          chord_(*display.chord(options.values.at("--chord"))) {}

    bool measure(const std::vector<std::string>& command) {
        bool isWithin = measureStarts(command);
        std::filesystem::remove(options_.log); // of the starts before
        const Subject subject(command);
        if (!awaitRegistration(subject))
            return false;
        if (!awaitIndex() || !awaitRest(subject))
            return false;
        if (!show()) {
            std::printf("  the panel never came\n");
            return false;
        }
        hide();
        isWithin = measurePresses() && isWithin;
        isWithin = measureKeys() && isWithin;
        isWithin = typeBlind(10ms) && isWithin;
        typeBlind(0ms); // no bar: nobody's second key follows the first at once
        isWithin = launchBlind() && isWithin;
        isWithin = measureMemory(subject) && isWithin;
        isWithin = measureIdle(subject) && isWithin;
        return isWithin;
    }

private:
    /// Milliseconds until the chord was taken; nothing when that never happens.
    std::optional<double> awaitRegistration(const Subject& subject) {
        while (!display_.isTaken(chord_)) {
            if (Clock::now() - subject.startedAt > 10s) {
                std::printf("  the hotkey was never registered\n");
                return std::nullopt;
            }
            std::this_thread::sleep_for(500us);
        }
        return Milliseconds(Clock::now() - subject.startedAt).count();
    }

    /// Until the program has told that it knows all the names, which it reads after its start.
    bool awaitIndex() {
        const int names = options_.number("--names");
        const auto deadline = Clock::now() + 120s;
        while (names > 0 && !options_.log.empty() && namesInLog() < names) {
            if (Clock::now() > deadline) {
                std::printf("  the index holds %d names and never %d\n", namesInLog(), names);
                return false;
            }
            std::this_thread::sleep_for(50ms);
        }
        return true;
    }

    /// Of the line about the last walk; 0 before there is one.
    int namesInLog() const {
        std::ifstream log(options_.log);
        int names = 0;
        for (std::string line; std::getline(log, line);) {
            const auto at = line.find(" file index: ");
            int told = 0;
            int milliseconds = 0;
            if (at != std::string::npos &&
                std::sscanf(
                    line.c_str() + at, " file index: %d items in %d ms", &told, &milliseconds) == 2)
                names = told;
        }
        return names;
    }

    /// Until it has used no processor time for a second: the cache of the index is saved by then
    /// and the first scan is over.
    static bool awaitRest(const Subject& subject) {
        const auto deadline = Clock::now() + 60s;
        auto restsSince = Clock::now();
        for (double used = subject.processorTime(); Clock::now() - restsSince < 1s;) {
            std::this_thread::sleep_for(100ms);
            const double now = subject.processorTime();
            if (now > used)
                restsSince = Clock::now();
            used = now;
            if (Clock::now() > deadline) {
                std::printf("  the program never comes to rest\n");
                return false;
            }
        }
        return true;
    }

    bool measureStarts(const std::vector<std::string>& command) {
        Sample sample;
        for (int i = 0; i < options_.number("--starts"); ++i) {
            sample.take([&] {
                const Subject subject(command);
                return awaitRegistration(subject);
            });
        }
        return report(startBar, sample);
    }

    /// Milliseconds from the press until half of the panel was drawn; nothing when it never was.
    std::optional<double> show() {
        display_.forget();
        const auto pressed = display_.press(chord_);
        const auto deadline = pressed + patience;
        bool isMapped = false;
        bool hasComeUp = false;
        long drawn = 0;
        while (const auto seen = display_.next(deadline)) {
            isMapped = isMapped || seen->kind == Sight::Kind::mapped;
            if (!isMapped || seen->kind != Sight::Kind::drawn)
                continue;
            // The display reports a window that comes up as drawn all over, with nothing in it yet;
            // what the program draws follows. A display that didn't would only be counted slower.
            if (!std::exchange(hasComeUp, true))
                continue;
            drawn += static_cast<long>(seen->width) * (seen->bottom - seen->top);
            const auto panel = display_.panel();
            if (2 * drawn >= static_cast<long>(panel.width) * panel.height)
                return Milliseconds(seen->at - pressed).count();
        }
        return std::nullopt;
    }

    /// Until nothing is drawn any more.
    void settle() {
        while (display_.next(Clock::now() + quiet)) {
        }
    }

    /// Escape may first clear what was typed.
    void hide() {
        for (int i = 0; i < 3; ++i) {
            const auto pressed = display_.pressKeysym(keysymEscape);
            while (const auto seen = display_.next(pressed + 300ms)) {
                if (seen->kind == Sight::Kind::unmapped)
                    return;
            }
        }
        std::printf("  the panel doesn't go away\n");
        std::exit(1);
    }

    bool measurePresses() {
        Sample sample;
        for (int i = 0; i < options_.number("--rounds"); ++i) {
            sample.take([&] { return show(); });
            settle();
            hide();
            settle();
        }
        return report(pressBar, sample);
    }

    /// Milliseconds until the list below the field was drawn to its end; nothing when it wasn't.
    std::optional<double> typeLetter(char letter) {
        display_.forget();
        const auto pressed = display_.pressLetter(letter);
        auto deadline = pressed + 500ms;
        std::optional<double> time;
        while (const auto seen = display_.next(deadline)) {
            if (seen->kind != Sight::Kind::drawn || seen->bottom <= fieldHeight)
                continue;
            time = Milliseconds(seen->at - pressed).count();
            deadline = seen->at + quiet;
        }
        return time;
    }

    bool measureKeys() {
        const std::string words[] = {"report", "image", "music", "photo", "text", "settings"};
        Sample sample;
        show();
        for (int typed = 0, i = 0; typed < options_.number("--rounds"); ++i) {
            const auto& word = words[static_cast<std::size_t>(i) % std::size(words)];
            for (const char letter : word) {
                sample.take([&] { return typeLetter(letter); });
                ++typed;
            }
            for (std::size_t k = 0; k < word.size(); ++k) {
                display_.pressKeysym(keysymBackSpace);
                settle();
            }
        }
        hide();
        return report(keyBar, sample);
    }

    /// Letters every ten milliseconds from the hotkey on, the first so long after it; gives the
    /// moment at which the next one is due.
    Clock::time_point pressBlind(const std::string& letters, std::chrono::milliseconds first) {
        display_.forget();
        auto due = display_.press(chord_) + first;
        for (const char letter : letters) {
            std::this_thread::sleep_until(due);
            display_.pressLetter(letter);
            due += 10ms;
        }
        return due;
    }

    /// The hotkey, a hundred letters and Return, without a look at the screen: the application with
    /// that name is launched, and not the one that is first until the last letter counts.
    bool launchBlind() {
        if (options_.blindMark.empty())
            return true;
        const std::filesystem::path mark = options_.blindMark;
        const auto decoy = options_.blindMark + "-decoy";
        std::this_thread::sleep_until(pressBlind(blindLetters(), 10ms));
        display_.pressKeysym(keysymReturn);
        const auto deadline = Clock::now() + 10s;
        while (!exists(mark) && !std::filesystem::exists(decoy) && Clock::now() < deadline)
            std::this_thread::sleep_for(5ms);
        const bool isRight = exists(mark) && !std::filesystem::exists(decoy);
        std::printf("  and Return at once after them: %s\n",
                    isRight        ? "launched what has exactly that name"
                    : exists(mark) ? "launched more than that"
                                   : "did not launch what has that name");
        std::filesystem::remove(mark);
        std::filesystem::remove(decoy);
        return isRight;
    }

    /// A hundred letters, all of them read back from the field.
    bool typeBlind(std::chrono::milliseconds first) {
        const auto letters = blindLetters();
        pressBlind(letters, first);
        settle();
        const auto panel = display_.panel();
        display_.click(panel.x + panel.width / 3, panel.y + fieldHeight / 2, 3);
        std::this_thread::sleep_for(100ms);
        const auto text = display_.selectedText();
        hide();
        std::printf("  %zu keys typed blind, the first %d ms after the press: %s\n",
                    letters.size(),
                    static_cast<int>(first.count()),
                    text == letters ? "all in the field, in order" : text.c_str());
        return text == letters;
    }

    void showAndHide(int times) {
        for (int i = 0; i < times; ++i) {
            show();
            hide();
        }
    }

    bool measureMemory(const Subject& subject) {
        const int shows = options_.number("--soak");
        if (shows == 0)
            return true;
        showAndHide(showsBeforeSoak);
        const double before = subject.memory();
        showAndHide(shows);
        const double after = subject.memory();
        const double bar = growthBar * shows / 1000;
        std::printf("  memory: %.1f MB before %d shows, %.1f MB after; of the bar %.2f\n",
                    before,
                    shows,
                    after,
                    (after - before) / bar);
        return after - before <= bar;
    }

    bool measureIdle(const Subject& subject) {
        const int seconds = options_.number("--idle");
        if (seconds == 0)
            return true;
        const double before = subject.processorTime();
        std::this_thread::sleep_for(std::chrono::seconds(seconds));
        const double share = 100 * (subject.processorTime() - before) / seconds;
        std::printf("  idle for %d s: %.3f %% of a core; of the bar %.2f\n",
                    seconds,
                    share,
                    share / idleBar);
        return share < idleBar;
    }

    const Options& options_;
    PanelProbeDisplay& display_;
    PanelProbeDisplay::Chord chord_;
};

Options optionsOf(int argc, char** argv) {
    Options options;
    int i = 1;
    for (; i + 1 < argc && options.values.contains(argv[i]); i += 2)
        options.values[argv[i]] = argv[i + 1];
    options.program.assign(argv + i, argv + argc);
    return options;
}

/// The names of the planned tree, no deeper than the index takes files in (the fourth level below
/// a folder that is searched): a few hundred folders a shelf, each with its files.
std::vector<PlannedEntry> shallowTree(std::size_t count) {
    constexpr std::size_t foldersOfShelf = 200;
    std::map<std::string, std::string> places; ///< of the planned folders
    std::vector<PlannedEntry> tree;
    std::string shelf;
    for (const auto& [path, isFolder] : plannedTree(count)) {
        const auto slash = path.rfind('/');
        const auto parent = slash == std::string::npos ? "" : path.substr(0, slash);
        const auto name = path.substr(slash + 1); // all of it where there is no slash
        if (!isFolder) {
            const auto place = parent.empty() ? "" : places.at(parent) + "/";
            tree.push_back({.path = place + name});
            continue;
        }
        if (places.size() % foldersOfShelf == 0) {
            shelf = "Shelf " + std::to_string(places.size() / foldersOfShelf);
            tree.push_back({.path = shelf, .isFolder = true});
        }
        const auto place = shelf + "/" + name + " " + std::to_string(places.size());
        places[path] = place;
        tree.push_back({.path = place, .isFolder = true});
    }
    return tree;
}

/// A home folder of that many files, so that the user's own counts for nothing.
void furnish(const std::filesystem::path& home, int names) {
    std::filesystem::create_directories(home / "Documents");
    ::setenv("HOME", home.c_str(), 1);
    for (const char* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
        ::unsetenv(name);
    if (names > 0)
        makeTree(home / "Documents", shallowTree(static_cast<std::size_t>(names)));
}

/// Gives the home folder an application that leaves that file behind when it is launched.
void install(const std::filesystem::path& home, const std::string& name, const std::string& mark) {
    const auto folder = home / ".local/share/applications";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / (std::filesystem::path(mark).filename().string() + ".desktop"))
        << "[Desktop Entry]\nType=Application\nName=" << name << "\nExec=/usr/bin/touch " << mark
        << "\n";
}

/// What the real program is proven with and its stand-in lacks.
Options ofProgram(Options options, const std::filesystem::path& home) {
    options.log = home / ".local/share/tessarine/tessarine.log";
    options.blindMark = home / "launched-blind";
    auto letters = blindLetters();
    install(home, letters, options.blindMark);
    letters.pop_back();
    install(home, letters, options.blindMark + "-decoy");
    return options;
}

int run(int argc, char** argv) {
    const auto options = optionsOf(argc, argv);
    PanelProbeDisplay display;
    if (!display.chord(options.values.at("--chord"))) {
        std::printf("no such chord: %s\n", options.values.at("--chord").c_str());
        return 2;
    }
    const auto own = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    auto scratch = (std::filesystem::temp_directory_path() / "tessarine-probe-XXXXXX").string();
    if (!::mkdtemp(scratch.data()))
        return 1;
    furnish(scratch, options.number("--names"));

    auto limit = options;
    limit.values["--chord"] = "super+space";
    limit.values["--names"] = limit.values["--soak"] = limit.values["--idle"] = "0";
    std::printf("the least that a panel can be:\n");
    bool isWithin = Probe(limit, display).measure({own / "PanelProbeSubject"});
    if (!options.program.empty()) {
        std::printf("%s:\n", options.program.front().c_str());
        const auto whole = ofProgram(options, scratch);
        isWithin = Probe(whole, display).measure(whole.program) && isWithin;
    }
    std::filesystem::remove_all(scratch);
    return isWithin ? 0 : 1;
}

} // namespace
} // namespace tessarine

int main(int argc, char** argv) {
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    return tessarine::run(argc, argv);
}
