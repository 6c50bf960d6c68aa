#pragma once

#include "OstrelCore/Report/CompatReport.h"

#include <span>
#include <string>

namespace Ostrel::CompatReportFormatter {

/// Lines for a person to read, without a line feed after the last.
std::string formatText(const CompatReport& report);

/// One object with its keys sorted, indented by two spaces; the same for several reports as one array. Bytes that are
/// no UTF-8 become U+FFFD.
std::string formatJSON(const CompatReport& report);
std::string formatJSON(std::span<const CompatReport> reports);

} // namespace Ostrel::CompatReportFormatter
