#include "OstrelEngine/Measures/Full/LuaPattern.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>

namespace {

/// Gives every match a bounded number of steps.
class Watch final : public Ostrel::PatternWatch {
public:
    void spend(long long steps) override {
        if ((left_ -= steps) < 0)
            fail("spent");
    }
    [[noreturn]] void fail(const char* message) override { throw std::runtime_error(message); }

private:
    long long left_ = 100000;
};

} // namespace

/// The text up to the first line end is the pattern.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto end = text.find('\n');
    if (end == std::string_view::npos)
        return 0;
    const auto subject = text.substr(end + 1);
    Watch watch;
    Ostrel::LuaPattern pattern(subject, text.substr(0, end), watch);
    try {
        for (std::size_t from = 0; from <= subject.size(); ++from) {
            const auto found = pattern.match(from);
            if (!found)
                continue;
            if (*found < from || *found > subject.size())
                __builtin_trap();
            for (std::size_t i = 0; i < pattern.captureCount(); ++i) {
                const auto& capture = pattern.capture(i);
                if (capture.begin + capture.length > subject.size())
                    __builtin_trap();
            }
        }
    } catch (const std::runtime_error&) { }
    return 0;
}
