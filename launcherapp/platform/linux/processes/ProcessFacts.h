#pragma once

#include <cstdint>
#include <string>

/// What the kernel tells of another process of the user.
namespace tessarine::ProcessFacts {

/// The path of its program; empty when it is gone or another user's.
std::string executable(std::int64_t process);

/// The application id that its launcher or sandbox gave it, from the name of its control group;
/// see SystemdScope::applicationID. Empty when the name tells none.
std::string applicationID(std::int64_t process);

/// Whether the process still runs the program of that path; false for process 0 and an empty path.
/// Another program may have got the process's number since, but hardly another copy of the same.
bool stillRuns(std::int64_t process, const std::string& executable);

} // namespace tessarine::ProcessFacts
