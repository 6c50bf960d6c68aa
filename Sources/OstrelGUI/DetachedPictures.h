#pragma once

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

    /// The text that this value of a picture stands for.
    std::string_view resolve(std::string_view value) const;
};

/// Any text will do; what is no JSON stays none.
DetachedPictures detachPictures(std::string_view json);

} // namespace Ostrel
