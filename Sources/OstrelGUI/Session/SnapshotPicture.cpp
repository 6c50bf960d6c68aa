#include "OstrelGUI/Session/SnapshotPicture.h"

#include "OstrelGUI/Session/Base64.h"

#include <cerrno>
#include <unistd.h>

namespace Ostrel {

std::string SnapshotPicture::storedText() const {
    std::string text(stored_.length, '\0');
    std::size_t length = 0;
    while (stored_.file && length < text.size()) {
        const auto count = ::pread(stored_.file->get(), text.data() + length, text.size() - length,
            stored_.offset + static_cast<std::int64_t>(length));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return {};
        length += static_cast<std::size_t>(count);
    }
    return text;
}

std::shared_ptr<const std::string> SnapshotPicture::bytes() const {
    if (bytes_)
        return bytes_;
    if (const auto read = read_.lock())
        return read;
    auto decoded = decodedBase64(storedText());
    if (!decoded || decoded->empty())
        return nullptr;
    auto read = std::make_shared<const std::string>(std::move(*decoded));
    read_ = read;
    return read;
}

std::string SnapshotPicture::base64() const {
    std::string text;
    if (bytes_) {
        appendBase64(text, *bytes_);
        return text;
    }
    text = storedText();
    // Somebody may have written into the file.
    if (!decodedBase64(text))
        text.clear();
    return text;
}

bool areSamePicture(const std::shared_ptr<const SnapshotPicture>& a, const std::shared_ptr<const SnapshotPicture>& b) {
    return a == b || (a && b && a->base64() == b->base64());
}

} // namespace Ostrel
