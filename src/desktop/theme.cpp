// SPDX-License-Identifier: MIT
#include "desktop/theme.h"

#include <QApplication>
#include <QFontDatabase>
#include <QLocale>
#include <QStringList>
#include <QStyle>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <utility>

#include "desktop/plain_style.h"
#include "desktop/qt_text.h"

namespace tessaly::desktop {

namespace {

QColor rgb(QRgb value) {
    return QColor::fromRgb(value);
}

Colors lightColors() {
    return {.window = rgb(0xFFFFFF),
            .sideBar = rgb(0xF5F5F7),
            .rightPane = rgb(0xFAFAFB),
            .line = rgb(0xE7E7EB),
            .text = rgb(0x1D1D22),
            .text2 = rgb(0x6B6B76),
            .text3 = rgb(0xA3A3AE),
            .accent = rgb(0x4F6BED),
            .onAccent = rgb(0xFFFFFF),
            .accentSoft = rgb(0xE8ECFD),
            .rowSelected = rgb(0xE4E7F8),
            .rowHover = rgb(0xECECF0),
            .tag = rgb(0x0F766E),
            .tagBack = rgb(0xE3F4F1),
            .date = rgb(0xB45309),
            .dateBack = rgb(0xFCF0DC),
            .link = rgb(0x3B5BDB),
            .codeBack = rgb(0xF1F1F4),
            .mark = rgb(0xFFF1A8),
            .selection = rgb(0xCFD8FB),
            .green = rgb(0x22A06B),
            .orange = rgb(0xE8912D),
            .red = rgb(0xDE4C4A),
            .purple = rgb(0x8B5CF6),
            .conflict = rgb(0xFF3311)};
}

Colors darkColors() {
    return {.window = rgb(0x1E1F24),
            .sideBar = rgb(0x17181C),
            .rightPane = rgb(0x1A1B20),
            .line = rgb(0x2C2D34),
            .text = rgb(0xE6E6EA),
            .text2 = rgb(0x9A9BA6),
            .text3 = rgb(0x686A76),
            .accent = rgb(0x7C93FF),
            .onAccent = rgb(0x12141C),
            .accentSoft = rgb(0x2A3050),
            .rowSelected = rgb(0x2B2F45),
            .rowHover = rgb(0x222329),
            .tag = rgb(0x5EC9B8),
            .tagBack = rgb(0x1C3531),
            .date = rgb(0xF0B35C),
            .dateBack = rgb(0x3A2E1A),
            .link = rgb(0x8FA4FF),
            .codeBack = rgb(0x2A2B31),
            .mark = rgb(0x5A4F15),
            .selection = rgb(0x37446F),
            .green = rgb(0x3CCB8B),
            .orange = rgb(0xF2A54A),
            .red = rgb(0xF07573),
            .purple = rgb(0xA78BFA),
            .conflict = rgb(0xFF3311)};
}

/// The light that a color gives, from 0 to 1.
double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

double contrastOf(const QColor& one, const QColor& other) {
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

QColor mixed(const QColor& color, const QColor& ground, double share) {
    const auto part = [share](int a, int b) {
        return static_cast<int>(std::lround(a * share + b * (1 - share)));
    };
    return {part(color.red(), ground.red()), part(color.green(), ground.green()),
            part(color.blue(), ground.blue())};
}

/// The color, or the nearest one on its way to `pole` that can be told from `ground`.
QColor readable(QColor color, const QColor& ground, const QColor& pole, double leastContrast) {
    for (int step = 0; step < 20 && contrastOf(color, ground) < leastContrast; ++step) {
        color = mixed(pole, color, 0.1);
    }
    return color;
}

/// A desktop's accent is made for buttons; lines and text of ours are drawn in it, too.
void takeAccent(Colors& colors, const QColor& accent, bool isDark) {
    const QColor pole = isDark ? QColor(Qt::white) : QColor(Qt::black);
    colors.accent = readable(accent, colors.window, pole, 3.2);
    const QColor dark = rgb(0x12141C);
    colors.onAccent = contrastOf(Qt::white, colors.accent) >= contrastOf(dark, colors.accent)
                          ? QColor(Qt::white)
                          : dark;
    colors.link = readable(accent, colors.window, pole, 4.6);
    colors.accentSoft = mixed(colors.accent, colors.window, isDark ? 0.2 : 0.12);
    colors.rowSelected = mixed(colors.accent, colors.sideBar, isDark ? 0.18 : 0.13);
    colors.selection = mixed(colors.accent, colors.window, isDark ? 0.35 : 0.28);
}

void raiseContrast(Colors& colors, bool isDark) {
    const QColor pole = isDark ? QColor(Qt::white) : QColor(Qt::black);
    colors.text = pole;
    colors.text2 = mixed(pole, colors.window, 0.82);
    colors.text3 = mixed(pole, colors.window, 0.66);
    colors.line = mixed(pole, colors.window, 0.5);
    colors.rowHover = mixed(pole, colors.window, 0.14);
    colors.rowSelected = mixed(colors.accent, colors.sideBar, 0.34);
    for (QColor* color : {&colors.accent, &colors.link, &colors.tag, &colors.date, &colors.green,
                          &colors.orange, &colors.red, &colors.purple}) {
        *color = readable(*color, colors.window, pole, 7);
    }
    colors.onAccent = isDark ? QColor(Qt::black) : QColor(Qt::white);
}

Colors colorsOf(const Theme::Look& look) {
    const bool isDark = look.scheme == Theme::Scheme::dark;
    Colors colors = isDark ? darkColors() : lightColors();
    if (look.accent.isValid()) {
        takeAccent(colors, look.accent, isDark);
    }
    if (look.contrast == Theme::Contrast::high) {
        raiseContrast(colors, isDark);
    }
    return colors;
}

QPalette paletteOf(const Colors& colors) {
    QPalette palette;
    const std::pair<QPalette::ColorRole, QColor> roles[] = {
        {QPalette::Window, colors.window},
        {QPalette::Base, colors.window},
        {QPalette::AlternateBase, colors.rightPane},
        {QPalette::Button, colors.window},
        {QPalette::Light, colors.window},
        {QPalette::Midlight, colors.line},
        {QPalette::Mid, colors.line},
        {QPalette::Dark, colors.line},
        {QPalette::Shadow, colors.line},
        {QPalette::WindowText, colors.text},
        {QPalette::Text, colors.text},
        {QPalette::ButtonText, colors.text},
        {QPalette::BrightText, colors.onAccent},
        {QPalette::Highlight, colors.selection},
        {QPalette::HighlightedText, colors.text},
        {QPalette::PlaceholderText, colors.text2},
        {QPalette::Link, colors.link},
        {QPalette::LinkVisited, colors.link},
        {QPalette::ToolTipBase, colors.rightPane},
        {QPalette::ToolTipText, colors.text},
    };
    for (const auto& [role, color] : roles) {
        palette.setColor(role, color);
    }
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, colors.text3);
    }
    return palette;
}

/// What the style draws in its own way: bars, frames, menus. The rest is painted by us.
QString styleSheetOf(const Colors& colors) {
    QString sheet = QStringLiteral(R"(
QSplitter::handle { background: @line; }
QScrollBar { background: transparent; border: none; margin: 0; }
QScrollBar:vertical { width: 9px; }
QScrollBar:horizontal { height: 9px; }
QScrollBar::handle { background: @handle; border-radius: 3px; margin: 2px 1px; }
QScrollBar::handle:hover { background: @text3; }
QScrollBar::handle:vertical { min-height: 32px; }
QScrollBar::handle:horizontal { min-width: 32px; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }
QToolButton { border: 1px solid transparent; border-radius: 6px; padding: 3px; background: transparent; color: @text; }
QToolButton:hover, QToolButton:checked { background: @rowHover; }
QToolButton:pressed, QToolButton:open { background: @rowSelected; }
QToolButton:focus { border-color: @accent; }
QToolButton:disabled { color: @text3; }
QToolButton::menu-indicator { image: none; width: 0; }
QPushButton { border: 1px solid @line; border-radius: 6px; padding: 4px 10px; background: @window; color: @text; }
QPushButton:hover { background: @rowHover; }
QPushButton:pressed { background: @rowSelected; }
QPushButton:default { background: @accent; border-color: @accent; color: @onAccent; }
QPushButton:focus { border-color: @accent; }
QPushButton:default:focus { border-color: @text; }
QPushButton:disabled { color: @text3; background: @window; border-color: @line; }
QLineEdit { border: 1px solid @line; border-radius: 6px; padding: 4px 8px; background: @window; color: @text;
            selection-background-color: @selection; selection-color: @text; }
QLineEdit:focus { border-color: @accent; }
QMenu { background: @window; border: 1px solid @line; padding: 5px; }
QMenu::item { padding: 5px 18px 5px 8px; border-radius: 5px; color: @text; background: transparent; }
QMenu::item:selected { background: @rowSelected; }
QMenu::item:disabled { color: @text3; }
QMenu::separator { height: 1px; background: @line; margin: 5px 8px; }
QToolTip { background: @rightPane; color: @text; border: 1px solid @line; padding: 4px 7px; }
)");
    // Longer names first: `text` begins `text3`.
    const std::pair<QLatin1String, QColor> roles[] = {
        {QLatin1String("@rowSelected"), colors.rowSelected},
        {QLatin1String("@rightPane"), colors.rightPane},
        {QLatin1String("@selection"), colors.selection},
        {QLatin1String("@onAccent"), colors.onAccent},
        {QLatin1String("@rowHover"), colors.rowHover},
        {QLatin1String("@accent"), colors.accent},
        {QLatin1String("@handle"), mixed(colors.text3, colors.window, 0.45)},
        {QLatin1String("@window"), colors.window},
        {QLatin1String("@text3"), colors.text3},
        {QLatin1String("@text"), colors.text},
        {QLatin1String("@line"), colors.line},
    };
    for (const auto& [name, color] : roles) {
        sheet.replace(name, color.name());
    }
    return sheet;
}

QFont fontOf(const QStringList& families, int pixelSize, QFont::Weight weight) {
    QFont font;
    font.setFamilies(families);
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

/// Those that are there. Each that is not would be asked for again, of every font that is made, as
/// soon as a letter is in none of the first ones.
QStringList installed(QStringList families) {
    const QStringList all = QFontDatabase::families();
    families.removeIf([&all](const QString& family) { return !all.contains(family); });
    return families;
}

/// The scripts of the Far East share letters that are drawn differently.
QString farEastFamily() {
    switch (QLocale().language()) {
        case QLocale::Japanese: return QStringLiteral("Noto Sans CJK JP");
        case QLocale::Korean: return QStringLiteral("Noto Sans CJK KR");
        default:
            return QLocale().script() == QLocale::TraditionalHanScript
                       ? QStringLiteral("Noto Sans CJK TC")
                       : QStringLiteral("Noto Sans CJK SC");
    }
}

/// What the first ones lack would be looked for among all fonts, one by one.
QStringList withFallbacks(QStringList families) {
    families += {QStringLiteral("Noto Color Emoji"), farEastFamily(),
                 QStringLiteral("Droid Sans Fallback")};
    return installed(std::move(families));
}

const QStringList& uiFamilies() {
    static const QStringList families = withFallbacks(
        {QStringLiteral("Inter"), QStringLiteral("Noto Sans"), QStringLiteral("Cantarell")});
    return families;
}

const QStringList& codeFamilies() {
    static const QStringList families =
        withFallbacks({QStringLiteral("JetBrains Mono"), QStringLiteral("Noto Sans Mono"),
                       QStringLiteral("DejaVu Sans Mono")});
    return families;
}

}  // namespace

Theme::Theme() : _colors(colorsOf(_look)) {}

Theme& Theme::instance() {
    // Lives with the application: a static object would outlive it.
    static Theme* const theme = [] {
        auto* made = new Theme;
        made->setParent(QCoreApplication::instance());
        return made;
    }();
    return *theme;
}

void Theme::apply(const Look& look) {
    _look = look;
    _colors = colorsOf(look);
    const QPalette palette = paletteOf(_colors);
    if (qApp->styleSheet().isEmpty()) {
        QApplication::setStyle(new PlainStyle);
    }
    QApplication::setFont(uiFont());
    QApplication::setPalette(palette);
    QToolTip::setPalette(palette);
    QToolTip::setFont(uiFont(12));
    qApp->setStyleSheet(styleSheetOf(_colors));
    Q_EMIT changed();
}

QFont Theme::uiFont(int pixelSize, QFont::Weight weight) const {
    return fontOf(uiFamilies(), pixelSize, weight);
}

QFont Theme::sectionFont() const {
    QFont font = uiFont(11, QFont::DemiBold);
    font.setLetterSpacing(QFont::AbsoluteSpacing, 0.4);
    return font;
}

QFont Theme::codeFont(int pixelSize) const {
    return fontOf(codeFamilies(), pixelSize, QFont::Normal);
}

QFont Theme::editorFont(const std::string& family, double size) const {
    QStringList families = uiFamilies();
    if (!family.empty() && family != "System") {
        families = installed({qt(family)}) + families;
    }
    const int pixelSize = static_cast<int>(
        std::lround(std::clamp<double>(size, smallestEditorFont, largestEditorFont)));
    return fontOf(families, pixelSize, QFont::Normal);
}

}  // namespace tessaly::desktop
