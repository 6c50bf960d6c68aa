#pragma once

#include <span>
#include <string_view>

/// What is told to the user about measure, meter and plugin types. Not the list of what is built: the factories have
/// their own. Names in upper case.
namespace Ostrel::KnownTypes {

std::span<const std::string_view> supportedMeasures();
std::span<const std::string_view> incompatibleMeasures();
std::span<const std::string_view> partialMeasures();
std::span<const std::string_view> supportedMeters();
std::span<const std::string_view> incompatibleMeters();
std::span<const std::string_view> incompatiblePlugins();
std::span<const std::string_view> supportedPlugins();

/// Whether the set holds the name, compared without case.
bool contains(std::span<const std::string_view> set, std::string_view name);

bool isPluginSupported(std::string_view name);
/// Supported, incompatible or partial.
bool isMeasureKnown(std::string_view type);
/// Supported or incompatible.
bool isMeterKnown(std::string_view type);

} // namespace Ostrel::KnownTypes
