#include "OstrelGUI/Channel/MessageFrames.h"

#include <nlohmann/json.hpp>

#include <cstdint>

namespace Ostrel {

namespace {

constexpr std::size_t LengthSize = 4;
constexpr std::size_t PrefixSize = 2 * LengthSize;

void appendLength(std::string& text, std::size_t length) {
    for (std::size_t i = 0; i < LengthSize; ++i)
        text += static_cast<char>(length >> 8 * i & 0xff);
}

std::size_t lengthAt(std::string_view bytes) {
    std::size_t length = 0;
    for (std::size_t i = 0; i < LengthSize; ++i)
        length |= std::size_t{static_cast<std::uint8_t>(bytes[i])} << 8 * i;
    return length;
}

} // namespace

std::string MessageFrames::begin(const nlohmann::json& message, std::size_t blobSize) {
    const auto text = message.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    if (text.size() > LongestText || blobSize > LongestBlob)
        return {};
    std::string frame;
    frame.reserve(PrefixSize + text.size());
    appendLength(frame, text.size());
    appendLength(frame, blobSize);
    return frame += text;
}

bool FrameReader::read(std::string_view bytes, const Handler& handler) {
    // Most reads begin and end with a frame, and need no copy.
    if (!pending_.empty()) {
        pending_ += bytes;
        bytes = pending_;
    }
    std::string_view rest = bytes;
    while (isGood_ && takeFrame(rest, handler)) { }
    pending_ = std::string(rest);
    return isGood_;
}

bool FrameReader::takeFrame(std::string_view& rest, const Handler& handler) {
    if (rest.size() < PrefixSize)
        return false;
    const auto textSize = lengthAt(rest);
    const auto blobSize = lengthAt(rest.substr(LengthSize));
    isGood_ = textSize <= MessageFrames::LongestText && blobSize <= MessageFrames::LongestBlob;
    if (!isGood_ || rest.size() < PrefixSize + textSize + blobSize)
        return false;
    const auto message = nlohmann::json::parse(rest.substr(PrefixSize, textSize), nullptr, false);
    isGood_ = message.is_object();
    if (!isGood_)
        return false;
    std::string blob(rest.substr(PrefixSize + textSize, blobSize));
    rest.remove_prefix(PrefixSize + textSize + blobSize);
    handler(message, std::move(blob));
    return true;
}

} // namespace Ostrel
