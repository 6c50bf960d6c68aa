#include "OstrelGUI/Window/SegmentedPicker.h"

#include "OstrelGUI/Window/Controls.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QPainter>

namespace Ostrel {

namespace {

constexpr int Inset = 3;

class Segment final : public QAbstractButton {
public:
    explicit Segment(const QString& title) {
        setText(title);
        setCheckable(true);
        setAccessibleName(title);
        setFocusPolicy(Qt::TabFocus);
    }

    QSize sizeHint() const override {
        return {QFontMetrics(Type::strong(font())).horizontalAdvance(text()) + 28, Metrics::ControlHeight - 2 * Inset};
    }

protected:
    void paintEvent(QPaintEvent*) override {
        const Theme theme = Theme::from(palette());
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (isChecked() || underMouse()) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(isChecked() ? (theme.isDark ? QColor(0x5a, 0x5a, 0x62) : theme.card) : theme.hover);
            painter.drawRoundedRect(rect(), Metrics::ControlRadius - 2, Metrics::ControlRadius - 2);
        }
        painter.setFont(isChecked() ? Type::strong(font()) : font());
        painter.setPen(isChecked() ? theme.text : theme.dim);
        painter.drawText(rect(), Qt::AlignCenter, text());
        if (hasFocus())
            paintFocusRing(painter, rect(), Metrics::ControlRadius - 2, theme);
    }
};

} // namespace

SegmentedPicker::SegmentedPicker(const QStringList& titles, QWidget* parent)
    : QWidget(parent)
    , group_(new QButtonGroup(this)) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(Inset, Inset, Inset, Inset);
    row->setSpacing(2);
    for (const QString& title : titles) {
        auto* segment = new Segment(title);
        segment->setChecked(group_->buttons().isEmpty());
        group_->addButton(segment, static_cast<int>(group_->buttons().size()));
        row->addWidget(segment);
    }
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(group_, &QButtonGroup::idToggled, this, [this](int id, bool isChecked) {
        if (isChecked && onPick)
            onPick(id);
    });
}

void SegmentedPicker::paintEvent(QPaintEvent*) {
    const Theme theme = Theme::from(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.control);
    painter.drawRoundedRect(rect(), Metrics::ControlRadius, Metrics::ControlRadius);
}

} // namespace Ostrel
