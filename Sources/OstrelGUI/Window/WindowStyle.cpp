#include "OstrelGUI/Window/WindowStyle.h"

#include "OstrelGUI/Window/Theme.h"

#include <QPushButton>
#include <QStyle>
#include <QVariant>

namespace Ostrel {

namespace {

constexpr const char* KindProperty = "buttonKind";

QString css(const QColor& color) {
    return QStringLiteral("rgba(%1,%2,%3,%4)").arg(color.red()).arg(color.green()).arg(color.blue()).arg(color.alpha());
}

QColor over(const QColor& color, const QColor& layer, float alpha) {
    const auto part = [alpha](int below, int above) {
        return qRound(static_cast<float>(below) + static_cast<float>(above - below) * alpha);
    };
    return {part(color.red(), layer.red()), part(color.green(), layer.green()), part(color.blue(), layer.blue())};
}

/// One kind of button, in its three states. The ring takes the place of the border, so that nothing moves.
QString buttonRules(const QString& selector, const QColor& fill, const QColor& text, const Theme& theme) {
    return QStringLiteral("%1{background:%2;color:%3;}%1:hover{background:%4;}%1:pressed{background:%5;}")
        .arg(selector, css(fill), css(text), css(over(fill, theme.text, 0.07F)), css(over(fill, theme.text, 0.14F)));
}

QString buttons(const Theme& theme) {
    QString sheet = QStringLiteral("QPushButton{border:2px solid transparent;border-radius:%1px;padding:0 12px;"
                                   "min-height:%2px;}"
                                   "QPushButton:focus{border-color:%3;outline:none;}"
                                   "QPushButton:disabled{color:%4;}")
                        .arg(Metrics::ControlRadius)
                        .arg(Metrics::ControlHeight - 4)
                        .arg(css(over(theme.accent, theme.text, 0.1F)), css(theme.dim));
    sheet += buttonRules(QStringLiteral("QPushButton"), theme.control, theme.text, theme);
    sheet += buttonRules(QStringLiteral("QPushButton[buttonKind=\"1\"]"), theme.accent, theme.onAccent, theme);
    sheet += buttonRules(QStringLiteral("QPushButton[buttonKind=\"2\"]"),
        over(theme.card, theme.error, theme.isDark ? 0.24F : 0.14F), theme.error, theme);
    sheet += QStringLiteral("QPushButton[buttonKind=\"3\"]{background:transparent;}"
                            "QPushButton[buttonKind=\"3\"]:hover{background:%1;}"
                            "QPushButton[buttonKind=\"3\"]:pressed{background:%2;}"
                            "QPushButton[buttonKind=\"1\"]:focus,QPushButton[buttonKind=\"2\"]:focus{border-color:%3;}")
                 .arg(css(theme.hover), css(theme.border), css(theme.text));
    return sheet;
}

QString scrollBars(const Theme& theme) {
    QColor handle = theme.text;
    handle.setAlphaF(0.22F);
    QColor hovered = theme.text;
    hovered.setAlphaF(0.4F);
    return QStringLiteral("QScrollBar{background:transparent;border:none;}"
                          "QScrollBar:vertical{width:12px;}QScrollBar:horizontal{height:12px;}"
                          "QScrollBar::handle{background:%1;border-radius:3px;margin:3px;}"
                          "QScrollBar::handle:hover{background:%2;}"
                          "QScrollBar::handle:vertical{min-height:36px;}QScrollBar::handle:horizontal{min-width:36px;}"
                          "QScrollBar::add-line,QScrollBar::sub-line{width:0;height:0;}"
                          "QScrollBar::add-page,QScrollBar::sub-page{background:transparent;}")
        .arg(css(handle), css(hovered));
}

QString fields(const Theme& theme) {
    return QStringLiteral("QLineEdit{background:%1;color:%2;border:1px solid %3;border-radius:%6px;padding:0 9px;"
                          "min-height:%7px;selection-background-color:%4;selection-color:%5;}"
                          "QLineEdit:focus{border:2px solid %4;padding:0 8px;min-height:%8px;}"
                          "QPlainTextEdit{background:%9;color:%2;border:1px solid %3;border-radius:%6px;padding:6px;"
                          "selection-background-color:%4;selection-color:%5;}"
                          "QPlainTextEdit:focus{border-color:%4;}")
        .arg(css(theme.card), css(theme.text), css(theme.border), css(theme.accent), css(theme.onAccent))
        .arg(Metrics::ControlRadius)
        .arg(Metrics::ControlHeight - 2)
        .arg(Metrics::ControlHeight - 4)
        .arg(css(theme.window));
}

/// Only the open panel has such: the window's own list names itself.
QString fileLists(const Theme& theme) {
    return QStringLiteral(
        "QFileDialog QTreeView,QFileDialog QListView{background:%1;color:%2;border:1px solid %3;"
        "border-radius:%5px;padding:4px;outline:none;}"
        "QFileDialog QTreeView::item,QFileDialog QListView::item{min-height:28px;border:none;}"
        "QFileDialog QTreeView::item:selected,QFileDialog QListView::item:selected{background:%4;"
        "color:%2;}"
        "QHeaderView{background:transparent;}"
        "QHeaderView::section{background:transparent;color:%6;border:none;padding:6px 8px;}"
        "QFileDialog QToolButton{border:none;border-radius:%5px;padding:7px;}"
        "QFileDialog QToolButton:hover{background:%7;}"
        "QFileDialog QToolButton:focus{background:%7;}"
        "QComboBox{background:%8;color:%2;border:none;border-radius:%5px;padding:0 10px;min-height:32px;}"
        "QComboBox:focus{border:2px solid %4;padding:0 8px;min-height:28px;}"
        "QComboBox::drop-down{border:none;width:24px;}")
        .arg(css(theme.card), css(theme.text), css(theme.border), css(theme.tint(Tone::accent)))
        .arg(Metrics::ControlRadius)
        .arg(css(theme.dim), css(theme.hover), css(theme.control));
}

QString menus(const Theme& theme) {
    return QStringLiteral("QMenu{background:%1;color:%2;border:1px solid %3;padding:6px;}"
                          "QMenu::item{padding:6px 24px 6px 12px;border-radius:6px;}"
                          "QMenu::item:selected{background:%4;}"
                          "QToolTip{padding:6px 8px;border:none;}")
        .arg(css(theme.card), css(theme.text), css(theme.border), css(theme.hover));
}

} // namespace

QString windowStyleSheet(const Theme& theme) {
    return buttons(theme) + scrollBars(theme) + fields(theme) + fileLists(theme) + menus(theme);
}

void setButtonKind(QPushButton& button, ButtonKind kind) {
    button.setProperty(KindProperty, static_cast<int>(kind));
    // As on the desktops it stands on: a click does not take the keyboard away, Tab brings it.
    button.setFocusPolicy(Qt::TabFocus);
    // A sheet asks for the property only when it is put on.
    button.style()->unpolish(&button);
    button.style()->polish(&button);
}

} // namespace Ostrel
