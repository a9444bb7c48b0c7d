#pragma once

#include <cstdint>
#include <fstream>
#include <string>

namespace tessarine {

/// Whether a virtual machine's host took the processors away meanwhile, as the kernel counts it in
/// hundredths of a second ("steal" of /proc/stat). A time measured across that says nothing of the
/// program. Any thread.
class StolenTime {
public:
    /// Since the last time it was asked.
    bool wasTaken() {
        const auto now = total();
        const bool isMore = now > last_;
        last_ = now;
        return isMore;
    }

private:
    static std::int64_t total() {
        std::ifstream file("/proc/stat");
        std::string name;
        // user, nice, system, idle, iowait, irq, softirq, steal
        std::int64_t values[8] = {};
        file >> name;
        for (auto& value : values)
            file >> value;
        return values[7];
    }

    std::int64_t last_ = total();
};

} // namespace tessarine
