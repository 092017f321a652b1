// SPDX-License-Identifier: GPL-3.0-or-later
#include "field_words.h"

#include <algorithm>
#include <iterator>

#include "diseqc_commands.h"

namespace m47 {
namespace {

enum class Shown { as_it_is, yes_or_no, diseqc, supply, oscillator_number };

struct FieldWords {
    const char* field;
    Bilingual name;
    Shown shown = Shown::as_it_is;
};

constexpr FieldWords kFieldWords[] = {
    {"pg_num", {"Program", "Programma"}},
    {"frequenza", {"Frequency, MHz", "Frequenza, MHz"}},
    {"loc_osc", {"Tuned directly", "Sintonia diretta"}, Shown::yes_or_no},
    {"loc_osc0", {"Oscillator used", "Oscillatore usato"}, Shown::oscillator_number},
    {"sat_ad", {"Digital", "Digitale"}, Shown::yes_or_no},
    {"qpsk_symbolrate", {"Symbol rate", "Symbol rate"}},
    {"satchbw", {"Channel bandwidth, MHz", "Banda del canale, MHz"}},
    {"diseqc_cmd", {"DiSEqC 1", "DiSEqC 1"}, Shown::diseqc},
    {"diseqc_cmd2", {"DiSEqC 2", "DiSEqC 2"}, Shown::diseqc},
    {"lnb_volt", {"LNB supply", "Alimentazione LNB"}, Shown::supply},
    {"K22", {"22 kHz tone", "Tono 22 kHz"}, Shown::yes_or_no},
    {"logger_pos", {"Line of the logger table", "Riga della tabella datalogger"}},
    {"logger_state", {"Active in the logger table", "Attivo nel datalogger"}, Shown::yes_or_no},
    {"monitor_state", {"Monitored", "Monitorato"}, Shown::yes_or_no},
    {"lev_min", {"Level, minimum", "Livello, minimo"}},
    {"lev_max", {"Level, maximum", "Livello, massimo"}},
    {"noise_min", {"C/N, minimum", "C/N, minimo"}},
    {"noise_max", {"C/N, maximum", "C/N, massimo"}},
    {"chber_min", {"CHBER, minimum", "CHBER, minimo"}},
    {"chber_max", {"CHBER, maximum", "CHBER, massimo"}},
    {"mer_min", {"MER, minimum", "MER, minimo"}},
    {"mer_max", {"MER, maximum", "MER, massimo"}},
    {"loc_osc1", {"Oscillator 1, MHz", "Oscillatore 1, MHz"}},
    {"loc_osc2", {"Oscillator 2, MHz", "Oscillatore 2, MHz"}},
    {"loc_osc3", {"Oscillator 3, MHz", "Oscillatore 3, MHz"}},
    {"loc_osc4", {"Oscillator 4, MHz", "Oscillatore 4, MHz"}},
};
constexpr Bilingual kYes{"yes", "sì"};
constexpr Bilingual kNo{"no", "no"};
constexpr Bilingual kOff{"off", "spenta"};
constexpr Bilingual kNotChosen{"not chosen", "non scelto"};

const FieldWords* words_of_field(const QString& field) {
    const auto* found = std::ranges::find_if(
        kFieldWords, [&](const FieldWords& words) { return field == QLatin1String(words.field); });
    return found == std::end(kFieldWords) ? nullptr : found;
}

QString diseqc_in_words(const QString& value, const Texts& texts) {
    const int place = value.toInt();
    if (place < 0) return texts.pick(kNotChosen);
    if (place >= static_cast<int>(kDiseqcCommands.size())) return value;
    return QString::fromLatin1(kDiseqcCommands[static_cast<std::size_t>(place)]);
}

QString supply_in_words(const QString& value, const Texts& texts) {
    if (value == QLatin1String("0")) return texts.pick(kOff);
    if (value == QLatin1String("1")) return QStringLiteral("13V");
    return value == QLatin1String("2") ? QStringLiteral("18V") : value;
}

}  // namespace

QString field_name_in_words(const QString& field, const Texts& texts) {
    const FieldWords* words = words_of_field(field);
    return words ? texts.pick(words->name) : field;
}

QString field_in_words(const QString& field, const QString& value, const Texts& texts) {
    const FieldWords* words = words_of_field(field);
    switch (words ? words->shown : Shown::as_it_is) {
        case Shown::yes_or_no:
            return texts.pick(value == QLatin1String("0") ? kNo : kYes);
        case Shown::diseqc:
            return diseqc_in_words(value, texts);
        case Shown::supply:
            return supply_in_words(value, texts);
        case Shown::oscillator_number:
            return QString::number(value.toInt() + 1);
        case Shown::as_it_is:
            break;
    }
    return value;
}

}  // namespace m47
