#pragma once

namespace tessarine {

/// Whose kitchen a bare "cup", "pint" or "spoon" is of.
enum class MeasureSystem {
    usCustomary, ///< a cup of 236.6 ml, a pint of 473 ml (NIST)
    imperial,    ///< a cup of 284 ml, a pint of 568 ml, spoons of 5 and 15 ml
    metric,      ///< a cup of 250 ml, spoons of 5 and 15 ml; pints and gallons as in the US
};

} // namespace tessarine
