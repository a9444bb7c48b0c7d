#pragma once

#include "LauncherCore/query/UsageLog.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

/// The JSON form of usage logs, as the state files and the settings document hold it: an object
/// with "items" (id to "launches" and "total") and "choices" (query to id to count), all required.
/// Pure; any thread.
namespace tessarine::UsageJson {

std::string encoded(const UsageLog& log);
/// Nothing when the text is no such document, whole.
std::optional<UsageLog> decodedLog(std::string_view text);

/// An object from device id to log.
std::string encoded(const std::map<std::string, UsageLog>& devices);
std::optional<std::map<std::string, UsageLog>> decodedDevices(std::string_view text);

} // namespace tessarine::UsageJson
