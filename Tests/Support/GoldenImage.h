#pragma once

#include <QImage>

#include <gtest/gtest.h>

#include <string>

namespace Ostrel {

/// Compares with the picture that is committed at this path below Tests/. Channels may differ by `tolerance` of 255. On
/// failure the result names the first pixel that differs and where the actual picture was kept. With the environment
/// variable OSTREL_RENEW_GOLDENS set, the committed picture is written anew instead; look at it before you commit it.
testing::AssertionResult matchesGolden(const QImage& actual, const std::string& path, int tolerance);

} // namespace Ostrel
