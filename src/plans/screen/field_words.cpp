// SPDX-License-Identifier: GPL-3.0-or-later
#include "field_words.h"

#include <algorithm>
#include <iterator>

#include "diseqc_commands.h"
#include "fields.h"

namespace m47::plans {
namespace {

enum class Shown { as_it_is, yes_or_no, diseqc, supply, oscillator_number };

struct FieldWords {
    const char* field;
    Bilingual name;
    Shown shown = Shown::as_it_is;
};

constexpr FieldWords kFieldWords[] = {
    {db::field::kPgNum, {"Program", "Programma"}},
    {db::field::kFrequenza, {"Frequency, MHz", "Frequenza, MHz"}},
    {db::field::kLocOsc, {"Tuned directly", "Sintonia diretta"}, Shown::yes_or_no},
    {db::field::kLocOsc0, {"Oscillator used", "Oscillatore usato"}, Shown::oscillator_number},
    {db::field::kSatAd, {"Digital", "Digitale"}, Shown::yes_or_no},
    {db::field::kQpskSymbolrate, {"Symbol rate", "Symbol rate"}},
    {db::field::kSatchbw, {"Channel bandwidth, MHz", "Banda del canale, MHz"}},
    {db::field::kDiseqcCmd, {"DiSEqC 1", "DiSEqC 1"}, Shown::diseqc},
    {db::field::kDiseqcCmd2, {"DiSEqC 2", "DiSEqC 2"}, Shown::diseqc},
    {db::field::kLnbVolt, {"LNB supply", "Alimentazione LNB"}, Shown::supply},
    {db::field::kK22, {"22 kHz tone", "Tono 22 kHz"}, Shown::yes_or_no},
    {db::field::kLoggerPos, {"Line of the logger table", "Riga della tabella datalogger"}},
    {db::field::kLoggerState,
     {"Active in the logger table", "Attivo nel datalogger"},
     Shown::yes_or_no},
    {db::field::kMonitorState, {"Monitored", "Monitorato"}, Shown::yes_or_no},
    {db::field::kLevMin, {"Level, minimum", "Livello, minimo"}},
    {db::field::kLevMax, {"Level, maximum", "Livello, massimo"}},
    {db::field::kNoiseMin, {"C/N, minimum", "C/N, minimo"}},
    {db::field::kNoiseMax, {"C/N, maximum", "C/N, massimo"}},
    {db::field::kChberMin, {"CHBER, minimum", "CHBER, minimo"}},
    {db::field::kChberMax, {"CHBER, maximum", "CHBER, massimo"}},
    {db::field::kMerMin, {"MER, minimum", "MER, minimo"}},
    {db::field::kMerMax, {"MER, maximum", "MER, massimo"}},
    {db::field::kOscillators[0], {"Oscillator 1, MHz", "Oscillatore 1, MHz"}},
    {db::field::kOscillators[1], {"Oscillator 2, MHz", "Oscillatore 2, MHz"}},
    {db::field::kOscillators[2], {"Oscillator 3, MHz", "Oscillatore 3, MHz"}},
    {db::field::kOscillators[3], {"Oscillator 4, MHz", "Oscillatore 4, MHz"}},
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
    if (place >= static_cast<int>(programme::kDiseqcCommands.size())) return value;
    return QString::fromLatin1(programme::kDiseqcCommands[static_cast<std::size_t>(place)]);
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

}  // namespace m47::plans
