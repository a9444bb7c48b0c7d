#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace tessarine {

/// Runs the event loop until the condition holds; false when it doesn't in ten seconds.
inline bool spinUntil(const std::function<bool()>& holds) {
    constexpr int patienceMilliseconds = 10000;
    QElapsedTimer clock;
    clock.start();
    while (!holds()) {
        if (clock.elapsed() > patienceMilliseconds)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
    }
    return true;
}

/// Runs the event loop for a while, to see that something does not happen.
inline void spinFor(int milliseconds) {
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents, milliseconds);
}

/// A folder below the system's temporary one, removed with all it holds.
class ScratchFolder {
public:
    ScratchFolder() {
        auto pattern = (std::filesystem::temp_directory_path() / "tessarine-linux-XXXXXX").string();
        if (!::mkdtemp(pattern.data()))
            throw std::runtime_error("no temporary folder");
        path_ = pattern;
    }

    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string path(const std::string& below = "") const { return path_ + below; }

    std::string write(const std::string& below, const std::string& bytes) const {
        std::ofstream(path(below)) << bytes;
        return path(below);
    }

    std::string folder(const std::string& below) const {
        std::filesystem::create_directories(path(below));
        return path(below);
    }

    std::string text(const std::string& below) const {
        std::ostringstream text;
        text << std::ifstream(path(below)).rdbuf();
        return text.str();
    }

private:
    std::string path_;
};

} // namespace tessarine
