#pragma once

#include "OstrelCore/Documents/SkinModel.h"

#include <string>

/// Tells by a section's name and keys what it is to the skin.
namespace Ostrel::SectionClassifier {

/// Never fails; what fits no class is listed as unknown. The document becomes the skin's `rawDocument`.
SkinConfig classify(INIDocument document, std::string filePath);

} // namespace Ostrel::SectionClassifier
