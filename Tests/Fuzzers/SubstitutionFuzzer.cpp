#include "OstrelEngine/Measures/Substitution.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

/// One byte for the mode, the option up to the first line end, and the text it is applied to.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using Ostrel::Substitution;
    if (size == 0)
        return 0;
    const auto mode = data[0] % 2 == 0 ? Substitution::Mode::Plain : Substitution::Mode::RegularExpression;
    const std::string_view input(reinterpret_cast<const char*>(data) + 1, size - 1);
    const auto option = input.substr(0, input.find('\n'));
    const auto text = input.substr(option.size());
    const auto substitution = Substitution::create(option, mode);
    if (!substitution)
        return 0;
    const auto once = substitution->apply(text);
    if (once.size() > text.size() + (1U << 20))
        std::abort();
    substitution->apply("another");
    if (substitution->apply(text) != once)
        std::abort();
    return 0;
}
