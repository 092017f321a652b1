// SPDX-License-Identifier: GPL-3.0-or-later
#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHash>
#include <QHeaderView>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyleOptionButton>
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "layout_faults.h"

namespace m47::shell {
namespace {

constexpr double kOutline = 3.0;
constexpr double kText = 4.5;
/// How far, in logical pixels, an outline may lie inside the edge of its control.
constexpr double kDepth = 3;
/// How far around a control its ground is looked at.
constexpr double kAround = 6;

double linear(int channel) {
    const double value = channel / 255.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double luminance(QRgb colour) {
    return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) +
           0.0722 * linear(qBlue(colour));
}

double contrast(QRgb one, QRgb other) {
    const double first = luminance(one) + 0.05;
    const double second = luminance(other) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

/// A window as it is drawn.
class Picture {
  public:
    explicit Picture(QWidget* window)
        : window_(window), image_(window->grab().toImage().convertToFormat(QImage::Format_RGB32)) {}

    /// `rect` of `control` in pixels of the picture, as far as all of it is in sight.
    std::optional<QRect> place(const QWidget* control, const QRect& rect) const {
        const QRect seen = control->visibleRegion().boundingRect();
        if (!seen.contains(rect)) return {};
        const QPoint at = control->mapTo(window_, rect.topLeft());
        const double scale = image_.devicePixelRatio();
        return QRect((QPointF(at) * scale).toPoint(), (QSizeF(rect.size()) * scale).toSize());
    }
    /// How well the outline of what lies at `rect` is seen at the middle of its worst side.
    double outline(const QRect& rect) const {
        const QPoint middle = rect.center();
        return std::min(
            {side({middle.x(), rect.top()}, {0, 1}), side({middle.x(), rect.bottom()}, {0, -1}),
             side({rect.left(), middle.y()}, {1, 0}), side({rect.right(), middle.y()}, {-1, 0})});
    }
    /// How well what is written in `rect` is seen against the colour that prevails there.
    double text(const QRect& rect) const {
        QHash<QRgb, int> counts;
        const QRect inside = rect & image_.rect();
        for (int y = inside.top(); y <= inside.bottom(); ++y)
            for (int x = inside.left(); x <= inside.right(); ++x) ++counts[image_.pixel(x, y)];
        if (counts.isEmpty()) return 0;
        const QRgb ground = std::max_element(counts.cbegin(), counts.cend()).key();
        double best = 0;
        for (auto at = counts.cbegin(); at != counts.cend(); ++at)
            best = std::max(best, contrast(at.key(), ground));
        return best;
    }

  private:
    /// Inwards from the edge at `from`, against what lies next to it or, where that is the outline
    /// of a neighbour, against what prevails there.
    double side(const QPoint& from, const QPoint& inwards) const {
        if (!image_.rect().contains(from - inwards)) return kOutline;
        const double scale = image_.devicePixelRatio();
        const QRgb around = prevailing(from, -inwards, std::lround(kAround * scale));
        return std::max(against(image_.pixel(from - inwards), from, inwards),
                        against(around, from, inwards));
    }
    double against(QRgb ground, const QPoint& from, const QPoint& inwards) const {
        double best = 0;
        for (int step = 0; step <= std::lround(kDepth * image_.devicePixelRatio()); ++step) {
            const QPoint at = from + inwards * step;
            if (image_.rect().contains(at))
                best = std::max(best, contrast(image_.pixel(at), ground));
        }
        return best;
    }
    /// The colour of most of the `count` pixels from `from` on, without that one; of several that
    /// are as many the furthest, as near by there are outlines.
    QRgb prevailing(const QPoint& from, const QPoint& step, long count) const {
        QHash<QRgb, int> counts;
        QRgb most = 0;
        for (int k = 1; k <= count && image_.rect().contains(from + step * k); ++k) {
            const QRgb colour = image_.pixel(from + step * k);
            if (++counts[colour] >= counts.value(most)) most = colour;
        }
        return most;
    }

    QWidget* window_;
    QImage image_;
};

/// What of `control` has an outline; nothing where it is no box.
std::optional<QRect> outlined(const QWidget* control) {
    QStyleOptionButton option;
    option.initFrom(control);
    if (qobject_cast<const QCheckBox*>(control))
        return control->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, control);
    if (qobject_cast<const QRadioButton*>(control))
        return control->style()->subElementRect(QStyle::SE_RadioButtonIndicator, &option, control);
    if (auto* box = qobject_cast<const QLineEdit*>(control))
        return box->hasFrame() ? std::optional(box->rect()) : std::nullopt;
    if (qobject_cast<const QComboBox*>(control)) return control->rect();
    if (auto* label = qobject_cast<const QLabel*>(control))
        return label->frameShape() != QFrame::NoFrame ? std::optional(label->rect()) : std::nullopt;
    if (control->inherits("m47::Lamp")) return control->rect();
    return {};
}

QString text_of(const QWidget* control) {
    if (auto* label = qobject_cast<const QLabel*>(control)) return label->text().trimmed();
    if (auto* box = qobject_cast<const QLineEdit*>(control)) return box->text();
    if (auto* list = qobject_cast<const QComboBox*>(control)) return list->currentText();
    if (qobject_cast<const QCheckBox*>(control) || qobject_cast<const QRadioButton*>(control) ||
        qobject_cast<const QPushButton*>(control))
        return qobject_cast<const QAbstractButton*>(control)->text();
    return {};
}

/// Where the text stands, without the frame around it.
QRect text_place(const QWidget* control) {
    QStyleOptionButton option;
    option.initFrom(control);
    if (qobject_cast<const QCheckBox*>(control))
        return control->style()->subElementRect(QStyle::SE_CheckBoxContents, &option, control);
    if (qobject_cast<const QRadioButton*>(control))
        return control->style()->subElementRect(QStyle::SE_RadioButtonContents, &option, control);
    return control->rect().adjusted(4, 3, -4, -3);
}

}  // namespace

QStringList contrast_faults(QWidget* window) {
    const Picture picture(window);
    QStringList faults;
    for (const QWidget* control : window->findChildren<QWidget*>()) {
        if (!control->isVisible() || control->window() != window || !control->isEnabled()) continue;
        const auto fault = [&](const char* what, double ratio) {
            faults += QStringLiteral("%1 of %2 is %3:1")
                          .arg(QLatin1String(what), control->objectName())
                          .arg(ratio, 0, 'f', 1);
        };
        const auto box = outlined(control);
        const auto edge = box ? picture.place(control, *box) : std::nullopt;
        if (edge && picture.outline(*edge) < kOutline) fault("outline", picture.outline(*edge));
        if (text_of(control).isEmpty()) continue;
        const auto words = picture.place(control, text_place(control));
        if (words && picture.text(*words) < kText) fault("text", picture.text(*words));
    }
    return faults;
}

}  // namespace m47::shell
