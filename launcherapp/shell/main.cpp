#include "LauncherCore/text/Folding.h"
#include "launcherapp/platform/linux/desktop/LostDisplay.h"
#include "launcherapp/platform/linux/desktop/QtApplication.h"
#include "launcherapp/platform/linux/processes/ProcessEnvironment.h"
#include "launcherapp/platform/linux/wayland/CompositorVariables.h"
#include "launcherapp/shell/App.h"
#include "launcherapp/shell/modes/Modes.h"

#include <QCoreApplication>
#include <chrono>
#include <cstdio>
#include <stdexcept>

namespace tessarine {

namespace {

int runProgram(int argc, char** argv, Seconds launchedAt) {
    std::vector<std::string> words;
    for (int i = 1; i < argc; ++i)
        words.push_back(Folding::repairedUtf8(argv[i]));
    CommandLine commandLine(std::move(words));

    if (const auto refusal = Modes::refusal(commandLine)) {
        std::fputs(refusal->c_str(), stderr);
        return 2;
    }
    if (const auto ending = Modes::endEarly(commandLine)) {
        for (const auto& line : ending->lines)
            std::puts(line.c_str());
        return ending->status;
    }
    CompositorVariables::findDisplay();
    auto environment = processEnvironment();
    const auto surface = Modes::draws(commandLine)        ? QtSurface::pictures
                         : Modes::showsPanel(commandLine) ? QtSurface::windows
                                                          : QtSurface::none;
    if (!LostDisplay::awaitReturn()) {
        std::fputs("Tessarine: the compositor went away, and did not come back within a minute\n",
                   stderr);
        return 1;
    }
    CompositorVariables::renew();
    const auto application = makeQtApplication(argc, argv, surface, environment);
    try {
        return App(std::move(commandLine), std::move(environment), launchedAt).run(argv);
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "Tessarine: %s\n", error.what());
        return 1;
    }
}

} // namespace
} // namespace tessarine

int main(int argc, char** argv) {
    const tessarine::Seconds launchedAt = std::chrono::steady_clock::now().time_since_epoch();
    return tessarine::runProgram(argc, argv, launchedAt);
}
