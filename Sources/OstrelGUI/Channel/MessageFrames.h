#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace Ostrel {

/// What the two ends of the window's channel send each other: a JSON object and some raw bytes.
///
///     4 bytes   length of the JSON text, little endian
///     4 bytes   length of the raw bytes
///     the JSON text, UTF-8
///     the raw bytes
namespace MessageFrames {
/// A library of a hundred thousand widgets fits; what claims to be longer is none of ours.
inline constexpr std::size_t LongestText = std::size_t{64} << 20;
inline constexpr std::size_t LongestBlob = std::size_t{16} << 20;

/// All of a frame but its raw bytes. Empty when one of the two is too long to be sent. Text that is not UTF-8 is
/// sent with replacement characters.
std::string begin(const nlohmann::json& message, std::size_t blobSize);
} // namespace MessageFrames

/// Puts the frames of a stream together again.
class FrameReader {
public:
    using Handler = std::function<void(const nlohmann::json& message, std::string blob)>;

    /// Takes the next bytes of the stream and hands on the frames that are complete with them. False from the moment
    /// the stream breaks the rules: a length out of bounds, a text that is no JSON object. The handler
    /// must not end the reader's life.
    [[nodiscard]] bool read(std::string_view bytes, const Handler& handler);

private:
    /// Whether there was a complete frame.
    bool takeFrame(std::string_view& rest, const Handler& handler);

    std::string pending_;
    bool isGood_ = true;
};

} // namespace Ostrel
