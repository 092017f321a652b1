// SPDX-License-Identifier: GPL-3.0-or-later
#include "jet_file.h"

#include <QtEndian>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "fields.h"
#include "jet_values.h"
#include "schema.h"

namespace m47::olddb {
namespace {

struct CloseJet {
    void operator()(MdbHandle* handle) const { mdb_close(handle); }
};
using JetHandle = std::unique_ptr<MdbHandle, CloseJet>;

struct FreeTable {
    void operator()(MdbTableDef* table) const { mdb_free_tabledef(table); }
};
using JetTable = std::unique_ptr<MdbTableDef, FreeTable>;

// The list of the pages that are free: row 0 of page 1.
constexpr int kFreePages = 0x100;
// Such a map is either the bits themselves behind a first page number, or a list of the pages that
// hold them.
constexpr qsizetype kMapBitsAt = 5;
constexpr qsizetype kMapListAt = 1;
constexpr qsizetype kMapPageBitsAt = 4;
constexpr const char* kCatalog = "MSysObjects";

qint64 pages_in(MdbHandle* handle) {
    if (std::fseek(handle->f->stream, 0, SEEK_END) != 0) throw JetDamage("no end of the file");
    return std::ftell(handle->f->stream) / handle->fmt->pg_size;
}

/// Calls `use` with the number of each page from `first` on whose bit is `wanted`.
template <class Use>
void for_pages(QByteArrayView bits, qint64 first, bool wanted, Use use) {
    for (qsizetype k = 0; k < 8 * bits.size(); ++k)
        if (((bits[k / 8] >> (k % 8)) & 1) == (wanted ? 1 : 0)) use(first + k);
}

/// The same for a whole map.
template <class Use>
void for_mapped_pages(MdbHandle* handle, const QByteArray& map, bool wanted, Use use) {
    if (map.size() < kMapBitsAt) throw JetDamage("a page map is cut short");
    if (map[0] == 0) {
        for_pages(QByteArrayView(map).sliced(kMapBitsAt),
                  qFromLittleEndian<quint32>(map.constData() + 1), wanted, use);
        return;
    }
    const qint64 pages_of_one = 8 * (handle->fmt->pg_size - kMapPageBitsAt);
    qint64 first = 0;
    for (qsizetype at = kMapListAt; at + 4 <= map.size(); at += 4, first += pages_of_one) {
        const auto page = qFromLittleEndian<quint32>(map.constData() + at);
        if (page == 0) continue;
        if (mdb_read_alt_pg(handle, page) != handle->fmt->pg_size)
            throw JetDamage("a page map is missing");
        const QByteArray bits(reinterpret_cast<const char*>(handle->alt_pg_buf) + kMapPageBitsAt,
                              handle->fmt->pg_size - kMapPageBitsAt);
        for_pages(bits, first, wanted, use);
    }
}

/// Every page that is not free has to be there: what was cut off is told even where no table of
/// ours lies behind the cut.
void check_pages(MdbHandle* handle, qint64 pages) {
    void* page = nullptr;
    int start = 0;
    size_t length = 0;
    if (mdb_find_pg_row(handle, kFreePages, &page, &start, &length) != 0 ||
        static_cast<ssize_t>(length) > handle->fmt->pg_size - start)
        throw JetDamage("the list of free pages is missing");
    const QByteArray map(static_cast<const char*>(page) + start, static_cast<qsizetype>(length));
    for_mapped_pages(handle, map, false, [&](qint64 used) {
        if (used >= pages) throw JetDamage("pages are missing at its end");
    });
}

void check_count(const char* table, unsigned int stated, qint64 found) {
    // Not brought up to date where the old program was ended hard.
    if (stated == 0 || stated == found) return;
    throw JetDamage(std::string("table ") + table + " counts " + std::to_string(stated) +
                    " rows, " + std::to_string(found) + " are there");
}

JetTable definition_of(MdbCatalogEntry* entry, qint64 pages) {
    JetTable table(mdb_read_table(entry));
    if (!table) throw JetDamage(std::string("no definition of table ") + entry->object_name);
    const QByteArray map(reinterpret_cast<const char*>(table->usage_map),
                         static_cast<qsizetype>(table->map_sz));
    for_mapped_pages(entry->mdb, map, true, [&](qint64 used) {
        if (used >= pages) throw JetDamage(std::string("pages of ") + table->name + " are missing");
    });
    return table;
}

std::vector<const MdbColumn*> usable_columns(MdbTableDef* table, OldDatabase& database) {
    const GPtrArray* columns = mdb_read_columns(table);
    if (!columns || columns->len != table->num_cols)
        throw JetDamage(std::string("no fields of table ") + table->name);
    std::vector<const MdbColumn*> usable;
    for (guint k = 0; k < columns->len; ++k) {
        const auto* column = static_cast<const MdbColumn*>(columns->pdata[k]);
        if (is_usable_kind(column->col_type))
            usable.push_back(column);
        else
            database.others += QStringLiteral("%1.%2").arg(QString::fromUtf8(table->name),
                                                           QString::fromUtf8(column->name));
    }
    return usable;
}

/// The fields of the row that was read last, in the order of the table's columns.
std::vector<MdbField> fields_of_row(MdbTableDef* table) {
    MdbHandle* handle = table->entry->mdb;
    int start = 0;
    size_t length = 0;
    std::vector<MdbField> fields(table->num_cols);
    constexpr int kOffsetBits = 0x1fff;  // above them: flags
    if (mdb_find_row(handle, static_cast<int>(table->cur_row) - 1, &start, &length) != 0 ||
        mdb_crack_row(table, start & kOffsetBits, length, fields.data()) < 0)
        throw JetDamage(std::string("a row of table ") + table->name);
    return fields;
}

OldTable rows_of(MdbTableDef* table, OldDatabase& database) {
    OldTable result;
    result.name = QString::fromUtf8(table->name);
    const auto columns = usable_columns(table, database);
    for (const MdbColumn* column : columns) result.fields += QString::fromUtf8(column->name);
    // What else it holds is the importer's business, but this is what its rows are told by.
    if (!result.fields.contains(QLatin1String(db::field::kNome), Qt::CaseInsensitive))
        throw JetDamage(std::string("table ") + table->name + " has no field " + db::field::kNome);
    mdb_rewind_table(table);
    while (mdb_fetch_row(table)) {
        const std::vector<MdbField> fields = fields_of_row(table);
        QVariantList row;
        for (const MdbColumn* column : columns)
            for (const MdbField& field : fields)
                if (table->columns->pdata[field.colnum] == column)
                    row += jet_value(table->entry->mdb, *column, field);
        result.rows += row;
    }
    check_count(table->name, table->num_rows, result.rows.size());
    return result;
}

bool is_ours(const char* name) {
    for (const db::Table& table : db::schema())
        if (qstricmp(name, table.name) == 0) return true;
    return false;
}

}  // namespace

OldDatabase read_jet_file(QByteArrayView file) {
    // Without a flag that asks for writing the library only reads there.
    const JetHandle handle(mdb_open_buffer(const_cast<char*>(file.data()),
                                           static_cast<size_t>(file.size()), MDB_NOFLAGS));
    if (!handle) throw JetDamage("its first page");
    // The library would go on with question marks in place of letters.
    constexpr std::intptr_t kNoTable = -1;
    if (reinterpret_cast<std::intptr_t>(handle->iconv_in) == kNoTable ||
        reinterpret_cast<std::intptr_t>(handle->iconv_out) == kNoTable)
        throw JetDamage("no table for its code page");
    OldDatabase database;
    database.version = handle->f->jet_version == MDB_VER_JET3 ? 3 : 4;
    const qint64 pages = pages_in(handle.get());
    check_pages(handle.get(), pages);
    if (!mdb_read_catalog(handle.get(), MDB_ANY)) throw JetDamage("its list of tables");
    bool lists_itself = false;
    const std::span entries(handle->catalog->pdata, handle->catalog->len);
    for (gpointer one : entries) {
        auto* entry = static_cast<MdbCatalogEntry*>(one);
        if (entry->object_type != MDB_TABLE) continue;
        const JetTable table = definition_of(entry, pages);
        if (qstrcmp(entry->object_name, kCatalog) == 0) {
            check_count(kCatalog, table->num_rows, static_cast<qint64>(entries.size()));
            lists_itself = true;
        }
        if (!mdb_is_user_table(entry)) continue;
        if (is_ours(entry->object_name))
            database.tables += rows_of(table.get(), database);
        else
            database.others += QString::fromUtf8(entry->object_name);
    }
    if (!lists_itself) throw JetDamage("its list of tables");
    return database;
}

}  // namespace m47::olddb
