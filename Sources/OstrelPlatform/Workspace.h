#pragma once

#include <string>

namespace Ostrel {

/// What opens things outside the program, as a double click on the desktop would. Both return at once: true says that
/// the desktop took the request, not that something has come up. Main thread.
class Workspace {
public:
    virtual ~Workspace() = default;
    /// The application for the scheme opens the URL.
    virtual bool openURL(const std::string& url) = 0;
    /// The application for its type opens the file or folder at an absolute path. A name that is there only in another
    /// case is meant too.
    virtual bool openFile(const std::string& path) = 0;
};

} // namespace Ostrel
