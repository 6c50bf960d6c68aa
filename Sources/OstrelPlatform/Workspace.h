#pragma once

#include <string>
#include <vector>

namespace Ostrel {

/// What opens and starts things outside the program, as a double click on the desktop would. All return at once: true
/// says that the desktop took the request, not that something has come up. Main thread.
class Workspace {
public:
    virtual ~Workspace() = default;
    /// The application for the scheme opens the URL.
    virtual bool openURL(const std::string& url) = 0;
    /// The application for its type opens the file or folder at an absolute path. A name that is there only in another
    /// case is meant too.
    virtual bool openFile(const std::string& path) = 0;
    /// Starts the program at an absolute path with these arguments, without a shell, and does not wait for it. False
    /// when the system cannot execute it.
    virtual bool launch(const std::string& program, const std::vector<std::string>& arguments) = 0;
};

} // namespace Ostrel
