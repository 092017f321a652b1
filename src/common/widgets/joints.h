// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QAbstractButton>
#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <functional>
#include <vector>

namespace m47 {

/// Joins the controls of a screen to the values that its rules work on: which control shows which
/// value is said once, for both ways. A control is a member of the form, so that one that is not
/// there does not compile. The values outlive the joints; no handler is run by them.
class Joints {
  public:
    /// Each entry goes to its value as it is made, as long as `screen` is there: rules go on while
    /// the user types. For the controls that are joined after this; without it, values are taken.
    void follow(const QObject* screen) { follower_ = screen; }

    /// Takes what stands in the controls, but for those that are followed.
    void take() const;
    /// Shows the values in the order in which they were joined.
    void show() const;

    void text(QLineEdit* box, QString& value);
    void text(QComboBox* list, QString& value);
    void text(QLabel* label, const QString& value);
    void text(QAbstractButton* button, const QString& value);
    /// A list without a choice gives `unset`.
    void entry(QComboBox* list, int& index, int unset = -1);
    /// The entries, and the place of the selected one, -1 for none. Entries that have not changed
    /// keep their scroll place.
    void entries(QListWidget* list, const QStringList& texts, int& place);
    /// One of an exclusive group is unticked by ticking another.
    void ticked(QAbstractButton* button, bool& value);
    void either(QAbstractButton* yes, QAbstractButton* no, bool& value);
    void visible(QWidget* widget, const bool& value);
    void visible(QAction* action, const bool& value);
    void enabled(QWidget* widget, const bool& value);

    /// What else there is to be shown.
    void also(const std::function<void()>& show) { shows_.push_back(show); }

  private:
    template <class Control, class Signal>
    void entered(Control* control, Signal changed, const std::function<void()>& take);

    const QObject* follower_ = nullptr;
    std::vector<std::function<void()>> takes_;
    std::vector<std::function<void()>> shows_;
};

}  // namespace m47
