#pragma once

#include <string>

namespace tessarine {

struct ModeContext;

/// Benches and probes of the query engine, as modes of the command line.
namespace QueryModes {

void bench(ModeContext& context, const std::string& query);
void benchAnswers(ModeContext& context, const std::string& query);
void benchStages(ModeContext& context, const std::string& query);
void benchFavorites(ModeContext& context, const std::string& value);
void actionsCheck(ModeContext& context, const std::string& query);

/// Twelve rounds of six queries, to show that no row builder calls back into the model.
void selftestRecompute(ModeContext& context, const std::string& value);
/// When a model counts as at rest.
void selftestAtRest(ModeContext& context, const std::string& value);
/// The rules of the keywords.
void selftestSettings(ModeContext& context, const std::string& value);
/// That the support folder's path costs no file-system call.
void selftestSupportDirectory(ModeContext& context, const std::string& value);

} // namespace QueryModes
} // namespace tessarine
