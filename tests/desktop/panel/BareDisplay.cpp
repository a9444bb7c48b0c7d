#include "tests/desktop/panel/BareDisplay.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace tessarine {

BareDisplay::BareDisplay() {
    if (const char* display = std::getenv("DISPLAY"))
        before_ = display;
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    constexpr int told = 3; // where the server writes the display's number once it takes clients
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], told);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    std::array<std::string, 8> words{
        "Xvfb", "-displayfd", "3", "-screen", "0", "1024x768x24", "-nolisten", "tcp"};
    std::array<char*, 9> arguments{};
    for (std::size_t i = 0; i < words.size(); ++i)
        arguments[i] = words[i].data();
    const int failure =
        ::posix_spawnp(&server_, "Xvfb", &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    std::string number;
    for (char digit = 0; ::read(ends[0], &digit, 1) == 1 && digit != '\n';)
        number.push_back(digit);
    ::close(ends[0]);
    if (failure != 0 || number.empty())
        throw std::runtime_error("the X server did not start");
    ::setenv("DISPLAY", (":" + number).c_str(), 1);
}

BareDisplay::~BareDisplay() {
    ::setenv("DISPLAY", before_.c_str(), 1);
    ::kill(server_, SIGTERM);
    ::waitpid(server_, nullptr, 0);
}

} // namespace tessarine
