// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <array>
#include <cstddef>
#include <span>

namespace m47::db {

/// What a field holds. Every field may be unset.
enum class FieldKind {
    text,
    number,   ///< with decimals
    whole,    ///< whole number
    boolean,  ///< 0 or 1
};

struct Field {
    const char* name;
    FieldKind kind;
};

/// A look-up that is quick; a unique one also refuses a second row of the same key.
struct Index {
    std::array<const char*, 2> fields;  ///< the second may be missing
    bool unique;
};

struct Table {
    const char* name;
    std::span<const Field> fields;
    std::span<const Index> indices;
};

/// The tables of the database file: the one place where their layouts stand.
std::span<const Table> schema();

/// The table of that name; an unknown one is a Fault.
const Table& table_named(const QString& name);

/// `field` itself where `table` has it; an unknown one is a Fault. Only a name that went through
/// here may become part of a statement.
QString checked_field(const Table& table, const QString& field);

/// The place of `field` among the fields of `table`, from 0; an unknown one is a Fault.
std::size_t field_place(const Table& table, const QString& field);

/// The fields of `table` in their order, separated by commas.
QString field_list(const Table& table);

/// The statements that make `table` and its indices.
QStringList creation_statements(const Table& table);

}  // namespace m47::db
