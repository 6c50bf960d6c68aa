#pragma once

#include "OstrelGUI/WidgetLibrary.h"

#include <QBuffer>
#include <QImage>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

/// A library that notes what it is asked, in order, and changes nothing unless told.
class FakeWidgetLibrary final : public WidgetLibrary {
public:
    std::vector<WidgetLibraryItem> items;
    /// "render /a.ini"
    std::vector<std::string> calls;
    std::optional<std::string> deleteFailure;

    void setItems(std::vector<WidgetLibraryItem> changed) {
        items = std::move(changed);
        if (onLibraryItemsChange)
            onLibraryItemsChange();
    }

    const std::vector<WidgetLibraryItem>& libraryItems() const override { return items; }
    void registerDiscovered(std::span<const std::string> paths) override { note("register", paths); }
    void renderWidget(const std::string& path) override { note("render", std::span(&path, 1)); }
    void launchWidget(const std::string& path) override { note("launch", std::span(&path, 1)); }
    void unrenderWidget(const std::string& path) override { note("unrender", std::span(&path, 1)); }
    void deletePackage(
        std::span<const std::string> rootPaths, std::function<void(std::optional<std::string>)> done) override {
        note("delete", rootPaths);
        done(deleteFailure);
    }

private:
    void note(std::string call, std::span<const std::string> paths) {
        for (const std::string& path : paths)
            call += " " + path;
        calls.push_back(std::move(call));
    }
};

/// A card of a package in the folder of packs.
inline WidgetLibraryItem libraryItem(const std::string& package, const std::string& name, bool isRendered = false) {
    WidgetLibraryItem item;
    item.path = "/home/ada/Skins/" + package + "/" + name + "/" + name + ".ini";
    item.displayName = name;
    item.packageName = package;
    item.relativePath = name + "/" + name + ".ini";
    item.isRendered = isRendered;
    return item;
}

inline std::shared_ptr<const std::string> pngOf(const QImage& image) {
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return std::make_shared<const std::string>(buffer.data().toStdString());
}

} // namespace Ostrel
