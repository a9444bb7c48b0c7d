#pragma once

#include <memory>
#include <string>

namespace tessarine {

class Diagnostics;
class FileIndex;
class IndexWalker;
class MountedVolumes;
class TreeWatcher;
class WorkQueues;
struct ModeContext;

/// What the modes of the index use beside what every mode does.
struct IndexModeServices {
    WorkQueues& work;
    Diagnostics& diagnostics;
    TreeWatcher& trees;
    MountedVolumes& volumes;
    FileIndex& index;
    std::shared_ptr<IndexWalker> walker;
};

/// Self-tests, trials and probes of the file index, as modes of the command line.
namespace IndexModes {

void selftestWalker(ModeContext& context, const std::string& value);
void selftestDelta(ModeContext& context, const std::string& value);
void selftestIndex(ModeContext& context, const std::string& value);
void selftestIndexDuty(ModeContext& context, const std::string& value);
void selftestFsevents(ModeContext& context, const std::string& value);
void selftestVolumes(ModeContext& context, const std::string& value);
void walkerDiff(ModeContext& context, const std::string& value);
void indexSoak(ModeContext& context, const std::string& seconds);
void driveProbe(ModeContext& context, const std::string& value);

} // namespace IndexModes
} // namespace tessarine
