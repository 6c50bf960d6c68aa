#include "OstrelEngine/Meters/Full/ShapeElements.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelEngine/Meters/Full/ShapeGradient.h"
#include "OstrelEngine/Meters/Full/ShapeOutlines.h"
#include "OstrelEngine/Meters/Full/ShapeStroke.h"
#include "OstrelEngine/Meters/Painting.h"

#include <QColor>
#include <QTransform>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numbers>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace Ostrel {

namespace {

constexpr int MostElements = 65536;
constexpr std::size_t MostModifiers = 1000;
/// Of combinations of combinations.
constexpr int MostDepth = 32;
/// Enlarged beyond this a shape is left out.
constexpr double FarthestReach = 4 * FarCoordinate;
/// About half a second.
constexpr double CombinationBudget = 20'000;

using Paint = std::variant<QColor, ShapeGradient>;

enum class Step { Rotate, Scale, Skew, Offset };
constexpr std::array StepNames{std::pair{std::string_view("Rotate"), Step::Rotate},
    std::pair{std::string_view("Scale"), Step::Scale}, std::pair{std::string_view("Skew"), Step::Skew},
    std::pair{std::string_view("Offset"), Step::Offset}};

/// One of the transformations, with its anchor from the shape's top left; absent is the shape's center.
struct Transformation {
    double a = 0;
    double b = 0;
    std::optional<double> anchorX;
    std::optional<double> anchorY;
};

struct Modifiers {
    std::optional<Paint> fill;
    std::optional<Paint> stroke;
    StrokeStyle style;
    std::map<Step, Transformation> transformations;
    std::vector<Step> order;
};

/// A shape before it is painted: in its place, with the paints of its own or its parent's.
struct PlacedShape {
    ShapeOutline outline;
    /// Before the transformation, for gradients.
    QRectF box;
    QTransform transform;
    Modifiers modifiers;
};

struct WordAndRest {
    std::string_view word;
    std::string_view rest;
};

WordAndRest firstWord(std::string_view text) {
    text = trimmed(text);
    const auto blank = text.find_first_of(" \t");
    if (blank == std::string_view::npos)
        return {text, {}};
    return {text.substr(0, blank), trimmed(text.substr(blank))};
}

/// The number behind "Shape"; 1 without one.
std::optional<int> shapeNumber(std::string_view name) {
    constexpr std::string_view Prefix = "Shape";
    if (name.size() > Prefix.size() + 6 || !equalsIgnoringCase(name.substr(0, Prefix.size()), Prefix))
        return std::nullopt;
    const auto digits = name.substr(Prefix.size());
    if (digits.empty())
        return 1;
    if (digits.front() == '0' || !std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; }))
        return std::nullopt;
    int number = 0;
    for (const char c : digits)
        number = number * 10 + (c - '0');
    return number > 1 ? std::optional(number) : std::nullopt;
}

std::optional<StrokeCap> capOf(std::string_view text) {
    constexpr std::array Names{std::pair{std::string_view("Flat"), StrokeCap::Flat},
        std::pair{std::string_view("Round"), StrokeCap::Round},
        std::pair{std::string_view("Square"), StrokeCap::Square},
        std::pair{std::string_view("Triangle"), StrokeCap::Triangle}};
    for (const auto& [name, cap] : Names)
        if (equalsIgnoringCase(name, text))
            return cap;
    return std::nullopt;
}

QTransform matrixOf(Step step, const Transformation& transformation) {
    const auto& [a, b, anchorX, anchorY] = transformation;
    const auto radians = [](double degrees) { return degrees * std::numbers::pi / 180; };
    switch (step) {
    case Step::Rotate: {
        const double sine = std::sin(radians(a));
        const double cosine = std::cos(radians(a));
        return QTransform(cosine, sine, -sine, cosine, 0, 0);
    }
    case Step::Scale:
        return QTransform::fromScale(a, b);
    case Step::Skew:
        return QTransform(1, boundedCoordinate(std::tan(radians(b))), boundedCoordinate(std::tan(radians(a))), 1, 0, 0);
    case Step::Offset:
        break;
    }
    return QTransform::fromTranslate(a, b);
}

/// Steps that `order` does not name follow in the usual order.
QTransform transformOf(const Modifiers& modifiers, const QRectF& box) {
    auto order = modifiers.order;
    for (const auto& [name, step] : StepNames)
        if (std::ranges::find(order, step) == order.end())
            order.push_back(step);
    QTransform result;
    for (const Step step : order) {
        const auto found = modifiers.transformations.find(step);
        if (found == modifiers.transformations.end())
            continue;
        const auto& transformation = found->second;
        const QPointF anchor(transformation.anchorX ? box.left() + *transformation.anchorX : box.center().x(),
            transformation.anchorY ? box.top() + *transformation.anchorY : box.center().y());
        result = result * QTransform::fromTranslate(-anchor.x(), -anchor.y()) * matrixOf(step, transformation)
            * QTransform::fromTranslate(anchor.x(), anchor.y());
    }
    return result;
}

QBrush brushOf(const Paint& paint, const PlacedShape& shape) {
    if (const auto* color = std::get_if<QColor>(&paint))
        return *color;
    return std::get<ShapeGradient>(paint).brush(shape.box, shape.transform);
}

std::optional<QRectF> uprightRectangle(const QPainterPath& path) {
    if (path.elementCount() != 5)
        return std::nullopt;
    const QRectF rect = path.boundingRect();
    const auto isCorner = [&](int i, const QPointF& corner) { return QPointF(path.elementAt(i)) == corner; };
    const bool isRectangle = isCorner(0, rect.topLeft()) && isCorner(1, rect.topRight())
        && isCorner(2, rect.bottomRight()) && isCorner(3, rect.bottomLeft()) && isCorner(4, rect.topLeft());
    return isRectangle && !rect.isEmpty() ? std::optional(rect) : std::nullopt;
}

class ShapeReader {
public:
    explicit ShapeReader(const Options& options)
        : options_(options) {
        for (const auto& entry : options)
            if (const auto number = shapeNumber(entry.key))
                definitions_.emplace(*number, entry.value);
    }

    std::vector<ShapeElement> read() {
        for (const auto& [number, text] : definitions_)
            shapeAt(number);
        std::vector<ShapeElement> elements;
        for (const auto& [number, shape] : shapes_)
            if (shape && !parts_.contains(number))
                if (auto element = painted(*shape))
                    elements.push_back(std::move(*element));
        return elements;
    }

private:
    /// Null when it cannot be read, and while it is being read: a combination is not a part of itself.
    const PlacedShape* shapeAt(int number) {
        const auto definition = definitions_.find(number);
        if (definition == definitions_.end())
            return nullptr;
        const auto [place, isNew] = shapes_.emplace(number, std::nullopt);
        if (isNew && depth_ < MostDepth) {
            ++depth_;
            if (auto shape = readShape(number, definition->second); shape && take(shape->outline.path.elementCount()))
                place->second = std::move(shape);
            --depth_;
        }
        return place->second ? &*place->second : nullptr;
    }

    bool take(int elements) {
        if (elements > elementsLeft_)
            return false;
        elementsLeft_ -= elements;
        return true;
    }

    std::optional<PlacedShape> readShape(int number, std::string_view text) {
        const auto items = expanded(text);
        if (items.empty())
            return std::nullopt;
        const auto [kind, rest] = firstWord(items.front());
        PlacedShape shape;
        if (equalsIgnoringCase(kind, "Combine")) {
            auto combination = readCombination(number, rest, items);
            if (!combination)
                return std::nullopt;
            shape = std::move(*combination);
        } else {
            auto outline = readOutline(kind, rest);
            if (!outline)
                return std::nullopt;
            shape.outline = std::move(*outline);
            for (std::size_t i = 1; i < items.size(); ++i)
                readModifier(items[i], shape.modifiers);
        }
        shape.box = shape.outline.path.boundingRect();
        shape.transform = transformOf(shape.modifiers, shape.box);
        if (!shape.transform.isIdentity())
            shape.outline.transform(shape.transform);
        const QRectF reach = shape.outline.path.boundingRect();
        const QRectF most(-FarthestReach, -FarthestReach, 2 * FarthestReach, 2 * FarthestReach);
        return most.contains(reach.topLeft()) && most.contains(reach.bottomRight()) ? std::optional(std::move(shape))
                                                                                    : std::nullopt;
    }

    std::optional<ShapeOutline> readOutline(std::string_view kind, std::string_view rest) const {
        const bool isNonzero = equalsIgnoringCase(kind, "Path1");
        if (!isNonzero && !equalsIgnoringCase(kind, "Path"))
            return ShapeOutlines::basicShape(kind, rest);
        const auto* text = options_.find(rest);
        return text ? ShapeOutlines::path(*text, isNonzero, static_cast<std::size_t>(elementsLeft_)) : std::nullopt;
    }

    std::optional<PlacedShape> readCombination(
        int number, std::string_view parentName, const std::vector<std::string_view>& items) {
        const auto parentNumber = shapeNumber(parentName);
        // It takes its place in the list of what is being read before its parts do.
        const PlacedShape* parent = parentNumber && *parentNumber != number ? shapeAt(*parentNumber) : nullptr;
        if (!parent)
            return std::nullopt;
        PlacedShape result = *parent;
        auto& modifiers = result.modifiers;
        modifiers.transformations.clear();
        modifiers.order.clear();
        QPainterPath path = parent->outline.path;
        path.closeSubpath();
        std::vector<int> parts{*parentNumber};
        Modifiers own;
        for (std::size_t i = 1; i < items.size(); ++i) {
            const auto [word, childName] = firstWord(items[i]);
            const auto how = combinationOf(word);
            if (!how) {
                readModifier(items[i], own);
                continue;
            }
            const auto childNumber = shapeNumber(childName);
            const PlacedShape* child = childNumber ? shapeAt(*childNumber) : nullptr;
            if (!child)
                continue;
            auto combined = ShapeOutlines::combined(path, child->outline.path, *how, combinationBudget_);
            if (!combined)
                return std::nullopt;
            path = std::move(*combined);
            parts.push_back(*childNumber);
        }
        modifiers.transformations = std::move(own.transformations);
        modifiers.order = std::move(own.order);
        parts_.insert(parts.begin(), parts.end());
        result.outline = {};
        result.outline.path = std::move(path);
        result.outline.isClosed = true;
        return result;
    }

    static std::optional<ShapeOutlines::Combination> combinationOf(std::string_view word) {
        using enum ShapeOutlines::Combination;
        constexpr std::array Names{std::pair{std::string_view("Union"), Union},
            std::pair{std::string_view("Intersect"), Intersect}, std::pair{std::string_view("XOR"), ExclusiveOr},
            std::pair{std::string_view("Exclude"), Exclude}};
        for (const auto& [name, how] : Names)
            if (equalsIgnoringCase(name, word))
                return how;
        return std::nullopt;
    }

    /// The items of a definition, those of extensions in their place.
    std::vector<std::string_view> expanded(std::string_view text) const {
        std::vector<std::string_view> items;
        for (const auto item : OptionValues::split(text, '|')) {
            const auto [word, rest] = firstWord(item);
            if (items.size() >= MostModifiers)
                break;
            if (!equalsIgnoringCase(word, "Extend")) {
                if (!item.empty())
                    items.push_back(item);
                continue;
            }
            for (const auto name : OptionValues::split(rest, ','))
                if (const auto* extension = options_.find(name))
                    for (const auto inner : OptionValues::split(*extension, '|'))
                        if (!inner.empty() && !equalsIgnoringCase(firstWord(inner).word, "Extend"))
                            items.push_back(inner);
        }
        return items;
    }

    void readModifier(std::string_view item, Modifiers& modifiers) const {
        auto [word, rest] = firstWord(item);
        std::string name(word);
        // "Fill Color" and "FillColor" are the same.
        if (equalsIgnoringCase(word, "Fill") || equalsIgnoringCase(word, "Stroke")) {
            const auto second = firstWord(rest);
            name += second.word;
            rest = second.rest;
        }
        const auto is = [&](std::string_view text) { return equalsIgnoringCase(name, text); };
        auto& style = modifiers.style;
        if (name.size() > 4 && equalsIgnoringCase(std::string_view(name).substr(0, 4), "Fill"))
            readPaint(std::string_view(name).substr(4), rest, modifiers.fill);
        else if (is("StrokeWidth"))
            style.width = std::max(0.0, boundedCoordinate(OptionValues::number(rest).value_or(style.width)));
        else if (is("StrokeStartCap"))
            style.startCap = capOf(rest).value_or(style.startCap);
        else if (is("StrokeEndCap"))
            style.endCap = capOf(rest).value_or(style.endCap);
        else if (is("StrokeDashCap"))
            style.dashCap = capOf(rest).value_or(style.dashCap);
        else if (is("StrokeDashOffset"))
            style.dashOffset = boundedCoordinate(OptionValues::number(rest).value_or(0));
        else if (is("StrokeDashes"))
            readDashes(rest, style);
        else if (is("StrokeLineJoin"))
            readJoin(rest, style);
        else if (name.size() > 6 && equalsIgnoringCase(std::string_view(name).substr(0, 6), "Stroke"))
            readPaint(std::string_view(name).substr(6), rest, modifiers.stroke);
        else if (is("TransformOrder"))
            readOrder(rest, modifiers.order);
        else
            readTransformation(name, rest, modifiers);
    }

    void readPaint(std::string_view kind, std::string_view text, std::optional<Paint>& paint) const {
        if (equalsIgnoringCase(kind, "Color")) {
            if (const auto color = OptionValues::color(text))
                paint = toQColor(*color);
            return;
        }
        const bool mixesLight = kind.ends_with('1');
        if (mixesLight)
            kind.remove_suffix(1);
        const bool isRadial = equalsIgnoringCase(kind, "RadialGradient");
        if (!isRadial && !equalsIgnoringCase(kind, "LinearGradient"))
            return;
        const auto* definition = options_.find(text);
        auto gradient = definition ? ShapeGradient::parse(*definition, isRadial, mixesLight) : std::nullopt;
        if (gradient)
            paint = std::move(*gradient);
    }

    static void readDashes(std::string_view text, StrokeStyle& style) {
        style.dashes.clear();
        for (const auto& number : OptionValues::numbers(text, ','))
            if (number && style.dashes.size() < MostModifiers)
                style.dashes.push_back(boundedCoordinate(*number));
    }

    static void readJoin(std::string_view text, StrokeStyle& style) {
        constexpr std::array Names{std::pair{std::string_view("Miter"), StrokeJoin::Miter},
            std::pair{std::string_view("Bevel"), StrokeJoin::Bevel},
            std::pair{std::string_view("Round"), StrokeJoin::Round},
            std::pair{std::string_view("MiterOrBevel"), StrokeJoin::MiterOrBevel}};
        const auto parts = OptionValues::split(text, ',');
        for (const auto& [name, join] : Names)
            if (!parts.empty() && equalsIgnoringCase(name, parts[0]))
                style.join = join;
        if (parts.size() > 1)
            style.miterLimit = std::max(1.0, boundedCoordinate(OptionValues::number(parts[1]).value_or(10)));
    }

    static void readOrder(std::string_view text, std::vector<Step>& order) {
        order.clear();
        for (const auto part : OptionValues::split(text, ','))
            for (const auto& [name, step] : StepNames)
                if (equalsIgnoringCase(name, part) && std::ranges::find(order, step) == order.end())
                    order.push_back(step);
    }

    static void readTransformation(std::string_view name, std::string_view text, Modifiers& modifiers) {
        for (const auto& [stepName, step] : StepNames) {
            if (!equalsIgnoringCase(stepName, name))
                continue;
            const auto numbers = OptionValues::numbers(text, ',');
            const auto at = [&](std::size_t i) -> std::optional<double> {
                return i < numbers.size() && numbers[i] ? std::optional(boundedCoordinate(*numbers[i])) : std::nullopt;
            };
            const double fallback = step == Step::Scale ? 1 : 0;
            const std::size_t anchor = step == Step::Rotate ? 1 : 2;
            modifiers.transformations[step]
                = {at(0).value_or(fallback), at(1).value_or(fallback), at(anchor), at(anchor + 1)};
            return;
        }
    }

    std::optional<ShapeElement> painted(const PlacedShape& shape) {
        const auto& [outline, box, transform, modifiers] = shape;
        ShapeElement element;
        if (outline.isClosed) {
            element.area = outline.path;
            element.fill = brushOf(modifiers.fill.value_or(QColor(Qt::white)), shape);
            element.bounds = element.area.boundingRect();
            element.rectangle = uprightRectangle(element.area);
        }
        if (modifiers.style.width > 0) {
            element.stroke = strokedArea(outline, modifiers.style);
            element.strokeFill = brushOf(modifiers.stroke.value_or(QColor(Qt::black)), shape);
            const QRectF bounds = element.stroke.boundingRect();
            element.bounds = outline.isClosed ? element.bounds.united(bounds) : bounds;
        }
        return take(element.stroke.elementCount()) ? std::optional(std::move(element)) : std::nullopt;
    }

    const Options& options_;
    std::map<int, std::string_view> definitions_;
    /// What has been read; absent for what cannot be read or is being read.
    std::map<int, std::optional<PlacedShape>> shapes_;
    /// The parts of combinations, which are not drawn themselves.
    std::set<int> parts_;
    int elementsLeft_ = MostElements;
    double combinationBudget_ = CombinationBudget;
    int depth_ = 0;
};

bool isVisible(const QBrush& brush) {
    return brush.gradient() || (brush.style() != Qt::NoBrush && brush.color().alpha() != 0);
}

} // namespace

bool ShapeElement::isFilled() const {
    return isVisible(fill) && !area.isEmpty();
}

bool ShapeElement::isStroked() const {
    return isVisible(strokeFill) && !stroke.isEmpty();
}

bool ShapeElement::hasGradient() const {
    return fill.gradient() || strokeFill.gradient();
}

std::vector<ShapeElement> readShapeElements(const Options& options) {
    return ShapeReader(options).read();
}

} // namespace Ostrel
