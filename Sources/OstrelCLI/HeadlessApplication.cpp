#include "OstrelCLI/HeadlessApplication.h"

#include "OstrelCLI/Command.h"

#include <QGuiApplication>

#include <array>

namespace Ostrel {

namespace {

/// The application object keeps references to both, and its arguments are none of ours.
struct ProgramArguments {
    int count = 1;
    std::array<char, 7> name{'o', 's', 't', 'r', 'e', 'l', '\0'};
    std::array<char*, 2> values{name.data(), nullptr};
};

ProgramArguments& programArguments() {
    static ProgramArguments arguments;
    return arguments;
}

} // namespace

HeadlessApplication::HeadlessApplication() {
    // What Qt remarks about a missing desktop is none of the user's business.
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type == QtFatalMsg)
            printMessage(text.toStdString());
    });
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication::setAttribute(Qt::AA_Use96Dpi);
    auto& arguments = programArguments();
    application_ = std::make_unique<QGuiApplication>(arguments.count, arguments.values.data());
}

HeadlessApplication::~HeadlessApplication() = default;

} // namespace Ostrel
