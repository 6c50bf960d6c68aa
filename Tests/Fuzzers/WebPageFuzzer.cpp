#include "OstrelEngine/Measures/Full/WebPage.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// First line: the pattern; second: the pattern of a child; then the page.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace Ostrel;
    std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto line = [&] {
        const auto end = text.find('\n');
        const auto found = text.substr(0, end);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        return std::string(found);
    };
    std::vector<WebPart> parts(3);
    parts[0].pattern = line();
    parts[0].index = 1;
    parts[1].pattern = line();
    parts[1].parent = 0;
    parts[1].index2 = 99;
    parts[2].parent = 1;
    parts[2].index = -1;
    parts[2].decodedReferences = 1;
    parts[2].decodesCodePoints = true;
    for (const int codePage : {0, 1200, 1252, 932})
        WebPage::decoded(std::string(text), codePage);
    WebPage::take(WebPage::decoded(std::string(text), 0), parts);
    WebPage::hostOf(WebPage::encodedAddress(text));
    return 0;
}
