// SPDX-License-Identifier: GPL-3.0-or-later
#include "painted_text.h"

#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>

namespace m47::shell {
namespace {

/// Notes the texts and paints nothing.
class TextEngine : public QPaintEngine {
  public:
    TextEngine() : QPaintEngine(QPaintEngine::AllFeatures) {}

    QList<PaintedText> texts;

    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState&) override {}
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
    void drawPolygon(const QPointF*, int, PolygonDrawMode) override {}
    void drawPath(const QPainterPath&) override {}
    Type type() const override { return User; }
    void drawTextItem(const QPointF& base, const QTextItem& item) override {
        const QRectF letters = QFontMetricsF(item.font()).tightBoundingRect(item.text());
        const QRectF room(base.x(), base.y() + letters.top(), item.width(), letters.height());
        texts.append({item.text(), state->transform().mapRect(room), state->pen().color()});
    }
};

class TextDevice : public QPaintDevice {
  public:
    explicit TextDevice(const QSize& size) : size_(size) {}

    TextEngine engine;

    QPaintEngine* paintEngine() const override { return const_cast<TextEngine*>(&engine); }

  protected:
    int metric(PaintDeviceMetric what) const override {
        constexpr int kDpi = 96;
        switch (what) {
            case PdmWidth:
                return size_.width();
            case PdmHeight:
                return size_.height();
            case PdmDpiX:
            case PdmDpiY:
            case PdmPhysicalDpiX:
            case PdmPhysicalDpiY:
                return kDpi;
            case PdmDevicePixelRatio:
                return 1;
            case PdmDevicePixelRatioScaled:
                return static_cast<int>(devicePixelRatioFScale());
            default:
                return QPaintDevice::metric(what);
        }
    }

  private:
    QSize size_;
};

}  // namespace

QList<PaintedText> painted_texts(QWidget& widget) {
    TextDevice device(widget.size());
    QPainter painter(&device);
    widget.render(&painter, {}, {}, QWidget::DrawChildren);
    painter.end();
    return device.engine.texts;
}

}  // namespace m47::shell
