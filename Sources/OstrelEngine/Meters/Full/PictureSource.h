#pragma once

#include "OstrelEngine/Meters/Full/FullMeter.h"
#include "OstrelEngine/Meters/Full/PictureOptions.h"

#include <QImage>

#include <memory>
#include <string>
#include <string_view>

namespace Ostrel {

/// The picture of a meter: a file after the general image options. Meters that ask for the same share it, and it is
/// read and computed once until the file changes. Main thread.
class PictureSource {
public:
    /// `Frames` are equal parts of the file, which crop and rotation would shift: these are not read.
    enum class Kind { Whole, Frames };

    explicit PictureSource(const FullMeterContext& context, Kind kind = Kind::Whole)
        : folders_(context.folders)
        , kind_(kind) { }

    /// Image options under a prefix, the folder of names, and whether the file is looked at again at each `show`. True
    /// when they are others.
    bool setOptions(const Options& options, std::string_view prefix = {});
    /// Names the picture: absolute, or in the folder of "ImagePath", or in the skin's; ".png" without an ending. An
    /// empty name and a file that cannot be read show none. True when the picture is another.
    bool show(std::string_view name);
    /// Null without a picture.
    const QImage& image() const { return picture_ ? *picture_ : NoImage; }

    /// Where a name of a picture leads.
    static std::string pathOf(std::string_view name, std::string_view imagePath, const PackFolders& folders);

private:
    static const QImage NoImage;

    const PackFolders& folders_;
    const Kind kind_;
    PictureOptions options_;
    std::string folder_;
    bool isDynamic_ = false;
    bool hasOptions_ = false;

    std::string name_;
    std::string path_;
    bool isShown_ = false;
    std::shared_ptr<const QImage> picture_;
};

} // namespace Ostrel
