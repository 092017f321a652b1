// SPDX-License-Identifier: GPL-3.0-or-later
#include "asl.h"

#include <algorithm>
#include <utility>

#include "asl_tooltips.h"
#include "numbers.h"
#include "ui_asl.h"

namespace m47::asl {
namespace {

constexpr Caption kMenuCaptions[] = {
    {"cmdsaveall", {"&Save all slots…", "&Salva tutte le posizioni…"}},
    {"cmdrestoreall", {"&Restore all slots…", "&Ripristina tutte le posizioni…"}},
    {"cmdcompare", {"&Compare…", "&Confronta…"}},
};

}  // namespace

Asl::Asl(link::Link& link, ProgramState& program, db::Recordset& asl, QWidget* parent)
    : Screen(parent),
      program_(program),
      ui_(std::make_unique<Ui::Asl>()),
      boxes_(this, program),
      lists_(link, program, asl, boxes_),
      backup_(lists_, link, program, boxes_) {
    ui_->setupUi(this);
    ui_->cmdaddindb->setIcon(style()->standardIcon(QStyle::SP_ArrowLeft));
    ui_->cmdsave->setIcon(style()->standardIcon(QStyle::SP_ArrowRight));
    AslPanel& panel = lists_.panel;
    joints().entries(ui_->listadb, panel.listadb, panel.listadb_place);
    joints().entries(ui_->listastr, panel.listastr, panel.listastr_place);
    connect_buttons();
    connect_menu();
    take_exit(ui_->cmdexit);
}

Asl::~Asl() = default;

void Asl::handle(const char* name, const std::function<void()>& body) {
    const bool outermost = !std::exchange(working_, true);
    Screen::handle(name, body);
    if (outermost) working_ = false;
}

void Asl::Form_Load() {
    handle("Form_Load", [this] { lists_.Form_Load(); });
    fresh_ = true;
    set_tooltips(this, asl_tooltips(), program_.texts);
    set_captions(this, kMenuCaptions, program_.texts);
}

void Asl::Form_Activate() {
    if (working_ || std::exchange(fresh_, false)) return;
    handle("Form_Activate", [this] { lists_.refresh_listadb(); });
}

void Asl::another_meter() {
    handle("cmdreconnect_Click", [this] { lists_.forget_slots(); });
}

void Asl::connect_buttons() {
    const auto on_click = [this](QPushButton* button, const char* name,
                                 void (SatelliteLists::*handler)()) {
        when(button, &QPushButton::clicked, name, [this, handler] { (lists_.*handler)(); });
    };
    on_click(ui_->cmdaddindb, "cmdaddindb_Click", &SatelliteLists::cmdaddindb_Click);
    on_click(ui_->cmdsave, "cmdsave_Click", &SatelliteLists::cmdsave_Click);
    on_click(ui_->cmddelpc, "cmddelpc_Click", &SatelliteLists::cmddelpc_Click);
    on_click(ui_->cmddelstr, "cmddelstr_Click", &SatelliteLists::cmddelstr_Click);
    on_click(ui_->cmdlearn, "cmdlearn_Click", &SatelliteLists::cmdlearn_Click);
}

void Asl::connect_menu() {
    when(ui_->cmdsaveall, &QAction::triggered, "cmdsaveall_Click",
         [this] { backup_.cmdsaveall_Click(); });
    when(ui_->cmdrestoreall, &QAction::triggered, "cmdrestoreall_Click",
         [this] { backup_.cmdrestoreall_Click(); });
    when(ui_->cmdcompare, &QAction::triggered, "cmdcompare_Click", [this] { cmdcompare_Click(); });
}

void Asl::cmdcompare_Click() {
    const AslPanel& panel = lists_.panel;
    const int slot = std::max(panel.listastr_place, 0);
    const int other = panel.listadb_place >= 0 ? kSlots + panel.listadb_place : slot;
    CompareView(comparables(), slot, other, program_.texts, this).exec();
}

QList<Comparable> Asl::comparables() {
    QList<Comparable> entries;
    const SlotTable slots_now = backup_.present_slots();
    for (int slot = 0; slot < kSlots; ++slot) {
        const QString label =
            QStringLiteral("M47 %1  %2")
                .arg(link::format_number(slot, "00"), lists_.panel.listastr.value(slot));
        entries.append({label, slots_now[static_cast<std::size_t>(slot)]});
    }
    const QStringList blocks = lists_.stored_blocks();
    for (int place = 0; place < blocks.size(); ++place)
        entries.append({QStringLiteral("PC  ") + lists_.panel.listadb.value(place),
                        SlotBlock::parse(blocks[place])});
    return entries;
}

}  // namespace m47::asl
