// SPDX-License-Identifier: GPL-3.0-or-later
#include "record_model.h"

#include <algorithm>
#include <numeric>

#include "column_headers.h"

namespace m47::logger {
namespace {

enum FixedColumn { kLineColumn, kLogColumn, kFirstNamed };

/// More names than a logger has; noise must not make a column of every word.
constexpr int kMostColumns = 24;

QString latin_1(std::string_view bytes) {
    return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

/// A cell as sorting looks at it.
struct SortKey {
    enum Rank { number_rank, text_rank, empty_rank };

    Rank rank = empty_rank;
    double number = 0;
    std::string_view text;
    int place = 0;
};

SortKey sort_key(std::string_view cell, int place) {
    SortKey key{SortKey::text_rank, 0, cell, place};
    if (cell.empty())
        key.rank = SortKey::empty_rank;
    else if (field_number(cell, key.number))
        key.rank = SortKey::number_rank;
    return key;
}

/// Strictly before, in an order that the caller may turn round; empty cells are not compared here.
bool comes_before(const SortKey& one, const SortKey& other) {
    if (one.rank != other.rank) return one.rank < other.rank;
    return one.rank == SortKey::number_rank ? one.number < other.number : one.text < other.text;
}

}  // namespace

RecordModel::RecordModel(QObject* parent) : QAbstractTableModel(parent) {
    read_lines();
}

void RecordModel::name_columns(const QStringList& line_log_text) {
    own_columns_ = line_log_text;
    set_text(text_);
}

void RecordModel::set_text(const QByteArray& text) {
    beginResetModel();
    text_ = text;
    read_lines();
    endResetModel();
}

void RecordModel::read_lines() {
    lines_.clear();
    headings_.clear();
    columns_ = own_columns_;
    last_title_ = analog_ = digital_ = -1;
    qsizetype begin = 0;
    int number = 0;
    while (begin < text_.size()) {
        qsizetype end = text_.indexOf("\r\n", begin);
        if (end < 0) end = text_.size();
        ++number;
        if (end > begin) {
            lines_.push_back({begin, end - begin, number, -1, -1});
            add_line(begin, end - begin);
        }
        begin = end + 2;
    }
    order_.resize(lines_.size());
    std::iota(order_.begin(), order_.end(), 0);
}

void RecordModel::add_line(qsizetype begin, qsizetype length) {
    const std::string_view line(text_.constData() + begin, static_cast<std::size_t>(length));
    Row& row = lines_.back();
    const LineKind kind = line_kind(line);
    if (kind == LineKind::title) last_title_ = static_cast<int>(lines_.size()) - 1;
    row.title = last_title_;
    if (kind == LineKind::headings) (line[0] == 'A' ? analog_ : digital_) = add_headings(line);
    if (kind != LineKind::record) return;
    const bool analog = line[0] == 'A';
    int& headings = analog ? analog_ : digital_;
    if (headings < 0) {
        const ColumnHeaders usual = column_headers(QString());
        const QByteArray names = (analog ? usual.analog : usual.digital).trimmed().toLatin1();
        headings = add_headings({names.constData(), static_cast<std::size_t>(names.size())});
    }
    const std::size_t fields = blank_separated(line).size();
    if (headings >= 0 && fields == headings_[static_cast<std::size_t>(headings)].size())
        row.headings = headings;
}

int RecordModel::add_headings(std::string_view line) {
    Headings columns;
    for (const QString& name : heading_names(line)) {
        const int column = column_of(name);
        if (column < 0) return -1;
        columns.push_back(column);
    }
    const auto known = std::find(headings_.begin(), headings_.end(), columns);
    if (known == headings_.end()) {
        headings_.push_back(columns);
        return static_cast<int>(headings_.size()) - 1;
    }
    return static_cast<int>(known - headings_.begin());
}

int RecordModel::column_of(const QString& name) {
    for (int column = kFirstNamed; column < text_column(); ++column)
        if (columns_[column] == name) return column;
    if (columns_.size() == kMostColumns) return -1;
    columns_.insert(text_column(), name);
    return text_column() - 1;
}

int RecordModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(order_.size());
}

int RecordModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

std::string_view RecordModel::line(const Row& row) const {
    return {text_.constData() + row.begin, static_cast<std::size_t>(row.length)};
}

std::string_view RecordModel::cell(const Row& row, int column) const {
    if (column == kLogColumn) {
        if (row.title < 0) return {};
        std::string_view title = line(lines_[static_cast<std::size_t>(row.title)]);
        title.remove_prefix(std::min(title.find("LOG ") + 4, title.size()));
        return title;
    }
    if (row.headings < 0) return column == text_column() ? line(row) : std::string_view();
    const Headings& headings = headings_[static_cast<std::size_t>(row.headings)];
    const auto found = std::find(headings.begin(), headings.end(), column);
    if (found == headings.end()) return {};
    return blank_separated(line(row))[static_cast<std::size_t>(found - headings.begin())];
}

QString RecordModel::shown(const Row& row, int column) const {
    return column == kLineColumn ? QString::number(row.number) : latin_1(cell(row, column));
}

QVariant RecordModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const auto place = static_cast<std::size_t>(order_[static_cast<std::size_t>(index.row())]);
    if (role == Qt::DisplayRole) return shown(lines_[place], index.column());
    if (role != Qt::TextAlignmentRole) return {};
    double number = 0;
    const bool right =
        index.column() == kLineColumn ||
        (index.column() != kLogColumn && field_number(cell(lines_[place], index.column()), number));
    return QVariant(Qt::AlignVCenter | (right ? Qt::AlignRight : Qt::AlignLeft));
}

QVariant RecordModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole) return {};
    return section >= 0 && section < columns_.size() ? columns_[section] : QVariant();
}

void RecordModel::sort(int column, Qt::SortOrder order) {
    if (column >= columns_.size()) return;
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    std::iota(order_.begin(), order_.end(), 0);
    const bool turned = order == Qt::DescendingOrder;
    if (column == kLineColumn && turned) std::reverse(order_.begin(), order_.end());
    if (column > kLineColumn) {
        std::vector<SortKey> keys;
        keys.reserve(lines_.size());
        for (const int place : order_)
            keys.push_back(sort_key(cell(lines_[static_cast<std::size_t>(place)], column), place));
        const auto filled = std::stable_partition(keys.begin(), keys.end(), [](const SortKey& key) {
            return key.rank != SortKey::empty_rank;
        });
        std::stable_sort(keys.begin(), filled, [turned](const SortKey& one, const SortKey& other) {
            return turned ? comes_before(other, one) : comes_before(one, other);
        });
        std::transform(keys.begin(), keys.end(), order_.begin(),
                       [](const SortKey& key) { return key.place; });
    }
    Q_EMIT layoutChanged({}, VerticalSortHint);
}

QString RecordModel::tab_separated(const std::vector<int>& rows) const {
    std::vector<int> all;
    if (rows.empty()) {
        all.resize(order_.size());
        std::iota(all.begin(), all.end(), 0);
    }
    // A TAB in a name or in a line that is shown as it is would begin a cell of its own.
    const auto one_cell = [](QString cell) { return cell.replace(u'\t', u' '); };
    QString text;
    for (int column = 0; column < columns_.size(); ++column)
        text += (column > 0 ? QStringLiteral("\t") : QString()) + one_cell(columns_[column]);
    text += u'\n';
    for (const int row : rows.empty() ? all : rows) {
        const auto place = static_cast<std::size_t>(order_[static_cast<std::size_t>(row)]);
        for (int column = 0; column < columns_.size(); ++column) {
            if (column > 0) text += u'\t';
            text += one_cell(shown(lines_[place], column));
        }
        text += u'\n';
    }
    return text;
}

}  // namespace m47::logger
