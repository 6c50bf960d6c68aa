#include "OstrelEngine/Measures/MovingAverage.h"

#include <utility>

namespace Ostrel {

double MovingAverage::add(double value, std::size_t size) {
    if (size < 2) {
        *this = {};
        return value;
    }
    if (ring_.size() != size) {
        *this = {};
        ring_.resize(size);
    }
    // The new value less the old one in one term: the order in which rounding happens is part of the result.
    if (count_ < size) {
        ++count_;
        sum_ += value;
        ring_[writeIndex_] = value;
    } else {
        const double old = std::exchange(ring_[writeIndex_], value);
        sum_ += value - old;
    }
    writeIndex_ = (writeIndex_ + 1) % size;
    return sum_ / static_cast<double>(count_);
}

} // namespace Ostrel
