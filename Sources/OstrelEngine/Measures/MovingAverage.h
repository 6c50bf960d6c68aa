#pragma once

#include <cstddef>
#include <vector>

namespace Ostrel {

/// The mean of the last values of a measure. The sum is kept by adding and subtracting, never summed again.
class MovingAverage {
public:
    /// Takes a value in and gives the mean over at most `size` values. A size below 2 forgets them all and gives the
    /// value itself; another size than before forgets what came before.
    double add(double value, std::size_t size);

private:
    std::vector<double> ring_;
    std::size_t count_ = 0;
    std::size_t writeIndex_ = 0;
    double sum_ = 0;
};

} // namespace Ostrel
