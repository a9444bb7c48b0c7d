#pragma once

#include <string>

namespace tessarine {

struct ModeContext;

/// `--search`: what a query finds on this machine, one JSON object a row.
namespace SearchMode {

/// Prints the rows of `query`, a list command's once its script has printed them, and ends with
/// status 0, also when there are none.
void run(ModeContext& context, const std::string& query);

} // namespace SearchMode
} // namespace tessarine
