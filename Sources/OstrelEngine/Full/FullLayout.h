#pragma once

#include "OstrelEngine/Full/FullMeterTable.h"
#include "OstrelEngine/Geometry.h"

#include <cstdint>
#include <optional>
#include <string>
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

    const FullMeterTable& meters() const { return meters_; }

    /// The meter's options, size or visibility may have changed.
    void meterDidChange(std::size_t position);
    /// X and Y after alignment, width and height; a hidden meter has its place and no size.
    const MeterFrame& frame(std::size_t position);
    /// Grows when the frame changes.
    std::uint64_t revision(std::size_t position);
    /// Lays all out and gives each meter its frame and container.
    void apply();
    /// Grows when other meters than before are drawn. As of the last `apply`.
    std::uint64_t shownRevision() const { return shownRevision_; }
    /// Neither hidden, nor a container or in one that is hidden. As of the last `apply`.
    bool isDrawn(std::size_t position) const;

    /// From (0, 0) to the furthest right and bottom edge of what is shown; contents of containers do not count.
    Size extent();

    /// X and Y as the options say, before relative places are added up.
    Point written(std::size_t position);
    /// These coordinates from the skin's top left take the place of the options until they are read again.
    void move(std::size_t position, std::optional<double> x, std::optional<double> y);
    void endMove(std::size_t position);

private:
    /// One direction of a meter's place.
    struct Coordinate {
        /// What it counts from: the skin, or the start or end of the meter before.
        enum class Base : std::uint8_t { Skin, Start, End } base = Base::Skin;
        std::int64_t value = 0;
    };
    struct Place {
        std::optional<std::uint64_t> optionsRevision;
        Coordinate x;
        Coordinate y;
        std::string containerName;
        std::optional<std::size_t> container;
        /// The meter before in the file, of the same container or of none.
        std::optional<std::size_t> predecessor;
        bool isContainer = false;
        bool isMoved = false;
        bool isHidden = false;
        /// What `r` and `R` of the next meter count from: before alignment.
        std::int64_t anchorX = 0;
        std::int64_t anchorY = 0;
        MeterFrame frame;
        std::uint64_t revision = 1;
    };

    static Coordinate parse(std::string_view text);
    void readOptions(std::size_t position);
    void layOut(std::size_t end);
    void place(std::size_t position);
    void findContainers();

    FullMeterTable& meters_;
    std::vector<Place> places_;
    /// Places below this are good.
    std::size_t validEnd_ = 0;
    bool hasContainers_ = false;
    bool areContainersCurrent_ = false;
    bool gaveContainers_ = false;
    std::uint64_t shownRevision_ = 1;
    /// A frame or a container has changed since the last `apply`.
    bool isChanged_ = true;
};

} // namespace Ostrel
