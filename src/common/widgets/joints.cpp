// SPDX-License-Identifier: GPL-3.0-or-later
#include "joints.h"

#include <algorithm>

namespace m47 {
namespace {

void show_entries(QListWidget* list, const QStringList& texts, int place) {
    QStringList shown;
    for (int row = 0; row < list->count(); ++row) shown += list->item(row)->text();
    if (shown != texts) {
        list->clear();
        list->addItems(texts);
    }
    list->setCurrentRow(place);
}

int selected_place(const QListWidget* list) {
    const QList<QListWidgetItem*> selected = list->selectedItems();
    return selected.isEmpty() ? -1 : list->row(selected.constFirst());
}

}  // namespace

void Joints::take() const {
    for (const auto& take_one : takes_) take_one();
}

void Joints::show() const {
    for (const auto& show_one : shows_) show_one();
}

template <class Control, class Signal>
void Joints::entered(Control* control, Signal changed, const std::function<void()>& take) {
    if (follower_)
        QObject::connect(control, changed, follower_, take);
    else
        takes_.push_back(take);
}

void Joints::text(QLineEdit* box, QString& value) {
    entered(box, &QLineEdit::textChanged, [box, &value] { value = box->text(); });
    // Whoever types on keeps his cursor; what was typed before a handler is not to be undone.
    shows_.emplace_back([box, &value, typed_on = follower_ != nullptr] {
        if (!typed_on || box->text() != value) box->setText(value);
    });
}

void Joints::text(QComboBox* list, QString& value) {
    entered(list, &QComboBox::currentTextChanged, [list, &value] { value = list->currentText(); });
    shows_.emplace_back([list, &value] { list->setCurrentIndex(list->findText(value)); });
}

void Joints::text(QLabel* label, const QString& value) {
    shows_.emplace_back([label, &value] { label->setText(value); });
}

void Joints::text(QAbstractButton* button, const QString& value) {
    shows_.emplace_back([button, &value] { button->setText(value); });
}

void Joints::entry(QComboBox* list, int& index, int unset) {
    entered(list, &QComboBox::currentIndexChanged, [list, &index, unset] {
        index = list->currentIndex() < 0 ? unset : list->currentIndex();
    });
    shows_.emplace_back([list, &index] { list->setCurrentIndex(index); });
}

void Joints::entries(QListWidget* list, const QStringList& texts, int& place) {
    entered(list, &QListWidget::itemSelectionChanged,
            [list, &place] { place = selected_place(list); });
    shows_.emplace_back([list, &texts, &place] { show_entries(list, texts, place); });
}

void Joints::ticked(QAbstractButton* button, bool& value) {
    entered(button, &QAbstractButton::toggled, [button, &value] { value = button->isChecked(); });
    shows_.emplace_back([button, &value] {
        if (button->isChecked() != value && (value || !button->autoExclusive()))
            button->setChecked(value);
    });
}

void Joints::either(QAbstractButton* yes, QAbstractButton* no, bool& value) {
    entered(yes, &QAbstractButton::toggled, [yes, &value] { value = yes->isChecked(); });
    shows_.emplace_back([yes, no, &value] { (value ? yes : no)->setChecked(true); });
}

void Joints::visible(QWidget* widget, const bool& value) {
    shows_.emplace_back([widget, &value] { widget->setVisible(value); });
}

void Joints::visible(QAction* action, const bool& value) {
    shows_.emplace_back([action, &value] { action->setVisible(value); });
}

void Joints::enabled(QWidget* widget, const bool& value) {
    shows_.emplace_back([widget, &value] { widget->setEnabled(value); });
}

}  // namespace m47
