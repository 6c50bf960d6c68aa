#include "OstrelCLI/RenderCommand.h"

#include "OstrelCLI/DialectOptions.h"
#include "OstrelCLI/HeadlessSkin.h"
#include "OstrelCLI/RenderOptions.h"
#include "OstrelCLI/Scenario.h"
#include "OstrelCLI/TextInput.h"
#include "OstrelCore/Files/AtomicFile.h"
#include "OstrelCore/Text/Numbers.h"
#include "OstrelEngine/Host/BackgroundOptions.h"
#include "OstrelEngine/Host/PanelPlacement.h"
#include "OstrelEngine/Host/WidgetCanvas.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>

#include <cmath>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel::RenderCommand {

namespace {

/// The panel of a skin without a window: follows its publications and its size as a panel does.
class PaperPanel final : private HeadlessWatcher {
public:
    explicit PaperPanel(HeadlessSkin& headless)
        : headless_(headless)
        , skin_(headless.skin())
        , size_(skin_.widgetSize()) {
        canvas_.setBackground(backgroundOf(skin_.config()));
        headless.setWatcher(this);
    }
    ~PaperPanel() override { headless_.setWatcher(nullptr); }
    PaperPanel(const PaperPanel&) = delete;
    PaperPanel& operator=(const PaperPanel&) = delete;

    Size size() const { return size_; }

    /// Null when no picture can be that large.
    QImage picture(double scale) {
        const QSize points = PanelPlacement::windowSize(size_, scale);
        if (points.width() < size_.width || points.height() < size_.height)
            return {};
        canvas_.setSize({static_cast<double>(points.width()), static_cast<double>(points.height())});
        QImage picture(static_cast<int>(std::ceil(points.width() * scale)),
            static_cast<int>(std::ceil(points.height() * scale)), QImage::Format_ARGB32_Premultiplied);
        if (!picture.isNull())
            canvas_.repaint(picture, scale);
        return picture;
    }

private:
    void skinDidPublish(const std::vector<Drawable>& drawables) override {
        canvas_.setDrawables(drawables);
        if (PanelPlacement::shouldResizeWindow(size_, skin_.widgetSize()))
            size_ = skin_.widgetSize();
    }
    // The same skin goes on and shows what it has become.
    void refresh() override { skin_.redraw(); }
    void refreshApp() override { skin_.redraw(); }
    void deactivate() override { }
    void deactivateConfig(const std::string&) override { }
    void activateConfig(const std::string&, bool) override { }
    void promptInput(const std::optional<InputTextPresentation>&) override { }

    HeadlessSkin& headless_;
    Skin& skin_;
    Size size_;
    WidgetCanvas canvas_;
};

void runTicks(HeadlessSkin& skin, const RenderOptions& options) {
    skin.start();
    if (!options.ticks && !options.scenario)
        return skin.tickInRealTime();
    for (std::int64_t tick = 1; tick < options.ticks.value_or(1); ++tick)
        skin.tick();
}

QImage laidOver(const QImage& picture, const Color& background) {
    QImage result(picture.size(), QImage::Format_ARGB32_Premultiplied);
    result.fill(toQColor(background));
    QPainter(&result).drawImage(0, 0, picture);
    return result;
}

bool writePNG(const QImage& picture, const std::string& path) {
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    return picture.save(&bytes, "PNG") && writeFileAtomically(path, bytes.data().toStdString());
}

int render(HeadlessSkin& skin, const std::vector<ScenarioStep>& steps, const RenderOptions& options) {
    PaperPanel panel(skin);
    runTicks(skin, options);
    for (const auto& step : steps)
        step.run(skin);
    QImage picture = panel.picture(options.scale);
    const auto [width, height] = panel.size();
    // What a skin does at its end is none of the picture.
    skin.setWatcher(nullptr);
    skin.stop();
    if (picture.isNull()) {
        printMessage("cannot render " + options.skin + ": " + formatNumeric(width) + " x " + formatNumeric(height)
            + " points are too large");
        return InputFailed;
    }
    if (options.background)
        picture = laidOver(picture, *options.background);
    if (!writePNG(picture, options.output)) {
        printMessage("cannot write " + options.output);
        return InputFailed;
    }
    return skin.lacksInput() ? InputFailed : Done;
}

} // namespace

int run(Arguments arguments) {
    const auto dialect = DialectOptions::parse(arguments);
    const auto options = dialect ? parseRenderOptions(dialect->rest) : std::nullopt;
    if (!options)
        return wrongUsage(Usage);
    const auto text = options->scenario ? readTextInput(*options->scenario) : std::optional<std::string>("");
    if (!text) {
        printMessage("cannot read " + *options->scenario);
        return InputFailed;
    }
    const auto steps = parseScenario(*text, dialect->isFull);
    if (!steps)
        return wrongUsage(Usage);
    const auto skin = HeadlessSkin::load(options->skin, options->wallSeconds, *dialect);
    return skin ? render(*skin, *steps, *options) : InputFailed;
}

} // namespace Ostrel::RenderCommand
