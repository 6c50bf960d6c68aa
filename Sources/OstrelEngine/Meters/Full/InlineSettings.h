#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelDialect/PerlRegularExpression.h"
#include "OstrelEngine/Meters/Text/StyledText.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Ostrel {

/// Pixels of the screens that skins are written for, for each point of a font size.
constexpr double PixelsPerPoint = 4.0 / 3;

/// "InlineSetting", "InlineSetting2", ...: what changes the parts of a text that patterns match.
class InlineSettings {
public:
    /// Patterns that `previous` has compiled are taken over. At most 256 settings.
    static InlineSettings parse(const Options& options, const InlineSettings& previous);

    bool isEmpty() const { return settings_.empty(); }
    /// The text after the settings of letter case, which come before all others.
    std::string withCases(std::string text) const;
    /// The text in stretches of styles; where settings overlap, later ones win.
    StyledText styled(std::string_view text, const TextStyle& base) const;

    /// Compares what is written.
    friend bool operator==(const InlineSettings& a, const InlineSettings& b) { return a.written_ == b.written_; }

private:
    struct ColorChange {
        Color color;
    };
    struct SizeChange {
        double size = 0;
    };
    struct SpacingChange {
        std::optional<double> leading;
        std::optional<double> trailing;
        std::optional<double> leastAdvance;
    };
    struct FaceChange {
        std::string family;
    };
    struct WeightChange {
        int weight = 400;
    };
    struct StretchChange {
        int stretch = 5;
    };
    enum class CaseChange { Lower, Upper, Proper, Sentence };
    enum class Switch { Italic, Underline, Strikethrough };
    using Change = std::variant<ColorChange, std::shared_ptr<const TextGradient>, SizeChange, TextShadow, SpacingChange,
        FaceChange, WeightChange, StretchChange, TextFeature, Switch, CaseChange>;

    struct Setting {
        Change change;
        /// Null for the whole text.
        std::shared_ptr<const PerlRegularExpression> pattern;
    };
    struct Written {
        std::string setting;
        std::string pattern;
        /// Null also for a pattern that does not compile.
        std::shared_ptr<const PerlRegularExpression> compiled;

        friend bool operator==(const Written& a, const Written& b) {
            return a.setting == b.setting && a.pattern == b.pattern;
        }
    };

    static std::optional<Change> parseChange(std::string_view setting);
    static std::vector<PerlRegularExpression::Span> spans(const Setting& setting, std::string_view text);
    static void apply(const Change& change, TextStyle& style);

    std::vector<Written> written_;
    std::vector<Setting> settings_;
};

} // namespace Ostrel
