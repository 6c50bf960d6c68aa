#pragma once

#include "OstrelGUI/Session/SnapshotPicture.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// A session's JSON with a placeholder for each picture: nearly all of a session is pictures, and the parser would copy
/// every byte of them twice.
struct DetachedPictures {
    /// What is no base64 for certain, and so is no picture: "@0", "@1" and so on.
    static constexpr char Placeholder = '@';

    std::string json;
    /// The base64 texts by number, as views into the argument.
    std::vector<std::string_view> texts;
    /// The argument, and the file that it is all of; null when it is in memory only.
    std::string_view source;
    std::shared_ptr<const FileDescriptor> file;

    /// The picture that this value of the member is, or stands for; null when it is none.
    std::shared_ptr<const SnapshotPicture> resolve(std::string_view value) const;
};

/// Any text will do; what is no JSON stays none.
DetachedPictures detachPictures(std::string_view json, std::shared_ptr<const FileDescriptor> file = nullptr);

} // namespace Ostrel
