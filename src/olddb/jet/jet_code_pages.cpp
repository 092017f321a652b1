// SPDX-License-Identifier: GPL-3.0-or-later
#include "jet_code_pages.h"

#include <iconv.h>

namespace m47::olddb {
namespace {

// By the names that the library for such files asks for.
constexpr const char* kPages[] = {
    "UCS-2LE",      "UTF-16LE",     "UTF-16BE",     "UTF-32LE",     "UTF-32BE",     "UTF-7",
    "CP1252",       "CP1361",       "WINDOWS-874",  "WINDOWS-936",  "WINDOWS-1250", "WINDOWS-1251",
    "WINDOWS-1252", "WINDOWS-1253", "WINDOWS-1254", "WINDOWS-1255", "WINDOWS-1256", "WINDOWS-1257",
    "WINDOWS-1258", "IBM437",       "IBM850",       "IBM852",       "IBM855",       "IBM860",
    "IBM861",       "IBM862",       "IBM865",       "IBM866",       "IBM869",       "ISO-8859-1",
    "ISO-8859-2",   "ISO-8859-3",   "ISO-8859-4",   "ISO-8859-5",   "ISO-8859-6",   "ISO-8859-7",
    "ISO-8859-8",   "ISO-8859-9",   "ISO-8859-13",  "ISO-8859-15",  "KOI8-R",       "KOI8-U",
    "SHIFT-JIS",    "EUC-JP",       "EUC-KR",       "EUC-CN",       "BIG-5",        "BIG5-HKSCS",
};

}  // namespace

void load_code_pages() {
    // Left open, so that they stay loaded. A table that this system does not have is met again,
    // and told, where a file asks for it.
    for (const char* page : kPages) {
        static_cast<void>(iconv_open("UTF-8", page));
        static_cast<void>(iconv_open(page, "UTF-8"));
    }
}

}  // namespace m47::olddb
