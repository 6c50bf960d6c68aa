#include "OstrelGUI/Window/DropHint.h"

#include "OstrelGUI/Window/SymbolIcons.h"

#include <QMimeData>
#include <QPainter>
#include <QUrl>

namespace Ostrel {

DropHint::DropHint(QWidget* parent)
    : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void DropHint::paintEvent(QPaintEvent*) {
    const Theme theme = Theme::from(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor veil = theme.window;
    veil.setAlphaF(0.94F);
    painter.fillRect(rect(), veil);
    painter.setPen(QPen(theme.accent, 2, Qt::DashLine, Qt::RoundCap));
    painter.setBrush(theme.tint(Tone::accent));
    constexpr int Margin = 20;
    painter.drawRoundedRect(
        QRectF(rect()).adjusted(Margin, Margin, -Margin, -Margin), Metrics::CardRadius + 4, Metrics::CardRadius + 4);
    constexpr double Side = 56;
    const QPointF middle = QRectF(rect()).center();
    paintSymbol(painter, Symbol::trayArrow, QRectF(middle.x() - Side / 2, middle.y() - Side, Side, Side), theme.accent);
    painter.setFont(Type::heading(font()));
    painter.setPen(theme.text);
    painter.drawText(QRectF(0, middle.y() + 2 * Metrics::Unit, width(), 40), Qt::AlignHCenter | Qt::AlignTop,
        QStringLiteral("Drop skins, packages or folders to scan them"));
}

std::vector<std::string> droppedPaths(const QMimeData& data) {
    std::vector<std::string> paths;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile())
            paths.push_back(url.toLocalFile().toStdString());
    }
    return paths;
}

} // namespace Ostrel
