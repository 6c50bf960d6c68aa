#pragma once

#include <cstdint>

namespace Ostrel {

/// A sequence that its seed decides (splitmix64, G. Steele, D. Lea, C. Flood, 2014): small, and the same on every run
/// with the same clock.
class RandomNumbers {
public:
    explicit RandomNumbers(std::uint64_t seed)
        : state_(seed) { }

    std::uint64_t next() {
        std::uint64_t z = state_ += 0x9e3779b97f4a7c15U;
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9U;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebU;
        return z ^ (z >> 31);
    }

    /// 0 to `count` - 1; `count` is above 0. The bias is below one in a billion for counts of 32 bits.
    std::uint64_t below(std::uint64_t count) { return next() % count; }

private:
    std::uint64_t state_;
};

} // namespace Ostrel
