// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "kept_query.h"

namespace m47::sites {

/// The statements of the file of sites.
struct SiteStatements {
    db::KeptQuery all_sites{
        "SELECT uuid, name, address, customer, remarks FROM sites "
        "ORDER BY name COLLATE NOCASE, uuid"};
    db::KeptQuery put_site{
        "INSERT INTO sites (uuid, name, address, customer, remarks) VALUES (?, ?, ?, ?, ?) "
        "ON CONFLICT (uuid) DO UPDATE SET name = excluded.name, address = excluded.address, "
        "customer = excluded.customer, remarks = excluded.remarks"};
    db::KeptQuery drop_site{"DELETE FROM sites WHERE uuid = ?"};

    db::KeptQuery one_visit{
        "SELECT visits.uuid, sites.uuid, begun_utc, begun_offset, ended_utc, ended_offset, "
        "technician, instrument, logo, plan, visits.remarks FROM visits "
        "JOIN sites ON sites.id = visits.site WHERE visits.uuid = ?"};
    db::KeptQuery visits_of_site{
        "SELECT visits.uuid, sites.uuid, begun_utc, begun_offset, ended_utc, ended_offset, "
        "technician, instrument, logo, plan, visits.remarks FROM sites "
        "JOIN visits ON visits.site = sites.id WHERE sites.uuid = ? "
        "ORDER BY begun_utc DESC, visits.id DESC"};
    db::KeptQuery put_visit{
        "INSERT INTO visits (uuid, site, begun_utc, begun_offset, ended_utc, ended_offset, "
        "technician, instrument, logo, plan, remarks) "
        "VALUES (?, (SELECT id FROM sites WHERE uuid = ?), ?, ?, ?, ?, ?, ?, ?, ?, ?) "
        "ON CONFLICT (uuid) DO UPDATE SET site = excluded.site, begun_utc = excluded.begun_utc, "
        "begun_offset = excluded.begun_offset, ended_utc = excluded.ended_utc, "
        "ended_offset = excluded.ended_offset, technician = excluded.technician, "
        "instrument = excluded.instrument, logo = excluded.logo, plan = excluded.plan, "
        "remarks = excluded.remarks"};
    db::KeptQuery drop_visit{"DELETE FROM visits WHERE uuid = ?"};

    // Each column costs, so the five small ones come as one number, see take_small().
    db::KeptQuery rows_of_visit{
        "SELECT uuid, utc, program, frequency, oscillator, level, ber, mer, pvber, "
        "cfo, cn, noise, limits, mode + 16 * verdict + 256 * ifnull(unit, 255) + 65536 * marks + "
        "1073741824 * utc_offset FROM measurements "
        "WHERE visit = (SELECT id FROM visits WHERE uuid = ?) ORDER BY utc, uuid"};
    // A program is the same by its plan and number, what has none by what was tuned.
    db::KeptQuery rows_of_program{
        "SELECT measurements.uuid, utc, program, frequency, oscillator, level, ber, "
        "mer, pvber, cfo, cn, noise, limits, "
        "mode + 16 * verdict + 256 * ifnull(unit, 255) + 65536 * marks + "
        "1073741824 * utc_offset, visits.uuid "
        "FROM visits JOIN measurements ON measurements.visit = visits.id "
        "WHERE visits.site = (SELECT id FROM sites WHERE uuid = ?) "
        "AND program = (SELECT id FROM programs WHERE plan = ? AND number = ?) "
        "ORDER BY utc, measurements.uuid"};
    db::KeptQuery rows_of_tuning{
        "SELECT measurements.uuid, utc, program, frequency, oscillator, level, ber, "
        "mer, pvber, cfo, cn, noise, limits, "
        "mode + 16 * verdict + 256 * ifnull(unit, 255) + 65536 * marks + "
        "1073741824 * utc_offset, visits.uuid "
        "FROM visits JOIN measurements ON measurements.visit = visits.id "
        "WHERE visits.site = (SELECT id FROM sites WHERE uuid = ?) "
        "AND program IS NULL AND frequency IS ? AND oscillator IS ? "
        "ORDER BY utc, measurements.uuid"};
    db::KeptQuery lines_of_sites{
        "SELECT sites.uuid, name, address, customer, sites.remarks, count(visits.id), "
        "begun_utc, begun_offset, max(begun_utc) FROM sites "
        "LEFT JOIN visits ON visits.site = sites.id GROUP BY sites.id "
        "ORDER BY name COLLATE NOCASE, sites.uuid"};
    db::KeptQuery failed_visits{
        "SELECT uuid FROM (SELECT DISTINCT visit FROM measurements WHERE verdict = 2) "
        "JOIN visits ON visits.id = visit"};
    db::KeptQuery dates_of_visits{
        "SELECT visits.uuid, sites.uuid, begun_utc, begun_offset FROM visits "
        "JOIN sites ON sites.id = visits.site"};
    db::KeptQuery words_of_visits{
        "SELECT sites.uuid, group_concat(DISTINCT technician), group_concat(DISTINCT plan), "
        "group_concat(DISTINCT visits.remarks) FROM visits "
        "JOIN sites ON sites.id = visits.site GROUP BY visits.site"};

    db::KeptQuery put_measurement{
        "INSERT OR REPLACE INTO measurements (visit, uuid, utc, utc_offset, program, mode, "
        "frequency, oscillator, level, ber, mer, pvber, cfo, cn, noise, marks, unit, limits, "
        "verdict) VALUES ((SELECT id FROM visits WHERE uuid = ?), ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
        "?, ?, ?, ?, ?, ?, ?)"};

    db::KeptQuery program_at{"SELECT plan, number FROM programs WHERE id = ?"};
    db::KeptQuery place_of_program{"SELECT id FROM programs WHERE plan = ? AND number = ?"};
    db::KeptQuery add_program{"INSERT INTO programs (plan, number) VALUES (?, ?)"};

    // What is unset is alike too.
    db::KeptQuery limits_at{
        "SELECT checked, level_min, level_max, ber_min, ber_max, mer_min, mer_max, pvber_min, "
        "pvber_max, cfo_min, cfo_max, cn_min, cn_max, noise_min, noise_max FROM limits "
        "WHERE id = ?"};
    db::KeptQuery place_of_limits{
        "SELECT id FROM limits WHERE checked = ? AND level_min IS ? AND level_max IS ? "
        "AND ber_min IS ? AND ber_max IS ? AND mer_min IS ? AND mer_max IS ? AND pvber_min IS ? "
        "AND pvber_max IS ? AND cfo_min IS ? AND cfo_max IS ? AND cn_min IS ? AND cn_max IS ? "
        "AND noise_min IS ? AND noise_max IS ?"};
    db::KeptQuery add_limits{
        "INSERT INTO limits (checked, level_min, level_max, ber_min, ber_max, mer_min, mer_max, "
        "pvber_min, pvber_max, cfo_min, cfo_max, cn_min, cn_max, noise_min, noise_max) "
        "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"};
};

}  // namespace m47::sites
