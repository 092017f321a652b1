// SPDX-License-Identifier: GPL-3.0-or-later
// Why a program of a file does not come into the plan, in words.
#include "plan_import.h"

namespace m47::plans {

QString import_problem_text(ImportProblem problem, const Texts& texts) {
    switch (problem) {
        case ImportProblem::number_taken:
            return texts.message(kProgramExists);
        case ImportProblem::number_out_of_range:
            return texts.pick({"Programs are numbered from 000 to 099.",
                               "I programmi sono numerati da 000 a 099."});
        case ImportProblem::number_twice:
            return texts.pick({"Its number stands twice among these rows.",
                               "Il suo numero compare due volte fra queste righe."});
        case ImportProblem::empty_program:
            return texts.pick({"Left out: an empty program.", "Escluso: un programma vuoto."});
        case ImportProblem::position_taken:
            return texts.message(kLoggerPositionExists);
        case ImportProblem::no_number:
            return texts.pick({"Left out: the plan is full.", "Escluso: il piano è pieno."});
        case ImportProblem::no_oscillator:
            return texts.pick({"Left out: the plan has no free oscillator.",
                               "Escluso: il piano non ha oscillatori liberi."});
        case ImportProblem::out_of_range:
            return texts.pick({"Left out: the meter cannot tune it.",
                               "Escluso: lo strumento non può sintonizzarlo."});
        case ImportProblem::rate_out_of_range:
            return texts.pick({"Left out: the meter measures 1500 to 45000 kS/s.",
                               "Escluso: lo strumento misura da 1500 a 45000 kS/s."});
        case ImportProblem::unreadable:
            return texts.pick({"Left out: not understood.", "Escluso: non interpretabile."});
        case ImportProblem::unwanted:
            return texts.pick({"Not ticked.", "Non spuntato."});
        case ImportProblem::as_in_plan:
            return texts.pick({"As in the plan.", "Come nel piano."});
        case ImportProblem::none:
            break;
    }
    return {};
}

}  // namespace m47::plans
