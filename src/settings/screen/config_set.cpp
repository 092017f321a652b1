// SPDX-License-Identifier: GPL-3.0-or-later
#include "config_set.h"

#include <QValidator>

#include "handler.h"
#include "icons.h"
#include "tooltips.h"
#include "ui_config_set.h"

namespace m47 {
namespace {

constexpr int kEnterKeyOfBox = 13;

constexpr Tooltip kConfigTooltips[] = {
    {"logo", "Instrument Logo", nullptr},
    {"time", "Instrument Time e Date", nullptr},
    {"logo_txt", "Instrument Logo", nullptr},
};

/// Lets nothing into the box, typed or pasted, that the line would turn into a question mark.
class SendableText : public QValidator {
  public:
    using QValidator::QValidator;
    State validate(QString& text, int&) const override {
        return Logo::can_be_sent(text) ? Acceptable : Invalid;
    }
};

}  // namespace

ConfigSet::ConfigSet(Link& link, const Texts& texts, QWidget* parent)
    : QMainWindow(parent), texts_(texts), logo_(link), ui_(std::make_unique<Ui::ConfigSet>()) {
    ui_->setupUi(this);
    // Its menu would hide the toolbar, and nothing would bring it back.
    setContextMenuPolicy(Qt::NoContextMenu);
    for (QAction* key : ui_->Toolbar1->actions()) key->setIcon(toolbar_icon(key->objectName()));
    ui_->logo_txt->setValidator(new SendableText(this));
    on(ui_->Toolbar1, &QToolBar::actionTriggered, this, "Toolbar1_ButtonClick",
       [this](QAction* key) { Toolbar1_ButtonClick(key->objectName()); });
    on(ui_->logo_txt, &QLineEdit::returnPressed, this, "logo_txt_KeyPress",
       [this] { logo_txt_KeyPress(); });
    connect(ui_->cmdexit, &QAction::triggered, this, &ConfigSet::exit_asked);
}

ConfigSet::~ConfigSet() = default;

void ConfigSet::Form_Load() {
    set_tooltips(this, kConfigTooltips, texts_);
}

void ConfigSet::Toolbar1_ButtonClick(const QString& key) {
    if (key != QLatin1String("logo")) return;
    logo_.read();
    ui_->logo_txt->setText(logo_.logo_txt);
}

void ConfigSet::logo_txt_KeyPress() {
    logo_.logo_txt = ui_->logo_txt->text();
    logo_.logo_txt_KeyPress(kEnterKeyOfBox);
    ui_->logo_txt->setText(logo_.logo_txt);
}

}  // namespace m47
