// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>
#include <vector>

namespace m47 {

/// The objects NAME_0, NAME_1 … below `screen`, in order. A gap, a second one of a name or none at
/// all is a Fault: a form that lost a control must not go unnoticed.
std::vector<QObject*> numbered_children(const QObject* screen, const QString& name);

[[noreturn]] void wrong_kind_in_array(const QString& name, std::size_t index);

/// The controls NAME_0 … NAME_n of a screen, collected once.
template <class Control>
class ControlArray {
  public:
    ControlArray(const QObject* screen, const QString& name) {
        for (QObject* child : numbered_children(screen, name)) {
            auto* control = qobject_cast<Control*>(child);
            if (!control) wrong_kind_in_array(name, controls_.size());
            controls_.push_back(control);
        }
    }

    Control* operator[](std::size_t index) const { return controls_.at(index); }
    std::size_t size() const { return controls_.size(); }
    auto begin() const { return controls_.begin(); }
    auto end() const { return controls_.end(); }

  private:
    std::vector<Control*> controls_;
};

}  // namespace m47
