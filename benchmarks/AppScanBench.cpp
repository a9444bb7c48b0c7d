// One scan of 500 desktop entries as distributions ship them, each with its translations. Bar: 60
// ms in a process that has read none of them before.

#include "launcherapp/catalog/AppScan.h"
#include "launcherapp/platform/linux/files/PosixFileStore.h"

#include <benchmark/benchmark.h>

#include <array>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace tessarine {
namespace {

constexpr int entryCount = 500;
constexpr std::array languages{"af", "ar",    "be", "bg",    "bn", "ca", "cs", "da",    "de", "el",
                               "eo", "es",    "et", "eu",    "fa", "fi", "fr", "gl",    "he", "hi",
                               "hr", "hu",    "id", "it",    "ja", "kk", "ko", "lt",    "lv", "nb",
                               "nl", "pt_BR", "pt", "zh_CN", "ro", "ru", "sk", "zh_TW", "sv", "uk"};

std::string translated(const std::string& key, const std::string& value) {
    std::string lines = key + "=" + value + "\n";
    for (const auto* language : languages)
        lines += key + "[" + language + "]=" + value + " översatt till " + language + "\n";
    return lines;
}

std::string entryText(int number) {
    const auto name = "Application Number " + std::to_string(number);
    return "[Desktop Entry]\nVersion=1.5\nType=Application\n" + translated("Name", name) +
           translated("GenericName", "Tool for things") +
           translated("Comment", "Does one thing and does it well enough for most people") +
           translated("Keywords", "tool;thing;" + std::to_string(number) + ";") +
           "Exec=application-" + std::to_string(number) +
           " %U\nIcon=application\nTerminal=false\nCategories=Utility;GTK;\n"
           "MimeType=text/plain;text/html;\nStartupNotify=true\nActions=new-window;\n\n"
           "[Desktop Action new-window]\n" +
           translated("Name", "New Window") + "Exec=application --new-window\n";
}

/// A data folder of its own, written at the start and removed at the end.
class DataFolder {
public:
    DataFolder() {
        auto pattern = (std::filesystem::temp_directory_path() / "tessarine-bench-XXXXXX").string();
        path = ::mkdtemp(pattern.data());
        PosixFileStore files;
        for (int i = 0; i < entryCount; ++i)
            files.save(path + "/applications/org.example.App" + std::to_string(i) + ".desktop",
                       entryText(i));
    }

    ~DataFolder() { std::filesystem::remove_all(path); }

    std::string path;
};

void scan(benchmark::State& state, const std::string& locale) {
    const DataFolder data;
    const PosixFileStore files;
    const Environment environment{
        .home = "/nonexistent", .dataDirs = {data.path}, .messagesLocale = locale};
    const std::vector<std::string> roots{data.path + "/applications"};
    std::size_t listed = 0;
    for (auto _ : state)
        listed = AppScan::scan(files, environment, roots).apps.size();
    state.counters["listed"] = static_cast<double>(listed);
}

// One iteration: what counts is the first scan of a process, with nothing warmed but the disk.
BENCHMARK_CAPTURE(scan, firstUntranslated, "C")->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(scan, translated, "pt_BR.UTF-8")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(scan, untranslated, "C")->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tessarine

BENCHMARK_MAIN();
