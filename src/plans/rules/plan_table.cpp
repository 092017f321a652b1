// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_table.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "numbers.h"
#include "plan_sets.h"

namespace m47::plans {
namespace {

using Record = programme::ProgramRecord;
using Member = programme::ProgramField::Member;

struct ColumnWords {
    Bilingual heading;
    Bilingual tip;
};

constexpr std::array<ColumnWords, PlanTable::kColumns> kColumnWords{{
    {{"No.", "N."}, {"Program number", "Numero del programma"}},
    {{"MHz", "MHz"}, {"Frequency, MHz", "Frequenza, MHz"}},
    {{"V/H", "V/H"},
     {"Polarisation by the LNB supply: V at 13 V, H at 18 V",
      "Polarizzazione secondo l'alimentazione LNB: V a 13 V, H a 18 V"}},
    {{"Monit.", "Monit."},
     {"Measured when the plan runs. A tick in one of several selected rows holds for all of them.",
      "Misurato quando il piano viene eseguito. La spunta su una di più righe selezionate vale per "
      "tutte."}},
    {{"Logger", "Logger"},
     {"Active in the logger table. A tick in one of several selected rows holds for all of them.",
      "Attivo nel datalogger. La spunta su una di più righe selezionate vale per tutte."}},
    {{"Line", "Riga"}, {"Line of the logger table", "Riga della tabella datalogger"}},
    {{"Name", "Nome"},
     {"Name of the transponder, where the file it was imported from has one",
      "Nome del transponder, se il file da cui è stato importato ne ha uno"}},
    {{"kS/s", "kS/s"},
     {"Symbol rate of a digital program", "Symbol rate di un programma digitale"}},
    {{"Band", "Banda"},
     {"Low or high by the 22 kHz tone, and the oscillator in MHz; 1IF: tuned directly",
      "Bassa o alta secondo il tono 22 kHz, e l'oscillatore in MHz; 1IF: sintonia diretta"}},
    {{"Level min", "Livello min"}, {"Minimum alarm level", "Livello minimo d'allarme"}},
    {{"Level max", "Livello max"}, {"Maximum alarm level", "Livello massimo d'allarme"}},
    {{"C/N min", "C/N min"}, {"Minimum alarm C/N, dB", "C/N minimo d'allarme, dB"}},
    {{"C/N max", "C/N max"}, {"Maximum alarm C/N, dB", "C/N massimo d'allarme, dB"}},
    {{"CHBER min", "CHBER min"}, {"Minimum alarm CHBER", "CHBER minimo d'allarme"}},
    {{"CHBER max", "CHBER max"}, {"Maximum alarm CHBER", "CHBER massimo d'allarme"}},
    {{"MER min", "MER min"}, {"Minimum alarm MER, dB", "MER minimo d'allarme, dB"}},
    {{"MER max", "MER max"}, {"Maximum alarm MER, dB", "MER massimo d'allarme, dB"}},
}};

constexpr Bilingual kLowBand{"low", "bassa"};
constexpr Bilingual kHighBand{"high", "alta"};
constexpr Bilingual kDirect{"1IF", "1IF"};

constexpr std::array<QString Record::*, 8> kLimitColumns{
    &Record::lev_min,   &Record::lev_max,   &Record::noise_min, &Record::noise_max,
    &Record::chber_min, &Record::chber_max, &Record::mer_min,   &Record::mer_max};

bool is_tick(int column) {
    return column == PlanTable::kLogger || column == PlanTable::kMonitored;
}

bool is_limit_column(int column) {
    return column >= PlanTable::kFirstLimit;
}

/// What can be entered in a column; nothing where it is only read.
std::optional<Member> entry_of(int column) {
    if (column == PlanTable::kLogger) return &Record::logger_state;
    if (column == PlanTable::kMonitored) return &Record::monitor_state;
    if (!is_limit_column(column)) return std::nullopt;
    return kLimitColumns[static_cast<std::size_t>(column - PlanTable::kFirstLimit)];
}

bool is_ticked(const Record& program, int column) {
    return column == PlanTable::kLogger ? program.logger_state : program.monitor_state;
}

/// Numbers stand by their last digit.
int alignment_of(int column) {
    if (column == PlanTable::kName || column == PlanTable::kBand)
        return Qt::AlignVCenter | Qt::AlignLeft;
    if (column == PlanTable::kPolarisation) return Qt::AlignCenter;
    return Qt::AlignVCenter | Qt::AlignRight;
}

QString polarisation_by_supply(const Record& program) {
    if (program.lnb_volt == 1) return QStringLiteral("V");
    return program.lnb_volt == 2 ? QStringLiteral("H") : QString();
}

}  // namespace

PlanTable::PlanTable(const Texts& texts)
    : bands_{texts.pick(kLowBand), texts.pick(kHighBand), texts.pick(kDirect)} {
    for (const ColumnWords& words : kColumnWords) {
        headings_ += texts.pick(words.heading);
        tips_ += texts.pick(words.tip);
    }
}

void PlanTable::follow_anew(const PlanSets& sets) {
    std::vector<PlanRow> rows = sets.read_rows(sets.rows());
    std::vector<db::TransponderName> names = sets.names();
    // Nothing can fail any more.
    beginResetModel();
    plan_ = sets.plan();
    oscillators_ = sets.oscillators();
    names_ = std::move(names);
    rows_ = std::move(rows);
    endResetModel();
}

void PlanTable::follow(const PlanSets& sets, const std::vector<db::Bookmark>& changed) {
    if (sets.plan() != plan_) return follow_anew(sets);
    remove_gone(sets.rows());
    insert_come(sets);
    std::vector<db::Bookmark> shown;
    for (const db::Bookmark row : changed)
        if (place_of(row) >= 0) shown.push_back(row);
    for (const PlanRow& row : sets.read_rows(shown)) take(row);
    if (const auto current = sets.current_row()) take({*current, sets.stored().program});
    take_names(sets);
    const programme::Oscillators oscillators = sets.oscillators();
    if (oscillators == oscillators_) return;
    oscillators_ = oscillators;
    if (!rows_.empty()) Q_EMIT dataChanged(index(0, kBand), index(rowCount() - 1, kBand));
}

void PlanTable::take_names(const PlanSets& sets) {
    if (sets.names() == names_) return;
    names_ = sets.names();
    if (!rows_.empty()) Q_EMIT dataChanged(index(0, kName), index(rowCount() - 1, kName));
}

void PlanTable::remove_gone(const std::vector<db::Bookmark>& rows) {
    for (int place = rowCount() - 1; place >= 0; --place) {
        if (std::ranges::binary_search(rows, program(place).row)) continue;
        beginRemoveRows({}, place, place);
        rows_.erase(rows_.begin() + place);
        endRemoveRows();
    }
}

void PlanTable::insert_come(const PlanSets& sets) {
    std::vector<db::Bookmark> come;
    for (const db::Bookmark row : sets.rows())
        if (place_of(row) < 0) come.push_back(row);
    for (const PlanRow& row : sets.read_rows(come)) {
        const auto behind = std::ranges::upper_bound(rows_, row.row, {}, &PlanRow::row);
        const int place = static_cast<int>(behind - rows_.begin());
        beginInsertRows({}, place, place);
        rows_.insert(behind, row);
        endInsertRows();
    }
}

void PlanTable::take(const PlanRow& row) {
    const int place = place_of(row.row);
    if (place < 0 || program(place) == row) return;
    rows_[static_cast<std::size_t>(place)] = row;
    Q_EMIT dataChanged(index(place, 0), index(place, kColumns - 1));
}

int PlanTable::place_of(db::Bookmark row) const {
    const auto place = std::ranges::lower_bound(rows_, row, {}, &PlanRow::row);
    if (place == rows_.end() || place->row != row) return -1;
    return static_cast<int>(place - rows_.begin());
}

int PlanTable::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int PlanTable::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kColumns;
}

QString PlanTable::band_of(const programme::ProgramRecord& program) const {
    if (program.loc_osc) return bands_[2];
    const QString& oscillator = oscillators_[programme::oscillator_entry(program)];
    return oscillator.isEmpty() ? QString() : bands_[program.K22 == 1 ? 1 : 0] + u' ' + oscillator;
}

QString PlanTable::text_of(const programme::ProgramRecord& program, int column) const {
    switch (column) {
        case kNumber:
            return program.pg_num.trimmed();
        case kLine:
            return program.logger_pos.trimmed();
        case kName:
            return db::name_of(names_, link::typed_value(program.frequenza), program.lnb_volt);
        case kFrequency:
            return program.frequenza;
        case kPolarisation:
            return polarisation_by_supply(program);
        case kBand:
            return band_of(program);
        case kSymbolRate:
            return program.sat_ad ? program.qpsk_symbolrate : QString();
        default:
            break;
    }
    if (!is_limit_column(column)) return {};
    return program.*kLimitColumns[static_cast<std::size_t>(column - kFirstLimit)];
}

QVariant PlanTable::sort_value(const programme::ProgramRecord& program, int column) const {
    if (is_tick(column)) return is_ticked(program, column) ? 1 : 0;
    const QString text = text_of(program, column);
    if (column == kName || column == kPolarisation || column == kBand) return text;
    // What is unset comes before every number.
    return text.isEmpty() ? -1e9 : link::typed_value(text);
}

QVariant PlanTable::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const Record& program = this->program(index.row()).program;
    const int column = index.column();
    switch (role) {
        case Qt::DisplayRole:
        case Qt::EditRole:
            return text_of(program, column);
        case Qt::CheckStateRole:
            if (is_tick(column)) return is_ticked(program, column) ? Qt::Checked : Qt::Unchecked;
            break;
        case Qt::TextAlignmentRole:
            return alignment_of(column);
        case kSortRole:
            return sort_value(program, column);
        default:
            break;
    }
    return {};
}

QVariant PlanTable::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= kColumns) return {};
    if (role == Qt::DisplayRole) return headings_[section];
    return role == Qt::ToolTipRole ? QVariant(tips_[section]) : QVariant();
}

Qt::ItemFlags PlanTable::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    const Qt::ItemFlags always = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (is_tick(index.column())) return always | Qt::ItemIsUserCheckable;
    return is_limit_column(index.column()) ? always | Qt::ItemIsEditable : always;
}

bool PlanTable::setData(const QModelIndex& index, const QVariant& value, int role) {
    const std::optional<Member> member = entry_of(index.column());
    const bool tick = is_tick(index.column());
    if (!member || role != (tick ? Qt::CheckStateRole : Qt::EditRole) || !on_entry) return false;
    const QString text =
        tick ? QString::number(value.toInt() == Qt::Checked ? 1 : 0) : value.toString().trimmed();
    if (!tick && text == text_of(program(index.row()).program, index.column())) return false;
    on_entry(index.row(), *member, text);
    return true;
}

}  // namespace m47::plans
