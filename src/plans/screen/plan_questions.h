// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QWidget>
#include <optional>

#include "plan_clashes.h"
#include "texts.h"

namespace m47::plans {

/// "Remove program: " and `what`, the name of a plan or the number of a program.
bool ask_remove(QWidget* screen, const Texts& texts, const QString& what);

/// `prompt` and whether to go on.
bool ask_continue(QWidget* screen, const Texts& texts, const QString& prompt);

/// The same before the programs of the meter are replaced: says what is erased and, where `kept` is
/// a file or empty, whether a copy of the logger table was kept. No is what Enter answers.
bool ask_replace(QWidget* screen, const Texts& texts, const QString& prompt,
                 const std::optional<QString>& kept);

/// A plan's name as it is kept, with `preset` in the box; empty when the user gave none.
QString ask_plan_name(QWidget* screen, const QString& prompt, const QString& preset);

/// What becomes of edits of the program `number` before it is left.
enum class Edits { store, discard, stay };
Edits ask_edits(QWidget* screen, const Texts& texts, const QString& number);

/// Why a program was not stored.
void tell_clash(QWidget* screen, const Texts& texts, Clash clash);

/// Something that could not be done.
void tell_problem(QWidget* screen, const QString& text);

/// The plan has no program that could be changed or sent.
void tell_no_program(QWidget* screen, const Texts& texts);

}  // namespace m47::plans
