#pragma once

#include <cstdint>
#include <string>
#include <string_view>

class QImage;

namespace Ostrel {
class RemoteReader;
}

/// Pictures out of files and URLs, which nobody vouches for.
namespace Ostrel::ImageLoader {

constexpr std::int64_t MostPixels = 64'000'000;

/// Whether the text begins with one of the schemes http, https, file and data.
bool isImageURL(std::string_view text);
/// The first picture of a file, found without regard to case, or URL. Null when it cannot be read or decoded, or has
/// more than 64 million pixels. Blocks on the network for as long as the reader does.
QImage load(const std::string& pathOrURL, RemoteReader& remoteReader);
/// The same for a file alone; upright is as the camera noted.
enum class Orientation { AsStored, Upright };
QImage loadFile(const std::string& path, Orientation orientation);

/// The first picture of a file as it stores its colors: not premultiplied, in as many bits as it has. Null also for a
/// gray or indexed file, whatever it is decoded into, and for shapes, which have no pixels.
QImage loadStoredColors(const std::string& path);

} // namespace Ostrel::ImageLoader
