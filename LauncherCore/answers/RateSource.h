#pragma once

namespace tessarine {

/// Whose rates of exchange money is converted by.
enum class RateSource {
    ecb,  ///< the European Central Bank's reference rates, about 30 currencies
    open, ///< an open collection of about 160
};

} // namespace tessarine
