#pragma once

#include <QString>

#include <string_view>

namespace Ostrel {

/// Bytes that are no UTF-8 show as U+FFFD.
inline QString textOf(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace Ostrel
