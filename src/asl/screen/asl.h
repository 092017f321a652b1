// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMainWindow>
#include <memory>

#include "asl_boxes.h"
#include "compare_view.h"
#include "satellite_lists.h"
#include "slot_backup.h"

namespace Ui {
class Asl;
}

namespace m47 {

/// The screen "Automatic Satellite Locator": binds the satellite lists to its controls.
class Asl : public QMainWindow {
    Q_OBJECT
  public:
    /// `asl` is the program's shared set of satellites.
    Asl(Link& link, ProgramState& program, Recordset& asl, QWidget* parent = nullptr);
    ~Asl() override;

    /// Fills the lists and sets the tooltips; run once, when the screen is already visible.
    void Form_Load();
    /// Each time the screen comes to the front: shows the satellites that are stored by then.
    void Form_Activate();

  Q_SIGNALS:
    /// The menu entry "&Exit": the screen asks to be closed.
    void exit_asked();

  private:
    template <class Body>
    void handle(const char* name, Body body);
    void connect_buttons();
    void connect_menu();
    void take_selection();
    void show_lists();
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

}  // namespace m47
