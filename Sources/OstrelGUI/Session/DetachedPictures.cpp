#include "OstrelGUI/Session/DetachedPictures.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelGUI/Session/Base64.h"

#include <memory>
#include <optional>

namespace Ostrel {

namespace {

constexpr std::string_view PictureMember = "snapshotData";

/// Where the string that begins behind `start` ends: its closing quote, or the end of the text.
std::size_t endOfString(std::string_view text, std::size_t start) {
    for (auto quote = text.find('"', start); quote != std::string_view::npos; quote = text.find('"', quote + 1)) {
        auto backslashes = quote;
        while (backslashes > start && text[backslashes - 1] == '\\')
            --backslashes;
        if ((quote - backslashes) % 2 == 0)
            return quote;
    }
    return text.size();
}

} // namespace

std::shared_ptr<const SnapshotPicture> DetachedPictures::resolve(std::string_view value) const {
    const auto number = value.starts_with(Placeholder) ? parseInteger(value.substr(1)) : std::nullopt;
    const bool isDetached = number && *number >= 0 && static_cast<std::size_t>(*number) < texts.size();
    const auto text = isDetached ? texts[static_cast<std::size_t>(*number)] : value;
    if (isDetached && file && !text.empty())
        return std::make_shared<const SnapshotPicture>(
            SnapshotPicture::Stored{file, text.data() - source.data(), text.size()});
    auto bytes = decodedBase64(text);
    return bytes && !bytes->empty() ? std::make_shared<const SnapshotPicture>(std::move(*bytes)) : nullptr;
}

DetachedPictures detachPictures(std::string_view json, std::shared_ptr<const FileDescriptor> file) {
    DetachedPictures result;
    result.source = json;
    result.file = std::move(file);
    std::string_view lastString;
    std::size_t position = 0;
    while (true) {
        const auto quote = json.find('"', position);
        const auto between = json.substr(position, quote - position);
        result.json += between;
        if (quote == std::string_view::npos)
            return result;
        const auto end = endOfString(json, quote + 1);
        const auto body = json.substr(quote + 1, end - quote - 1);
        const bool isPicture = lastString == PictureMember && trimmed(between) == ":" && end < json.size();
        result.json += '"';
        if (isPicture && body.find('\\') == std::string_view::npos) {
            result.json += DetachedPictures::Placeholder;
            result.json += formatInteger(static_cast<std::int64_t>(result.texts.size()));
            result.texts.push_back(body);
        } else {
            result.json += body;
        }
        if (end == json.size())
            return result;
        result.json += '"';
        lastString = body;
        position = end + 1;
    }
}

} // namespace Ostrel
