#pragma once

namespace Ostrel {

/// Lets go of the pages of code and constants that this process has touched so far. Most of them only its start needed;
/// those that it goes on needing come back from the file cache at their next use. What the process has written is not
/// touched. Any thread.
void releaseStartPages();

} // namespace Ostrel
