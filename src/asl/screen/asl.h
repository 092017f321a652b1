// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>

#include "asl_boxes.h"
#include "compare_view.h"
#include "satellite_lists.h"
#include "screen.h"
#include "slot_backup.h"

namespace Ui {
class Asl;
}

namespace m47::asl {

/// The screen "Automatic Satellite Locator": binds the satellite lists to its controls.
class Asl : public Screen {
    Q_OBJECT
  public:
    /// `asl` is the program's shared set of satellites.
    Asl(link::Link& link, ProgramState& program, db::Recordset& asl, QWidget* parent = nullptr);
    ~Asl() override;

    /// Fills the lists and sets the tooltips; run once, when the screen is already visible.
    void Form_Load() override;
    /// Each time the screen comes to the front: shows the satellites that are stored by then.
    void Form_Activate() override;

    /// Another meter has come: the slots shown are not its own, and no key may work on them.
    void another_meter();

  private:
    void handle(const char* name, const std::function<void()>& body) override;
    void connect_buttons();
    void connect_menu();
    void cmdcompare_Click();
    QList<Comparable> comparables();

    ProgramState& program_;
    std::unique_ptr<Ui::Asl> ui_;
    AslBoxes boxes_;
    SatelliteLists lists_;
    SlotBackup backup_;
    /// While a handler works on the lists they are not to change beneath it.
    bool working_ = false;
    /// Just loaded: its first activation would read the same again, and tell a fault twice.
    bool fresh_ = false;
};

}  // namespace m47::asl
