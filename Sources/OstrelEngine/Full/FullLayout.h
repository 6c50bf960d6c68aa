#pragma once

#include "OstrelEngine/Full/FullMeterTable.h"
#include "OstrelEngine/Geometry.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace Ostrel {

/// Where the meters of a skin stand, in whole pixels from the skin's top left. Places are found when somebody asks, as
/// far down as asked, since meters may name the places of others while they are updated.
class FullLayout {
public:
    /// Must outlive this.
    explicit FullLayout(FullMeterTable& meters)
        : meters_(meters) { }

    /// The meter's options, size or visibility may have changed.
    void meterDidChange(std::size_t position);
    /// X, Y, width and height; a hidden meter has its place and no size.
    const MeterFrame& frame(std::size_t position);
    /// Grows when the frame changes; asks for it.
    std::uint64_t revision(std::size_t position);
    /// Lays all out and gives each meter its frame. True when one has changed.
    bool apply();

    /// From (0, 0) to the furthest right and bottom edge of what is shown; contents of containers do not count.
    Size extent();
    /// Overrides X and Y until the options are read again.
    void moveMeter(std::size_t position, double x, double y);

private:
    /// One direction of a meter's place.
    struct Coordinate {
        enum class Base : std::uint8_t { Skin, Start, End } base = Base::Skin;
        int value = 0;
    };
    struct Place {
        std::uint64_t optionsRevision = ~std::uint64_t(0);
        Coordinate x;
        Coordinate y;
        /// What `r` and `R` of the next meter count from: as written, before alignment.
        int anchorX = 0;
        int anchorY = 0;
        MeterFrame frame;
        std::uint64_t revision = 1;
        std::optional<std::size_t> container;
        std::optional<std::size_t> predecessor;
    };

    static Coordinate parse(std::optional<std::string_view> text);
    void layOut(std::size_t end);
    void place(std::size_t position);
    void readOptions(std::size_t position);
    void findContainers();

    FullMeterTable& meters_;
    std::vector<Place> places_;
    /// Places below this are good.
    std::size_t validEnd_ = 0;
    bool hasContainers_ = false;
    bool areContainersCurrent_ = false;
};

} // namespace Ostrel
