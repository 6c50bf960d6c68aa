#include "OstrelCore/Text/Text.h"

#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>

#include <algorithm>
#include <memory>
#include <string_view>

namespace Ostrel {

bool isNumeric(char32_t c) {
    return u_getIntPropertyValue(static_cast<UChar32>(c), UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

std::string_view characterPrefix(std::string_view text, std::int64_t count) {
    // A CR LF pair is one character, so even plain text is not quite a matter of bytes.
    if (isASCII(text) && text.find('\r') == std::string_view::npos)
        return text.substr(0, static_cast<std::size_t>(std::max<std::int64_t>(count, 0)));
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> characters(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), error));
    UText source = UTEXT_INITIALIZER;
    utext_openUTF8(&source, text.data(), static_cast<int64_t>(text.size()), &error);
    int32_t end = 0;
    if (U_SUCCESS(error)) {
        characters->setText(&source, error);
        for (std::int64_t i = 0; i < count; ++i) {
            const int32_t next = characters->next();
            if (next == icu::BreakIterator::DONE)
                break;
            end = next;
        }
    }
    utext_close(&source);
    return text.substr(0, static_cast<std::size_t>(end));
}

} // namespace Ostrel
