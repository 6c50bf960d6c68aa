#pragma once

#include "OstrelGUI/Window/LibraryGroups.h"
#include "OstrelGUI/Window/LibraryLayout.h"
#include "OstrelGUI/Window/PaintedParts.h"
#include "OstrelGUI/Window/PreviewCache.h"
#include "OstrelGUI/Window/WidgetPreviewCard.h"

#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

namespace Ostrel {

/// The cards of the library, grouped by package. It is as high as all of them, stands in a page that scrolls and paints
/// what shows. One stop of the Tab key; the arrows go from button to button, Space and Return press.
class LibraryGrid final : public QWidget, public PaintedParts {
public:
    explicit LibraryGrid(QWidget* parent = nullptr);
    ~LibraryGrid() override;

    void setItems(std::span<const WidgetLibraryItem> items);
    const std::vector<LibraryGroup>& groups() const { return groups_; }

    std::function<void(const WidgetLibraryItem&)> onRenderToggle;
    std::function<void(const LibraryGroup&)> onRemovePack;
    /// A place that the keyboard has gone to and that should show.
    std::function<void(const QRect&)> onReveal;

    /// Where the button stands at the moment.
    QRect buttonRect(LibraryStop stop) const;
    LibraryStop focusedStop() const { return focused_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

    int partCount() const override { return static_cast<int>(layout_.stopCount()); }
    Part part(int index) const override;
    int partAt(QPoint position) const override;
    void pressPart(int index) override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    bool isEmpty() const { return layout_.stopCount() == 0; }
    void layOut();
    const CardLook& look() const;
    const WidgetLibraryItem& item(LibraryStop stop) const { return groups_[stop.group].items[*stop.card]; }
    QRect areaOf(LibraryStop stop) const;
    /// The button under the pointer.
    std::optional<LibraryStop> buttonAt(QPoint position) const;
    ButtonState buttonState(LibraryStop stop) const;
    void setHovered(std::optional<LibraryStop> stop);
    void setFocused(LibraryStop stop);
    void press(LibraryStop stop);
    void paintHeader(QPainter& painter, std::size_t group) const;
    void wantPreviews(const std::vector<LibraryLayout::VisibleGroup>& shown);
    QSize previewBox() const;

    std::vector<LibraryGroup> groups_;
    LibraryLayout layout_;
    PreviewCache previews_;
    mutable std::optional<CardLook> look_;
    std::optional<LibraryStop> hovered_;
    std::optional<LibraryStop> pressed_;
    LibraryStop focused_;
    bool showsFocus_ = false;
};

} // namespace Ostrel
