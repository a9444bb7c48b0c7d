#pragma once

#include "launcherapp/platform/ActivationTokens.h"

#include <optional>
#include <string>

namespace tessarine {

/// Numbers its tokens, "token-1" first; what is to stay behind gets one that ends in "_TIME0".
class FakeActivationTokens : public ActivationTokens {
public:
    void prepare() override { ++prepared; }

    std::optional<std::string> take(Activation activation) override {
        if (!gives)
            return std::nullopt;
        const auto token = "token-" + std::to_string(++taken_);
        return activation == Activation::background ? token + "_TIME0" : token;
    }

    bool gives = true;
    int prepared = 0;

private:
    int taken_ = 0;
};

} // namespace tessarine
