#include "OstrelEngine/Meters/Full/FullMeter.h"

#include "OstrelEngine/Meters/Full/DevicePicture.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QLinearGradient>
#include <QPainter>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace Ostrel {

namespace {

/// The most pixels of a picture that is made only to be turned.
constexpr double MostPixelsTurned = 4'000'000;

struct Padding {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    friend bool operator==(const Padding&, const Padding&) = default;
};

/// The options that every meter has.
struct Look {
    std::optional<double> width;
    std::optional<double> height;
    Padding padding;
    QColor solidColor;
    std::optional<QColor> solidColor2;
    double gradientAngle = 0;
    bool isBevelled = false;
    QColor leftTopBevel;
    QColor rightBottomBevel;
    std::optional<QTransform> matrix;
    std::optional<bool> antiAlias;

    bool hasBackground() const { return solidColor.alpha() != 0 || solidColor2 || isBevelled; }
    friend bool operator==(const Look&, const Look&) = default;
};

/// Six numbers in the order a, b, c, d, tx, ty.
std::optional<QTransform> matrixOf(std::string_view text) {
    const auto numbers = OptionValues::numbers(text, ';');
    if (numbers.size() != 6 || !std::ranges::all_of(numbers, [](const auto& number) { return number.has_value(); }))
        return std::nullopt;
    const auto at = [&](std::size_t i) { return boundedCoordinate(*numbers[i]); };
    const QTransform matrix(at(0), at(1), at(2), at(3), at(4), at(5));
    return matrix.isIdentity() ? std::nullopt : std::optional(matrix);
}

Padding paddingOf(std::string_view text) {
    const auto numbers = OptionValues::numbers(text, ',');
    const auto at
        = [&](std::size_t i) { return i < numbers.size() ? std::trunc(boundedCoordinate(numbers[i].value_or(0))) : 0; };
    return {at(0), at(1), at(2), at(3)};
}

std::optional<double> writtenLength(std::string_view text) {
    const auto number = OptionValues::number(text);
    return number ? std::optional(std::trunc(std::max(0.0, boundedCoordinate(*number)))) : std::nullopt;
}

Size boxAround(const Size& content, const Padding& padding) {
    const auto whole
        = [](double size, double added) { return std::max(0.0, std::trunc(boundedCoordinate(size)) + added); };
    return {whole(content.width, padding.left + padding.right), whole(content.height, padding.top + padding.bottom)};
}

/// Only moved and scaled alike in both directions.
bool isUpright(const QTransform& transform) {
    return transform.type() <= QTransform::TxScale && transform.m11() == transform.m22() && transform.m11() > 0;
}

Rect cutTo(const Rect& rect, const Rect& to) {
    const double left = std::max(rect.minX(), to.minX());
    const double top = std::max(rect.minY(), to.minY());
    return {left, top, std::max(0.0, std::min(rect.maxX(), to.maxX()) - left),
        std::max(0.0, std::min(rect.maxY(), to.maxY()) - top)};
}

/// The opposite of a shape's gradient: angle 0 begins at the left, 90 at the top.
QLinearGradient backgroundGradient(const Look& look, const QRectF& box) {
    const double angle = look.gradientAngle * std::numbers::pi / 180;
    const double half = std::abs(box.width() / 2 * std::cos(angle)) + std::abs(box.height() / 2 * std::sin(angle));
    const QPointF way(std::cos(angle) * half, std::sin(angle) * half);
    QLinearGradient gradient(box.center() - way, box.center() + way);
    gradient.setColorAt(0, look.solidColor);
    gradient.setColorAt(1, *look.solidColor2);
    gradient.setInterpolationMode(QGradient::ComponentInterpolation);
    return gradient;
}

void drawBevel(QPainter& painter, const QRectF& box, const QColor& leftTop, const QColor& rightBottom, bool isSmooth) {
    if (box.width() < 1 || box.height() < 1)
        return;
    fillExactly(painter, QRectF(box.left(), box.top(), box.width(), 1), leftTop, isSmooth);
    fillExactly(painter, QRectF(box.left(), box.top() + 1, 1, box.height() - 1), leftTop, isSmooth);
    fillExactly(painter, QRectF(box.left() + 1, box.bottom() - 1, box.width() - 1, 1), rightBottom, isSmooth);
    fillExactly(painter, QRectF(box.right() - 1, box.top() + 1, 1, box.height() - 2), rightBottom, isSmooth);
}

} // namespace

struct FullMeter::State {
    /// With places for values.
    ToolTip toolTip;
    std::optional<std::uint64_t> readRevision;
    Look look;
    /// Grows when the background looks different.
    std::uint64_t lookRevision = 0;
    /// Grows when anything looks different in an unchanged frame.
    std::uint64_t revision = 0;

    /// What has changed since the canvas last asked; a part is in the content's coordinates.
    enum class Change { None, Part, Everything };
    Change change = Change::None;
    Rect changedPart;

    struct ContainerLook {
        const FullMeter* meter = nullptr;
        std::uint64_t revision = 0;
        MeterFrame frame;

        friend bool operator==(const ContainerLook&, const ContainerLook&) = default;
    };
    std::weak_ptr<FullMeter> container;
    ContainerLook shownContainer;

    DevicePicture background;
    DevicePicture turned;
    DevicePicture composed;
    /// What `composed` shows: its number grows with each change of these.
    std::uint64_t composition = 0;
    std::uint64_t composedRevision = 0;
    MeterFrame composedFrame;
    ContainerLook composedContainer;
};

FullMeter::FullMeter(const MeterDefinition& definition, Options options, const FullMeterContext& context)
    : MeterRenderer(definition.sectionName, std::move(options))
    , context_(context)
    , state_(std::make_unique<State>()) { }

FullMeter::~FullMeter() = default;

void FullMeter::update(MeasureValues values) {
    if (state_->readRevision != optionsRevision()) {
        state_->readRevision = optionsRevision();
        Look look;
        look.width = writtenLength(text("W"_key));
        look.height = writtenLength(text("H"_key));
        look.padding = paddingOf(text("Padding"_key));
        look.solidColor = toQColor(color("SolidColor"_key, {0, 0, 0, 0}));
        if (const auto second = OptionValues::color(text("SolidColor2"_key)))
            look.solidColor2 = toQColor(*second);
        look.gradientAngle = boundedCoordinate(number("GradientAngle"_key, 0));
        const int bevel = integer("BevelType"_key, 0);
        look.isBevelled = bevel == 1 || bevel == 2;
        look.leftTopBevel = toQColor(color("BevelColor"_key, {255, 255, 255, 255}));
        look.rightBottomBevel = toQColor(color("BevelColor2"_key, {0, 0, 0, 255}));
        if (bevel == 2)
            std::swap(look.leftTopBevel, look.rightBottomBevel);
        look.matrix = matrixOf(text("TransformationMatrix"_key));
        look.antiAlias = OptionValues::isOn(text("AntiAlias"_key));
        if (look != state_->look) {
            state_->look = look;
            ++state_->lookRevision;
            contentDidChange();
        }
        state_->toolTip = toolTip_ = ToolTip::parse(options());
        readOptions();
    }
    takeValues(values);
    if (state_->toolTip.hasPlaces())
        toolTip_ = state_->toolTip.filled(values.first(std::min(values.size(), toolTipPlaces())), toolTipNumbers());
    const auto& look = state_->look;
    Size content{look.width.value_or(0), look.height.value_or(0)};
    if (ignoresWrittenSize()) {
        content = contentSize(std::nullopt, std::nullopt);
    } else if (!look.width || !look.height) {
        const Size own = contentSize(look.width, look.height);
        content = {look.width.value_or(own.width), look.height.value_or(own.height)};
    }
    box_ = boxAround(content, look.padding);
}

void FullMeter::takeWrittenSize() {
    if (!ignoresWrittenSize()) {
        const Size content{writtenLength(text("W"_key)).value_or(0), writtenLength(text("H"_key)).value_or(0)};
        box_ = boxAround(content, paddingOf(text("Padding"_key)));
    }
}

void FullMeter::setContainer(std::weak_ptr<FullMeter> container) {
    state_->container = container.lock().get() == this ? std::weak_ptr<FullMeter>() : std::move(container);
}

Rect FullMeter::contentRect() const {
    const auto& padding = state_->look.padding;
    const auto& box = frame();
    return {box.x + padding.left, box.y + padding.top, std::max(0.0, box.w - padding.left - padding.right),
        std::max(0.0, box.h - padding.top - padding.bottom)};
}

std::optional<double> FullMeter::writtenWidth() const {
    return state_->look.width;
}

std::optional<double> FullMeter::writtenHeight() const {
    return state_->look.height;
}

double FullMeter::matrixScale() const {
    const auto& matrix = state_->look.matrix;
    return matrix ? std::sqrt(std::abs(matrix->determinant())) : 1;
}

bool FullMeter::isSmooth(bool otherwise) const {
    return state_->look.antiAlias.value_or(otherwise);
}

double FullMeter::number(const CaseKey& key, double fallback) const {
    return OptionValues::number(text(key)).value_or(fallback);
}

int FullMeter::integer(const CaseKey& key, int fallback) const {
    return OptionValues::integer(text(key)).value_or(fallback);
}

bool FullMeter::isOn(const CaseKey& key, bool fallback) const {
    return OptionValues::isOn(text(key)).value_or(fallback);
}

FullMeter::ColorBytes FullMeter::color(const CaseKey& key, ColorBytes fallback) const {
    return OptionValues::color(text(key)).value_or(fallback);
}

std::string_view FullMeter::text(const CaseKey& key, std::string_view fallback) const {
    const auto value = option(key);
    return value && !value->empty() ? *value : fallback;
}

void FullMeter::contentDidChange() {
    state_->change = State::Change::Everything;
    ++state_->revision;
}

void FullMeter::contentDidChange(const Rect& part) {
    auto& changed = state_->changedPart;
    changed = state_->change == State::Change::Part ? changed.united(part) : part;
    state_->change = std::max(state_->change, State::Change::Part);
    ++state_->revision;
}

bool FullMeter::updateAppearance(MeasureValues) {
    auto change = std::exchange(state_->change, State::Change::None);
    State::ContainerLook look;
    const auto container = state_->container.lock();
    if (container)
        look = {container.get(), container->state_->revision, container->frame()};
    if (std::exchange(state_->shownContainer, look) != look)
        change = State::Change::Everything;
    changedPart_.reset();
    // Turned, an edge whose end has moved has other pixels all along.
    const auto& matrix = state_->look.matrix;
    const bool isTurned = matrix && matrix->type() > QTransform::TxScale;
    if (change == State::Change::Part && !isTurned) {
        const Rect content = contentRect();
        changedPart_ = state_->changedPart.translated(content.x, content.y);
        if (matrix)
            changedPart_ = toRect(matrix->mapRect(toQRectF(*changedPart_))).expanded(1);
        if (container)
            changedPart_ = cutTo(*changedPart_, container->frame().rect());
    }
    return change != State::Change::None;
}

Rect FullMeter::ownPaintRect() const {
    const auto& look = state_->look;
    if (!isDrawn() || (look.matrix && !look.matrix->isInvertible()))
        return {};
    Rect rect = contentPaintRect();
    if (look.hasBackground())
        rect = rect.isEmpty() ? frame().rect() : rect.united(frame().rect());
    return look.matrix ? toRect(look.matrix->mapRect(toQRectF(rect))).expanded(1) : rect;
}

Rect FullMeter::paintRect(MeasureValues) {
    const auto container = state_->container.lock();
    return container ? cutTo(ownPaintRect(), container->frame().rect()) : ownPaintRect();
}

void FullMeter::draw(QPainter& painter, MeasureValues) {
    if (const auto container = state_->container.lock(); container)
        drawInContainer(painter, *container);
    else
        drawAlone(painter);
}

void FullMeter::drawAlone(QPainter& painter) {
    const auto& matrix = state_->look.matrix;
    // What a matrix without an inverse leaves of the picture has no area.
    if (!isDrawn() || (matrix && !matrix->isInvertible()))
        return;
    const QTransform before = painter.worldTransform();
    if (matrix)
        painter.setWorldTransform(*matrix, true);
    if (state_->look.hasBackground())
        drawBackground(painter);
    if (drawsUnderAnyTransform() || isUpright(painter.deviceTransform()))
        drawContent(painter);
    else
        drawTurnedContent(painter);
    if (matrix)
        painter.setWorldTransform(before);
}

void FullMeter::drawBackground(QPainter& painter) {
    const auto& look = state_->look;
    const QRectF box = toQRectF(frame().rect());
    if (look.solidColor2) {
        state_->background.draw(painter, box, state_->lookRevision, [&](QPainter& inner) {
            inner.setRenderHint(QPainter::Antialiasing, isSmooth(false));
            inner.fillRect(box, backgroundGradient(look, box));
        });
    } else if (look.solidColor.alpha() != 0) {
        fillExactly(painter, box, look.solidColor, isSmooth(false));
    }
    if (look.isBevelled)
        drawBevel(painter, box, look.leftTopBevel, look.rightBottomBevel, isSmooth(false));
}

void FullMeter::drawTurnedContent(QPainter& painter) {
    const QRectF area = toQRectF(contentPaintRect());
    if (area.isEmpty())
        return;
    const QTransform toDevice = painter.deviceTransform();
    state_->turned.draw(painter, area, state_->revision, [&](QPainter& inner) {
        // As fine as the device needs it, within reason.
        const double wanted = std::sqrt(std::abs(toDevice.determinant()));
        const double most = std::sqrt(MostPixelsTurned / (area.width() * area.height()));
        const double scale = std::clamp(wanted, std::min(0.25, most), std::min(8.0, most));
        QImage upright(std::max(1, static_cast<int>(std::ceil(area.width() * scale))),
            std::max(1, static_cast<int>(std::ceil(area.height() * scale))), QImage::Format_ARGB32_Premultiplied);
        upright.fill(Qt::transparent);
        {
            QPainter content(&upright);
            content.scale(scale, scale);
            content.translate(-area.topLeft());
            drawContent(content);
        }
        inner.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        inner.translate(area.topLeft());
        inner.scale(1 / scale, 1 / scale);
        inner.drawImage(QPointF(0, 0), upright);
    });
}

void FullMeter::drawInContainer(QPainter& painter, FullMeter& container) {
    const QRectF box = toQRectF(container.frame().rect());
    const QRectF area = box & toQRectF(ownPaintRect());
    if (area.isEmpty())
        return;
    const State::ContainerLook look{&container, container.state_->revision, container.frame()};
    const bool isSame = state_->composedRevision == state_->revision && state_->composedFrame == frame()
        && state_->composedContainer == look;
    if (!isSame)
        ++state_->composition;
    state_->composedRevision = state_->revision;
    state_->composedFrame = frame();
    state_->composedContainer = look;
    state_->composed.draw(painter, area, state_->composition, [&](QPainter& inner) {
        drawAlone(inner);
        QImage mask(inner.device()->width(), inner.device()->height(), QImage::Format_ARGB32_Premultiplied);
        mask.fill(Qt::transparent);
        {
            QPainter maskPainter(&mask);
            maskPainter.setTransform(inner.worldTransform());
            maskPainter.setClipRect(box);
            container.drawAlone(maskPainter);
        }
        inner.resetTransform();
        inner.setCompositionMode(QPainter::CompositionMode_DestinationIn);
        inner.drawImage(0, 0, mask);
    });
}

} // namespace Ostrel
