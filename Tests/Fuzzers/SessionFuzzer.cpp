// A session of any bytes: what is decoded reads back the same once written, and the change that leads to it from
// nothing gives it. The same bytes as changes, one a line, leave a session that can be written.

#include "OstrelGUI/Session/SessionCoding.h"
#include "OstrelGUI/Session/SessionReplay.h"

#include "OstrelCore/Text/Text.h"

#include <cstdint>
#include <cstdlib>

namespace {

using namespace Ostrel;

void check(const OstrelSessionState& state) {
    if (decodeSession(encodeSession(state)) != state)
        std::abort();
    SessionReplay replay({});
    if (const auto change = encodeChange({}, state); change && !replay.apply(*change))
        std::abort();
    if (replay.take() != state)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (const auto state = decodeSession(text))
        check(*state);
    (void)decodeLegacySession(text);
    SessionReplay replay({});
    for (const auto line : split(text, '\n'))
        replay.apply(line);
    check(replay.take());
    return 0;
}
