#pragma once

#include <memory>

class QGuiApplication;

namespace Ostrel {

/// What text and images need of Qt in a program without a display: its application object on the platform that has no
/// screen, sizes in pixels of a 96 DPI screen. One at a time, made before anything that measures or draws.
class HeadlessApplication {
public:
    HeadlessApplication();
    ~HeadlessApplication();
    HeadlessApplication(const HeadlessApplication&) = delete;
    HeadlessApplication& operator=(const HeadlessApplication&) = delete;

private:
    std::unique_ptr<QGuiApplication> application_;
};

} // namespace Ostrel
