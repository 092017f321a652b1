// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QWidget>

#include "asl_questions.h"
#include "program_state.h"

namespace m47::asl {

/// The boxes of the satellite screen, over the screen.
class AslBoxes : public AslQuestions {
  public:
    AslBoxes(QWidget* screen, const ProgramState& program) : screen_(screen), program_(program) {}

    bool confirm(const QString& title, const QString& text) override;
    bool erase(const QString& title, const QString& text, const QString& what_goes) override;
    QString input(const QString& title, const QString& text, const QString& proposal) override;
    void warn(const QString& title, const QString& text) override;
    void inform(const QString& title, const QString& text) override;
    bool overwrite(const ChangedSatellite& change) override;
    QString file_to_save() override;
    QString file_to_restore() override;
    bool preview(const RestorePlan& plan) override;

  private:
    QString ask_file(bool save);

    QWidget* screen_;
    const ProgramState& program_;
};

}  // namespace m47::asl
