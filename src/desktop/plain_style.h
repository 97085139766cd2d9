// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

namespace tessaly::desktop {

/// What the style sheet cannot draw in the theme's colours: check boxes, combo boxes, the place of
/// a drop. Buttons of dialogs have no icons.
class PlainStyle : public QProxyStyle {
    Q_OBJECT
public:
    PlainStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override;
};

}  // namespace tessaly::desktop
