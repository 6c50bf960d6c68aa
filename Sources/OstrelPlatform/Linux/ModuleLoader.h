#pragma once

#include <string>

/// Parts of the program that are loaded at their first use, because what they link costs a resident process memory and
/// start-up time that few skins make use of.
namespace Ostrel::ModuleLoader {

/// The file of a module that was built or installed with this program.
std::string installedFile(const std::string& name);

/// The address of a module's symbol; null when the file is no module or has no such symbol. The module stays loaded:
/// the libraries behind it do not survive being unloaded.
void* address(const std::string& file, const char* symbol);

/// The same of a function.
template <typename Function> Function function(const std::string& file, const char* symbol) {
    return reinterpret_cast<Function>(address(file, symbol));
}

} // namespace Ostrel::ModuleLoader
