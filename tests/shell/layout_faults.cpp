// SPDX-License-Identifier: GPL-3.0-or-later
#include "layout_faults.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSizeGrip>
#include <QStyleOptionComboBox>
#include <QStyleOptionFrame>
#include <QStyleOptionGroupBox>
#include <QTabBar>
#include <QToolBar>
#include <QToolButton>

#include "elided_label.h"

namespace m47::shell {
namespace {

/// As many letters a box shows at least before it scrolls.
constexpr int kUsualText = 15;

/// "fsat in locosc", and for what has no name the kind of widget it is.
QString title(const QWidget* widget) {
    const auto name = [](const QWidget* of) {
        return of->objectName().isEmpty() ? QString::fromLatin1(of->metaObject()->className())
                                          : of->objectName();
    };
    const QWidget* parent = widget->parentWidget();
    return parent ? name(widget) + " in " + name(parent) : name(widget);
}

QString size_text(const QSize& size) {
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

/// Visible children of `parent`, but for windows of their own.
QList<QWidget*> shown_children(const QWidget* parent) {
    QList<QWidget*> shown;
    for (QWidget* child : parent->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        if (child->isVisible() && !child->isWindow() && !child->size().isEmpty()) shown += child;
    return shown;
}

/// What the toolkit lays over its neighbours by design.
bool floats(const QWidget* widget) {
    return qobject_cast<const QSizeGrip*>(widget) || widget->inherits("QFocusFrame") ||
           widget->inherits("QRubberBand");
}

void find_overlaps(const QWidget* parent, QStringList& faults) {
    // The views of the area lie over one another, and a tab leans on the page that it belongs to.
    if (qobject_cast<const QMdiArea*>(parent->parentWidget()) ||
        qobject_cast<const QTabWidget*>(parent) || qobject_cast<const QTabBar*>(parent) ||
        qobject_cast<const QMdiArea*>(parent))
        return;
    const QList<QWidget*> shown = shown_children(parent);
    for (qsizetype k = 0; k < shown.size(); ++k)
        for (qsizetype other = 0; other < k; ++other)
            if (!floats(shown[k]) && !floats(shown[other]) &&
                shown[k]->geometry().intersects(shown[other]->geometry()))
                faults += title(shown[k]) + " lies over " + shown[other]->objectName();
}

/// Room and need of the text of `control`; an empty need where it has none.
struct TextRoom {
    QSize room;
    QSize need;
};

TextRoom room_of_button(const QAbstractButton* button, QStyle::SubElement contents) {
    QStyleOptionButton option;
    option.initFrom(button);
    option.text = button->text();
    const QRect room = button->style()->subElementRect(contents, &option, button);
    return {room.size(), button->fontMetrics().size(Qt::TextShowMnemonic, button->text())};
}

TextRoom room_of_label(const QLabel* label) {
    if (label->text().isEmpty() || qobject_cast<const ElidedLabel*>(label)) return {};
    if (!label->wordWrap()) return {label->size(), label->sizeHint()};
    return {label->size(), QSize(0, label->heightForWidth(label->width()))};
}

TextRoom room_of_box(const QLineEdit* box) {
    QStyleOptionFrame option;
    option.initFrom(box);
    option.lineWidth =
        box->hasFrame() ? box->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, box) : 0;
    const QRect room = box->style()->subElementRect(QStyle::SE_LineEditContents, &option, box);
    // Through a long text, such as a path, one goes by the cursor.
    const int whole = box->fontMetrics().horizontalAdvance(box->text());
    const int usual = box->fontMetrics().horizontalAdvance(QString(kUsualText, u'x'));
    return {room.size(), QSize(qMin(whole, usual), box->fontMetrics().height())};
}

TextRoom room_of_list(const QComboBox* list) {
    QStyleOptionComboBox option;
    option.initFrom(list);
    option.editable = list->isEditable();
    option.frame = list->hasFrame();
    const QRect room = list->style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                     QStyle::SC_ComboBoxEditField, list);
    return {room.size(), QSize(list->fontMetrics().horizontalAdvance(list->currentText()),
                               list->fontMetrics().height())};
}

TextRoom room_of_frame(const QGroupBox* frame) {
    if (frame->title().isEmpty()) return {};
    QStyleOptionGroupBox option;
    option.initFrom(frame);
    option.text = frame->title();
    option.subControls = QStyle::SC_GroupBoxFrame | QStyle::SC_GroupBoxLabel;
    const QRect room = frame->style()->subControlRect(QStyle::CC_GroupBox, &option,
                                                      QStyle::SC_GroupBoxLabel, frame);
    return {room.size().boundedTo(frame->size()),
            frame->fontMetrics().size(Qt::TextShowMnemonic, frame->title())};
}

TextRoom text_room(const QWidget* control) {
    if (auto* label = qobject_cast<const QLabel*>(control)) return room_of_label(label);
    if (auto* box = qobject_cast<const QLineEdit*>(control)) return room_of_box(box);
    if (auto* list = qobject_cast<const QComboBox*>(control)) return room_of_list(list);
    if (auto* frame = qobject_cast<const QGroupBox*>(control)) return room_of_frame(frame);
    if (auto* button = qobject_cast<const QCheckBox*>(control))
        return room_of_button(button, QStyle::SE_CheckBoxContents);
    if (auto* button = qobject_cast<const QRadioButton*>(control))
        return room_of_button(button, QStyle::SE_RadioButtonContents);
    if (auto* button = qobject_cast<const QPushButton*>(control))
        return {button->size(), button->fontMetrics().size(Qt::TextShowMnemonic, button->text())};
    if (auto* button = qobject_cast<const QToolButton*>(control))
        return {button->size(), button->sizeHint()};
    return {};
}

void find_cut_text(const QWidget* control, QStringList& faults) {
    const TextRoom text = text_room(control);
    if (text.need.width() > text.room.width() || text.need.height() > text.room.height())
        faults += QStringLiteral("%1 cuts its text: %2 for %3")
                      .arg(title(control), size_text(text.room), size_text(text.need));
}

void find_cut_headers(const QHeaderView* header, QStringList& faults) {
    if (header->orientation() != Qt::Horizontal) return;
    for (int section = 0; section < header->count(); ++section)
        if (!header->isSectionHidden(section) &&
            header->sectionSize(section) < header->sectionSizeHint(section))
            faults += QStringLiteral("section %1 of %2 cuts its text: %3 for %4")
                          .arg(section)
                          .arg(title(header->parentWidget()))
                          .arg(header->sectionSize(section))
                          .arg(header->sectionSizeHint(section));
}

void find_cut_tabs(const QTabBar* bar, QStringList& faults) {
    for (int tab = 0; tab < bar->count(); ++tab) {
        const int need = bar->fontMetrics().horizontalAdvance(bar->tabText(tab));
        if (bar->isTabVisible(tab) && bar->tabRect(tab).width() < need)
            faults += QStringLiteral("tab '%1' of %2 cuts its text")
                          .arg(bar->tabText(tab), title(bar->parentWidget()));
    }
}

/// What a control has to have of its own accord; a list of rows or a page scrolls.
QSize least_size(const QWidget* control) {
    const QSize least = control->minimumSizeHint();
    // A box takes fewer letters than it asks for, but never lower ones.
    if (qobject_cast<const QLineEdit*>(control)) return {0, control->sizeHint().height()};
    if (qobject_cast<const QComboBox*>(control)) return {0, control->sizeHint().height()};
    return least;
}

void find_too_small(const QWidget* control, QStringList& faults) {
    if (qobject_cast<const QHeaderView*>(control)) return;  // its sections are looked at
    const QSize least = least_size(control);
    if (control->width() < least.width() || control->height() < least.height())
        faults += QStringLiteral("%1 is too small: %2 for %3")
                      .arg(title(control), size_text(control->size()), size_text(least));
}

bool scrolls_to(const QWidget* viewport, Qt::Orientation direction) {
    const auto* area = qobject_cast<const QAbstractScrollArea*>(viewport->parentWidget());
    if (!area || area->viewport() != viewport) return false;
    const Qt::ScrollBarPolicy policy = direction == Qt::Horizontal
                                           ? area->horizontalScrollBarPolicy()
                                           : area->verticalScrollBarPolicy();
    return policy != Qt::ScrollBarAlwaysOff && !qobject_cast<const QMdiArea*>(area);
}

/// Follows `control` outwards until something shows no more of it.
void find_out_of_sight(const QWidget* control, const QWidget* window, QStringList& faults) {
    QRect rect = control->rect();
    for (const QWidget* at = control; at != window; at = at->parentWidget()) {
        const QWidget* parent = at->parentWidget();
        rect = QRect(at->mapTo(parent, rect.topLeft()), rect.size());
        const bool across = rect.left() >= 0 && rect.right() < parent->width();
        const bool down = rect.top() >= 0 && rect.bottom() < parent->height();
        if (!across && !scrolls_to(parent, Qt::Horizontal)) {
            faults += title(control) + " is cut beside by " + title(parent);
            return;
        }
        if (!down && !scrolls_to(parent, Qt::Vertical)) {
            faults += title(control) + " is cut above or below by " + title(parent);
            return;
        }
        if (!across || !down) rect = parent->rect();
    }
}

/// A part of another control, which answers for it.
bool is_part(const QWidget* widget) {
    const QWidget* parent = widget->parentWidget();
    return qobject_cast<const QComboBox*>(parent) || qobject_cast<const QScrollBar*>(widget) ||
           qobject_cast<const QTabBar*>(parent) || qobject_cast<const QMdiSubWindow*>(widget) ||
           widget->inherits("QToolBarExtension") || widget->inherits("QMenuBarExtension") ||
           widget->inherits("QLineEditIconButton");
}

void look_at(const QWidget* widget, const QWidget* window, QStringList& faults) {
    find_overlaps(widget, faults);
    for (const QWidget* child : shown_children(widget)) {
        if (!is_part(child)) {
            find_out_of_sight(child, window, faults);
            find_cut_text(child, faults);
            find_too_small(child, faults);
        }
        if (auto* header = qobject_cast<const QHeaderView*>(child))
            find_cut_headers(header, faults);
        if (auto* bar = qobject_cast<const QTabBar*>(child)) find_cut_tabs(bar, faults);
        look_at(child, window, faults);
    }
}

}  // namespace

QStringList layout_faults(const QWidget* window) {
    QStringList faults;
    look_at(window, window, faults);
    return faults;
}

}  // namespace m47::shell
