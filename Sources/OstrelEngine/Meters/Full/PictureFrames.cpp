#include "OstrelEngine/Meters/Full/PictureFrames.h"

#include <algorithm>

namespace Ostrel {

void PictureFrames::set(const QImage& picture, int count) {
    frames_.clear();
    size_ = {};
    picture_ = picture;
    const bool isWide = picture.width() > picture.height();
    const int length = (isWide ? picture.width() : picture.height()) / std::max(1, count);
    if (length < 1)
        return;
    frames_.resize(static_cast<std::size_t>(std::max(1, count)));
    size_ = isWide ? Size{static_cast<double>(length), static_cast<double>(picture.height())}
                   : Size{static_cast<double>(picture.width()), static_cast<double>(length)};
}

const QImage& PictureFrames::frame(int index) const {
    static const QImage None;
    if (index < 0 || index >= count())
        return None;
    auto& frame = frames_[static_cast<std::size_t>(index)];
    if (frame.isNull()) {
        const int width = static_cast<int>(size_.width);
        const int height = static_cast<int>(size_.height);
        const bool isWide = picture_.width() > picture_.height();
        frame = picture_.copy(isWide ? index * width : 0, isWide ? 0 : index * height, width, height);
    }
    return frame;
}

} // namespace Ostrel
