// SPDX-License-Identifier: GPL-3.0-or-later
#include "plan_file.h"

#include "box_numbers.h"
#include "fields.h"
#include "numbers.h"
#include "program_checks.h"
#include "scan_reader.h"
#include "scan_table.h"

namespace m47::plans {
namespace {

QString quoted(QString cell, QChar separator) {
    const bool plain = !cell.contains(separator) && !cell.contains(u'"') && !cell.contains(u'\n') &&
                       !cell.contains(u'\r');
    if (plain) return cell;
    return u'"' + cell.replace(u'"', QStringLiteral("\"\"")) + u'"';
}

QString line_of(const QStringList& cells, QChar separator) {
    QStringList written;
    for (const QString& cell : cells) written += quoted(cell, separator);
    return written.join(separator) + u'\n';
}

QStringList header() {
    QStringList names{db::field::kNome};
    for (const programme::ProgramField& field : programme::program_fields())
        names += QString::fromLatin1(field.name);
    return names << QString::fromLatin1(kOscillatorColumn);
}

/// A row of cells and the line of the file it begins in.
struct CellRow {
    int line;
    QStringList cells;
};

/// Takes a text apart into cells. A cell in quotes may hold separators, line ends and, doubled,
/// quotes; a quote that is never closed reaches to the end.
class CellReader {
  public:
    CellReader(const QString& text, QChar separator) : text_(text), separator_(separator) {}

    std::vector<CellRow> read() {
        for (at_ = 0; at_ < text_.size(); ++at_) take(text_[at_]);
        end_row();
        return rows_;
    }

  private:
    void take(QChar c) {
        if (in_quotes_) {
            take_quoted(c);
        } else if (c == u'"' && cell_.isEmpty()) {
            in_quotes_ = true;
        } else if (c == separator_) {
            end_cell();
        } else if (c == u'\r' || c == u'\n') {
            if (c == u'\r' && next() == u'\n') ++at_;
            end_row();
            row_line_ = ++line_;
        } else {
            cell_ += c;
        }
    }

    void take_quoted(QChar c) {
        if (c == u'"' && next() == u'"') {
            cell_ += c;
            ++at_;
        } else if (c == u'"') {
            in_quotes_ = false;
        } else {
            if (c == u'\n' || (c == u'\r' && next() != u'\n')) ++line_;
            cell_ += c;
        }
    }

    QChar next() const { return at_ + 1 < text_.size() ? text_[at_ + 1] : QChar(); }

    void end_cell() {
        cells_ += cell_.trimmed();
        cell_.clear();
    }

    void end_row() {
        end_cell();
        if (cells_.size() > 1 || !cells_.constFirst().isEmpty())
            rows_.push_back({row_line_, cells_});
        cells_.clear();
    }

    const QString& text_;
    QChar separator_;
    qsizetype at_ = 0;
    bool in_quotes_ = false;
    int line_ = 1;
    int row_line_ = 1;
    QString cell_;
    QStringList cells_;
    std::vector<CellRow> rows_;
};

/// By the header, which holds no number that could have a decimal comma.
QChar separator_of(const QString& text) {
    const QString first = text.section(u'\n', 0, 0);
    for (const QChar separator : {QChar(u'\t'), QChar(u';')})
        if (first.contains(separator)) return separator;
    return u',';
}

/// A cell with its number as the records hold it: spreadsheets write "TRUE" for 1 and a decimal
/// comma.
QString plain_cell(const QString& cell, bool flag) {
    const QString word = cell.toLower();
    if (flag && word == QLatin1String("true")) return QStringLiteral("1");
    if (flag && word == QLatin1String("false")) return QStringLiteral("0");
    return QString(cell).replace(u',', u'.');
}

void note_unread(ImportCandidate& candidate, const char* column, const QString& cell) {
    candidate.unread += QStringLiteral("%1: %2").arg(QLatin1String(column), cell);
}

/// Takes a cell into its field; every field is a number or a choice that is written as one.
void take_cell(ImportCandidate& candidate, const programme::ProgramField& field,
               const QString& cell) {
    const bool flag = std::holds_alternative<bool programme::ProgramRecord::*>(field.member);
    const QString plain = plain_cell(cell, flag);
    programme::set_field(candidate.record, field, plain);
    if (!programme::is_number(plain)) note_unread(candidate, field.name, cell);
}

/// An export has every column, and what is unset in a program has an empty cell in it. A row that
/// somebody has added there asks for a number, and for the usual values; but the program that a new
/// plan begins with has none either.
bool is_as_exported(const QStringList& names, const QStringList& cells) {
    const QStringList of_plan{db::field::kNome, kOscillatorColumn};
    QStringList told;
    for (const QString& name : header()) {
        if (!names.contains(name)) return false;
        if (!of_plan.contains(name)) told += cells.value(names.indexOf(name));
    }
    if (!cells.value(names.indexOf(QLatin1String(db::field::kPgNum))).isEmpty()) return true;
    told.removeAll(QString());
    return !told.isEmpty() && told.count(QStringLiteral("0")) == told.size();
}

void leave_unset(ImportCandidate& candidate, const programme::ProgramField& field) {
    if (std::holds_alternative<QString programme::ProgramRecord::*>(field.member))
        programme::set_field(candidate.record, field, QString());
}

ImportCandidate candidate_of_row(const QStringList& names, const CellRow& row, double unit_offset) {
    ImportCandidate candidate{.line = row.line, .record = import_defaults(unit_offset)};
    const auto cell = [&](const char* name) {
        return row.cells.value(names.indexOf(QString::fromLatin1(name)));
    };
    candidate.columns = names;
    candidate.as_exported = is_as_exported(names, row.cells);
    candidate.oscillator = plain_cell(cell(kOscillatorColumn), false);
    candidate.record.loc_osc = candidate.oscillator.isEmpty();
    if (!candidate.record.loc_osc && !programme::is_number(candidate.oscillator))
        note_unread(candidate, kOscillatorColumn, candidate.oscillator);
    for (const programme::ProgramField& field : programme::program_fields()) {
        const QString text = cell(field.name);
        // Without a frequency there is no program; all else has a usual value.
        const bool needed = !candidate.as_exported &&
                            QLatin1String(field.name) == QLatin1String(db::field::kFrequenza);
        if (candidate.as_exported) leave_unset(candidate, field);
        if (text.isEmpty()) candidate.empty_cells += QString::fromLatin1(field.name);
        if (needed || !text.isEmpty()) take_cell(candidate, field, text);
    }
    // With a cell too many, a decimal comma for example, all behind it are in the wrong column.
    if (!candidate.unread.isEmpty() || row.cells.size() > names.size())
        candidate.problem = ImportProblem::unreadable;
    return candidate;
}

ImportFile parse_plan_file(const QString& text, double unit_offset) {
    ImportFile file;
    const std::vector<CellRow> rows = CellReader(text, separator_of(text)).read();
    if (rows.empty()) return file;
    const QStringList known = header();
    const QStringList& names = rows.front().cells;
    for (const QString& name : names)
        if (!known.contains(name)) file.unknown_columns += name;
    // Without a frequency it is a table of something else.
    file.understood = names.contains(db::field::kFrequenza);
    if (!file.understood) return file;
    for (std::size_t k = 1; k < rows.size(); ++k)
        file.candidates.push_back(candidate_of_row(names, rows[k], unit_offset));
    return file;
}

}  // namespace

QString plan_file_text(const QString& name, const std::vector<programme::ProgramRecord>& programs,
                       const programme::Oscillators& oscillators, QChar separator) {
    QString text = line_of(header(), separator);
    for (const programme::ProgramRecord& program : programs) {
        QStringList cells{name};
        for (const programme::ProgramField& field : programme::program_fields())
            cells += programme::field_text(program, field).replace(u',', u'.');
        cells += program.loc_osc ? QString() : oscillators[programme::oscillator_entry(program)];
        text += line_of(cells, separator);
    }
    return text;
}

ImportFile parse_import_file(const QByteArray& bytes, double unit_offset) {
    if (bytes.size() > kLargestPlanFile) return {};
    // A byte order mark in front goes by itself.
    const QString text = QString::fromUtf8(bytes);
    if (!is_scan_table(text)) return parse_plan_file(text, unit_offset);
    const ScanTable table = parse_scan_table(text, unit_offset);
    return {table.candidates, {}, table.not_satellite, true};
}

}  // namespace m47::plans
