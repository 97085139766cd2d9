// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QFont>
#include <QObject>
#include <QPalette>

namespace tessaly::desktop {

/// The colours by role. Text in `text3` is too faint to be read as text: decoration alone.
struct Colors {
    QColor window, sideBar, rightPane, line;
    QColor text, text2, text3;
    QColor accent, onAccent, accentSoft;
    QColor rowSelected, rowHover;
    QColor tag, tagBack, date, dateBack, link, codeBack, mark, selection;
    QColor green, orange, red, purple;
    QColor conflict;  ///< "#FF3311", with white text
};

/// What is drawn with, everywhere: colours by the desktop's light or dark preference, its accent
/// and contrast, and fonts. Main thread.
class Theme : public QObject {
    Q_OBJECT
public:
    enum class Scheme { light, dark };
    enum class Contrast { usual, high };
    struct Look {
        Scheme scheme = Scheme::light;
        Contrast contrast = Contrast::usual;
        QColor accent;  ///< invalid: our own
        bool operator==(const Look&) const = default;
    };
    /// The one of the process; made with the first call, after QApplication.
    static Theme& instance();

    const Look& look() const { return _look; }
    const Colors& colors() const { return _colors; }
    bool isDark() const { return _look.scheme == Scheme::dark; }
    /// Sets the application's style, palette, font and style sheet, and tells `changed`.
    void apply(const Look& look);

    /// Fonts in pixels that do not depend on the screen's scale, never hinted.
    QFont uiFont(int pixelSize = 13, QFont::Weight weight = QFont::Normal) const;
    QFont sectionFont() const;  ///< the small headings of lists
    QFont codeFont(int pixelSize = 13) const;
    /// The editor's, by the settings `fontFamily`, `fontSize` and `fontDelta`.
    static constexpr int smallestEditorFont = 6;  ///< in pixels, as is the next
    static constexpr int largestEditorFont = 96;
    QFont editorFont(const std::string& family, double size) const;

Q_SIGNALS:
    void changed();

private:
    Theme();
    Look _look;
    Colors _colors;
};

}  // namespace tessaly::desktop
