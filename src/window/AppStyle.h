#pragma once

#include <QProxyStyle>

namespace window {

/// The look of controls where the platform brings none of its own: flat, with round corners, in the colours
/// of the theme. Controls say what they are by properties: "primary" for the one filled button, "flat" for
/// one without a frame, "segment" ("first", "middle", "last") for one of a joined row, "small" for a low one,
/// "refused" for a field whose text does not count.
class AppStyle final : public QProxyStyle
{
    Q_OBJECT

public:
    AppStyle();

    /// Takes the place of Fusion; any other style stays. Once is enough.
    static void install();
    /// Whether it draws the controls.
    static bool isInUse();

    void polish(QPalette &palette) override;
    void polish(QWidget *widget) override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *answer) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                           const QWidget *widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl part,
                         const QWidget *widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption *option,
                         const QWidget *widget) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;
};

} // namespace window
