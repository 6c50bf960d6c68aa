#pragma once

#include "OstrelGUI/Window/PaintedParts.h"
#include "OstrelGUI/Window/RowListLayout.h"
#include "OstrelGUI/Window/SymbolIcons.h"

#include <QWidget>

#include <memory>
#include <vector>

namespace Ostrel {

/// A list of rows of any length, each an icon, a heading, a wrapped text and a status. It is as high as its rows and
/// paints those that show; it stands in a page that scrolls.
class RowList final : public QWidget, public PaintedParts {
public:
    struct Row : RowListLayout::Row {
        Symbol symbol = Symbol::none;
        Tone tone = Tone::normal;
        /// After the heading, dim.
        QString badge;
        Symbol statusSymbol = Symbol::none;
    };

    /// Lines below each other, for inside a card; or each a card.
    enum class Shape { lines, cards };

    explicit RowList(Shape shape = Shape::lines, QWidget* parent = nullptr);
    ~RowList() override;

    void setRows(std::vector<Row> rows);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

    int partCount() const override { return static_cast<int>(rows_.size()); }
    Part part(int index) const override;
    int partAt(QPoint position) const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct Fonts;
    void useFonts();
    void layOut(int width) const;
    void paintRow(QPainter& painter, const Theme& theme, std::size_t index) const;
    void paintGround(QPainter& painter, const Theme& theme, std::size_t index) const;
    void paintHeading(QPainter& painter, const Theme& theme, const Row& row, double top) const;
    void paintStatus(QPainter& painter, const Theme& theme, const Row& row, int top, int bottom) const;
    double left() const { return inset() + RowListLayout::IconColumn; }
    int inset() const { return shape_ == Shape::cards ? Metrics::CardPadding : 0; }

    Shape shape_;
    std::vector<Row> rows_;
    std::unique_ptr<Fonts> fonts_;
    mutable int laidOutWidth_ = -1;
};

} // namespace Ostrel
