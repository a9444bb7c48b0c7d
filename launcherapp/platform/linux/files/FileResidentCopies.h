#pragma once

#include "launcherapp/platform/ResidentCopies.h"
#include "launcherapp/platform/linux/files/FileDescriptor.h"

#include <string>

namespace tessarine {

struct Environment;

/// Resident copies that find each other by locked files in the session's run-time folder. The
/// lock ends with its process, so a file left over is never taken for a copy, and a process id
/// that another program has by now is never touched.
class FileResidentCopies : public ResidentCopies {
public:
    explicit FileResidentCopies(const Environment& environment);

    void announce() override;
    std::vector<std::int64_t> others() const override;
    void terminate(std::int64_t process) override;
    void forceTerminate(std::int64_t process) override;
    bool isGone(std::int64_t process) const override;
    void pause(std::chrono::milliseconds duration) override;

private:
    std::string fileOf(std::int64_t process) const;

    std::string folder_; ///< empty outside a login session
    FileDescriptor own_;
};

} // namespace tessarine
