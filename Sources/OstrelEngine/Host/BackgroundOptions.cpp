#include "OstrelEngine/Host/BackgroundOptions.h"

#include "OstrelCore/Documents/SkinModel.h"
#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Meters/ColorParser.h"
#include "OstrelEngine/Meters/ImageLoader.h"
#include "OstrelEngine/Meters/ImageMeter.h"
#include "OstrelPlatform/RemoteReader.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

namespace {

/// Written left, top, right, bottom; exactly four numbers among whatever stands there.
BackgroundMargins parseMargins(std::string_view text) {
    std::vector<double> numbers;
    for (const auto piece : split(text, ','))
        if (const auto number = parseDouble(trimmedWhitespace(piece)))
            numbers.push_back(*number);
    if (numbers.size() != 4)
        return {};
    return {.top = numbers[1], .right = numbers[2], .bottom = numbers[3], .left = numbers[0]};
}

/// A background is a file; it is not fetched.
class NoNetwork final : public RemoteReader {
    std::optional<std::string> read(const std::string&) override { return std::nullopt; }
};

QImage readImage(const std::string& path) {
    NoNetwork network;
    return ImageLoader::isImageURL(path) ? QImage() : ImageLoader::load(path, network);
}

} // namespace

CanvasBackground backgroundOf(const SkinConfig& config) {
    const auto& options = config.rainmeterOptions;
    CanvasBackground background;
    background.mode = options.backgroundMode.value_or(0);
    if (options.background)
        background.image = readImage(ImageMeter::resolveImagePath(*options.background, config.filePath));
    if (const auto color = option(options.allOptions, "SolidColor"_key))
        background.solidColor = ColorParser::parse(*color);
    if (options.backgroundMargins)
        background.margins = parseMargins(*options.backgroundMargins);
    return background;
}

} // namespace Ostrel
