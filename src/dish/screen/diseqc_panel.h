// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QGroupBox>
#include <QLineEdit>
#include <functional>
#include <memory>

#include "diseqc.h"
#include "diseqc_layout.h"
#include "dish_panel.h"
#include "joints.h"
#include "texts.h"

namespace Ui {
class DiseqcPanel;
}

namespace m47::dish {

/// The frame `diseqc` of the real-time screen: the choice of the protocol, the list of switching
/// commands and the motor with its boxes.
class DiseqcPanel : public QGroupBox {
    Q_OBJECT
  public:
    /// Runs a handler of that name as the screen does.
    using Handle = std::function<void(const char* name, const std::function<void()>& body)>;

    explicit DiseqcPanel(QWidget* parent = nullptr);
    ~DiseqcPanel() override;

    /// Joins the boxes to their members of `panel`.
    void join(DishPanel& panel, Joints& joints);

    /// Connects every control that sends or chooses to its handler in `rules`.
    void connect_to(Diseqc& rules, const Handle& handle);

    /// Fills `diseqc_cmd`; none of its entries is chosen.
    void add_diseqc_command();

    /// The labels that stand behind the boxes and the key of the peak, in the language in use.
    void set_captions(const Texts& texts);

    /// Shows the sub-frames of `layout` and takes its size, or more where the font needs it.
    void show_layout(const DiseqcLayout& layout);

    /// What the selected protocol shows once the panel is open.
    DiseqcState opened() const;

    /// The user is in the middle of something: a list or menu of the panel is open, or a box has an
    /// entry that was not confirmed yet.
    bool busy() const;

    /// Takes the focus away from what folding hides, to the option that stays.
    void keep_focus();

  Q_SIGNALS:
    void dsqopt_Click();
    /// The key "Find the peak…" was clicked.
    void peak_asked();

  protected:
    void changeEvent(QEvent* event) override;

  private:
    using KeyPress = void (Diseqc::*)(int key);
    using Click = void (Diseqc::*)();
    void connect_box(QLineEdit* box, const char* name, KeyPress handler, Diseqc& rules,
                     const Handle& handle);
    void connect_click(QLineEdit* box, const char* name, Click handler, Diseqc& rules,
                       const Handle& handle);
    void size_controls();

    std::unique_ptr<Ui::DiseqcPanel> ui_;
};

/// True when `widget` is `panel` or belongs to it, its pop-up lists and menus included.
bool belongs_to(const QWidget* panel, const QWidget* widget);

}  // namespace m47::dish
