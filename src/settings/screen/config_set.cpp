// SPDX-License-Identifier: GPL-3.0-or-later
#include "config_set.h"

#include <QValidator>

#include "enter_key.h"
#include "tooltips.h"
#include "ui_config_set.h"

namespace m47::settings {
namespace {

constexpr Tooltip kConfigTooltips[] = {
    {"logo", "Instrument Logo", nullptr},
    {"time", "Instrument Time e Date", nullptr},
    {"logo_txt", "Instrument Logo", nullptr},
};

constexpr Caption kKeyWords[] = {
    {"logo", {"Logo", "Logo"}},
    {"time", {"Time", "Ora"}},
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

ConfigSet::ConfigSet(link::Link& link, const Texts& texts, QWidget* parent)
    : Screen(parent), texts_(texts), logo_(link), ui_(std::make_unique<Ui::ConfigSet>()) {
    ui_->setupUi(this);
    ui_->logo_txt->setValidator(new SendableText(this));
    joints().text(ui_->logo_txt, logo_.logo_txt);
    // "time" is shown and does nothing.
    add_key(ui_->logo, [this] { logo_.read(); });
    when(ui_->logo_txt, &QLineEdit::returnPressed, "logo_txt_KeyPress",
         [this] { logo_.logo_txt_KeyPress(kEnterKey); });
    take_toolbar(ui_->Toolbar1);
    take_exit(ui_->cmdexit);
}

ConfigSet::~ConfigSet() = default;

void ConfigSet::Form_Load() {
    set_tooltips(this, kConfigTooltips, texts_);
    set_key_words(this, kKeyWords, texts_);
}

}  // namespace m47::settings
