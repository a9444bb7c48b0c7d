// Feeds a harness its seeds and then mutations of them, the same ones in every run, for a bounded
// time. A harness has the entry point of libFuzzer, so that it can be linked with that as well.

#include "tests/fuzz/FuzzHarness.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr double defaultSeconds = 3;
constexpr std::size_t longestInput = 1 << 16;

class Mutator {
public:
    explicit Mutator(std::vector<std::string> corpus) : corpus_(std::move(corpus)) {}

    std::string next() {
        auto input = pick();
        for (auto changes = 1 + random_() % 8; changes > 0; --changes)
            change(input);
        if (input.size() > longestInput)
            input.resize(longestInput);
        return input;
    }

private:
    const std::string& pick() { return corpus_[random_() % corpus_.size()]; }

    std::size_t place(const std::string& input) { return random_() % (input.size() + 1); }

    void change(std::string& input) {
        // Bytes that readers of text give a meaning to.
        static constexpr std::string_view meaningful("\0\n\r\t =;:[]\"\\%$`~/#\xff\xc3\xe2", 22);
        switch (random_() % 6) {
        case 0:
            if (!input.empty())
                input[random_() % input.size()] = static_cast<char>(random_());
            break;
        case 1:
            input.insert(place(input), 1, meaningful[random_() % meaningful.size()]);
            break;
        case 2:
            input.erase(place(input), random_() % 16);
            break;
        case 3: { // a piece of another input
            const auto& other = pick();
            const auto from = place(other);
            input.insert(place(input), other.substr(from, random_() % 64));
            break;
        }
        case 4: { // a piece again, many times: long runs find what is quadratic
            const auto piece = input.substr(place(input), 1 + random_() % 8);
            const auto at = place(input);
            for (auto times = random_() % 200; times > 0; --times)
                input.insert(at, piece);
            break;
        }
        default:
            input.resize(place(input));
        }
    }

    std::vector<std::string> corpus_;
    std::mt19937 random_{20260101};
};

void feed(const std::string& input) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

} // namespace

int main(int argc, char** argv) {
    const double seconds = argc > 1 ? std::atof(argv[1]) : defaultSeconds;
    const auto seeds = fuzzSeeds();
    for (const auto& seed : seeds)
        feed(seed);
    Mutator mutator(seeds);
    const auto end = Clock::now() + std::chrono::duration<double>(seconds);
    std::size_t inputs = seeds.size();
    for (; Clock::now() < end; ++inputs)
        feed(mutator.next());
    std::printf("%zu inputs read without a fault\n", inputs);
    // Far fewer would mean that the harness hangs on some of them.
    return inputs > 100 ? 0 : 1;
}
