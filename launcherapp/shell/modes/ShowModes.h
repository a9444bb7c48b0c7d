#pragma once

#include <string>

namespace tessarine {

struct ModeContext;

/// Modes that show the panel, or measure what showing it takes.
namespace ShowModes {

void show(ModeContext& context, const std::string& value);
void selftestShow(ModeContext& context, const std::string& value);
void benchFirstShow(ModeContext& context, const std::string& value);

} // namespace ShowModes
} // namespace tessarine
