#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelEngine/Host/BackgroundOptions.h"
#include "OstrelEngine/Host/PictureDifference.h"
#include "OstrelEngine/Host/WidgetCanvas.h"
#include "OstrelEngine/Runtime/SkinRuntime.h"
#include "OstrelPlatform/AudioSpectrum.h"
#include "Support/FakePlatform.h"
#include "Support/FakeSkinHost.h"

#include <QImage>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Ostrel {
namespace {

/// Waves that run through the bands.
class MovingSpectrum final : public AudioSpectrum {
public:
    std::span<const double> spectrum(const SpectrumRequest& request) override {
        ++calls_;
        levels_.resize(static_cast<std::size_t>(request.bands));
        for (std::size_t i = 0; i < levels_.size(); ++i)
            levels_[i] = std::max(0.0, std::sin(static_cast<double>(calls_) / 5 + static_cast<double>(i * i) / 3));
        return levels_;
    }

private:
    int calls_ = 0;
    std::vector<double> levels_;
};

/// A skin in two pictures: one that is repainted where it changed, one that is painted anew at each publication.
class TwoPictures {
public:
    TwoPictures(const std::string& path, double scale)
        : scale_(scale) {
        fake_.clock.uptime = 3600;
        fake_.platform.audioSpectrum = &spectrum_;
        DiskFileProvider files;
        DiagnosticCollector diagnostics;
        runtime_ = SkinRuntime::create(SkinLoader(files, diagnostics).load(path).value(), fake_.platform, host_);
        background_ = backgroundOf(runtime_->config());
        kept_.setBackground(background_);
        host_.onPublish = [this](const auto& drawables) { compare(drawables); };
        fake_.host.swapSpace = MemoryFigures{1e9, 4e9};
    }

    void run(int ticks) {
        runtime_->start();
        for (int tick = 1; tick < ticks; ++tick) {
            const auto step = static_cast<std::uint64_t>(tick);
            fake_.clock.uptime += 1;
            fake_.clock.wall += 13.7;
            fake_.host.cpu = CPUTicks{step * step * 10 % 977, step * 3, step * 40, 0};
            fake_.host.memory = MemoryFigures{1e9 + 3.3e8 * tick, 16e9};
            fake_.host.network = NetworkBytes{step * step * 1000, step * 17};
            runtime_->performUpdate();
        }
    }

    std::string fault;
    int publications = 0;
    std::size_t paintedPixels = 0;

private:
    void compare(const std::vector<Drawable>& drawables) {
        ++publications;
        const Size size = runtime_->widgetSize();
        const QSize pixels(
            static_cast<int>(std::ceil(size.width * scale_)), static_cast<int>(std::ceil(size.height * scale_)));
        if (picture_.size() != pixels) {
            picture_ = QImage(pixels, QImage::Format_ARGB32_Premultiplied);
            kept_.damageEverything();
        }
        kept_.setSize(size);
        kept_.setDrawables(drawables);
        for (const QRect& part : kept_.repaint(picture_, scale_))
            paintedPixels += static_cast<std::size_t>(part.width()) * static_cast<std::size_t>(part.height());

        WidgetCanvas anew;
        anew.setBackground(background_);
        anew.setSize(size);
        anew.setDrawables(drawables);
        QImage expected(pixels, QImage::Format_ARGB32_Premultiplied);
        anew.repaint(expected, scale_);
        if (auto found = pictureDifference(picture_, expected); fault.empty() && !found.empty())
            fault = "publication " + std::to_string(publications) + ": " + found;
    }

    double scale_;
    FakePlatform fake_;
    MovingSpectrum spectrum_;
    FakeSkinHost host_;
    std::shared_ptr<SkinRuntime> runtime_;
    CanvasBackground background_;
    WidgetCanvas kept_;
    QImage picture_;
};

TEST(SkinRepaint, givesRealSkinsThePixelsOfAFullPaint) {
    const std::string root = std::getenv("OSTREL_SOURCE");
    for (const char* skin : {"Skins/Ostrel/Clock/Clock.ini", "Skins/Ostrel/System/System.ini",
             "Skins/Ostrel/Card/Card.ini", "Benchmarks/skins/sysmon.ini", "Benchmarks/skins/clock.ini"}) {
        for (const double scale : {1.0, 1.5, 2.0}) {
            TwoPictures pictures(root + "/" + skin, scale);
            pictures.run(15);
            EXPECT_EQ(pictures.fault, "") << skin << " at " << scale;
            EXPECT_GE(pictures.publications, 1) << skin;
        }
    }
}

TEST(SkinRepaint, givesBarsThatMoveThePixelsOfAFullPaint) {
    const std::string root = std::getenv("OSTREL_SOURCE");
    for (const char* skin : {"Skins/Ostrel/Spectrum/Spectrum.ini", "Benchmarks/skins/spectrum.ini"}) {
        for (const double scale : {1.0, 1.5}) {
            TwoPictures pictures(root + "/" + skin, scale);
            pictures.run(80);
            EXPECT_EQ(pictures.fault, "") << skin << " at " << scale;
            EXPECT_GT(pictures.publications, 70) << skin;
        }
    }
}

TEST(SkinRepaint, leavesWhatStandsUnpainted) {
    const std::string skin = std::string(std::getenv("OSTREL_SOURCE")) + "/Benchmarks/skins/sysmon.ini";
    TwoPictures first(skin, 1);
    first.run(1);
    TwoPictures eleven(skin, 1);
    eleven.run(11);
    EXPECT_EQ(eleven.publications, 11);
    EXPECT_LT(eleven.paintedPixels - first.paintedPixels, first.paintedPixels * 10 / 3)
        << "a tick paints more than a third of the widget";
}

} // namespace
} // namespace Ostrel
