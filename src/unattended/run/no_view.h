// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "identification.h"
#include "link_view.h"

namespace m47::unattended {

/// What is shown of the link where there is no window: nothing. It only keeps what is asked back.
class NoView : public link::LinkView, public link::MainWindowView {
  public:
    void show_progress_bar() override {}
    void set_progress(int) override {}
    void set_hourglass(bool) override {}
    void set_port_state(const QString&, bool) override {}
    void pump() override;

    QString caption() const override { return caption_; }
    void set_caption(const QString& caption) override { caption_ = caption; }
    void enable_asl(bool) override {}

  private:
    QString caption_;
};

}  // namespace m47::unattended
