// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the seeds of the fuzz targets into folders named after them, below the folder given: the
// answers of the simulated meter, and files made of what it says. Every run writes the same.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "instrument.h"
#include "text.h"

namespace {

namespace fs = std::filesystem;

/** Keeps seeds, each target's numbered from 0. */
class SeedFolder {
  public:
    explicit SeedFolder(fs::path root) : root_(std::move(root)) {}

    void keep(const std::string& target, const std::string& bytes) {
        fs::create_directories(root_ / target);
        const fs::path path = root_ / target / ("seed-" + std::to_string(count_++));
        std::ofstream file(path, std::ios::binary);
        file << bytes;
        if (!file.flush()) throw fs::filesystem_error("cannot write", path, std::error_code());
    }

  private:
    fs::path root_;
    int count_ = 0;
};

/** An answer as the program reads it behind the echo, its OK taken off. */
std::string payload(meter::Instrument& meter, const std::string& command) {
    const std::string raw = meter.handle(command).bytes;
    const std::string end = "OK\r";
    const std::size_t from = std::min(command.size() + 1, raw.size());
    std::string text = raw.substr(from);
    if (text.ends_with(end)) text.resize(text.size() - end.size());
    return text;
}

/** What is between the label and the end of its line, without blanks around it. */
std::string labelled(const std::string& answer, const std::string& label) {
    const std::size_t at = answer.find(label);
    if (at == std::string::npos) return {};
    const std::string line =
        answer.substr(at + label.size(), answer.find('\r', at) - at - label.size());
    const std::size_t first = std::min(line.find_first_not_of(' '), line.size());
    return line.substr(first);
}

std::string without_blanks(std::string text) {
    std::erase(text, ' ');
    std::erase(text, '\r');
    return text;
}

void keep_answers(meter::Instrument& meter, SeedFolder& seeds) {
    // In the order in which the target's first byte chooses among them.
    const std::vector<std::string> commands{"ATTEN?",    "LEVANL?", "BERQPSK?",     "VER?",
                                            "FREQ 1000", "DATAOUT", "MASTERCOPY 6?"};
    for (std::size_t k = 0; k < commands.size(); ++k)
        for (const char piece : {'\0', '\7'})
            seeds.keep("answer", std::string{static_cast<char>(k), piece} +
                                     meter.handle(commands[k]).bytes.substr(0, 1000));
    for (const char* wrong : {"ATTEN 99", "NONSENSE", "DEVICE", "LEVDCP? 1"})
        seeds.keep("answer", std::string(2, '\0') + meter.handle(wrong).bytes);
}

void keep_measures(meter::Instrument& meter, SeedFolder& seeds) {
    std::string log;
    for (const int mhz : {1178, 950, 1500, 2100, 920}) {
        const std::string frequency = std::to_string(mhz);
        meter.handle("FREQ " + frequency);
        const std::string level = payload(meter, "LEVANL?");
        seeds.keep("level", level);
        seeds.keep("level", payload(meter, "LEVDCP?"));
        seeds.keep("level", meter.handle("LEVDCP?" + frequency).bytes);
        seeds.keep("level", payload(meter, "LEVCNA?"));
        meter.handle("BERQPSK");
        const std::string quality = payload(meter, "BERQPSK?");
        seeds.keep("ber", quality);
        log += "21/11/26\t08:00:00\t" + frequency + ".0\t10600\t" + without_blanks(level) + '\t' +
               labelled(quality, "CHBER :") + '\t' + labelled(quality, "PvBER :") + '\t' +
               labelled(quality, "CFO   :") + '\t' + labelled(quality, "MER   :") + "\t\tPASS\r\n";
        meter.handle("MEASURE");
        seeds.keep("log", std::string(1, '\x10') + log);
        seeds.keep("log_import", log);
    }
    std::string plain_ends = log;
    std::erase(plain_ends, '\r');
    seeds.keep("log", std::string(1, '\2') + plain_ends);
    seeds.keep("log_import", plain_ends + plain_ends + "21/11/26\t13:00:00\t12,4");
}

void keep_logger(meter::Instrument& meter, SeedFolder& seeds) {
    const std::string table = payload(meter, "DATAPROGRAM?");
    for (const char mode : {'\0', '\1', '\2'})
        seeds.keep("table", mode + table.substr(0, 90) + table.substr(0, 90));
    for (const char* command : {"DATAOUT", "DATALASTOUT"}) {
        const std::string logs = payload(meter, command);
        seeds.keep("records", std::string(1, '\3') + logs);
        seeds.keep("records", std::string(1, '\2') + logs.substr(0, 400));
    }
    meter.handle("outputmode 1");
    const std::string span = payload(meter, "spanout");
    seeds.keep("span", span);
    seeds.keep("span", span.substr(0, 120) + "OK\r");
}

void keep_satellites(meter::Instrument& meter, SeedFolder& seeds) {
    const std::string names = payload(meter, "ASLNAME?");
    const std::string copy = payload(meter, "MASTERCOPY 6?");
    seeds.keep("names", std::string(1, '\0') + names);
    seeds.keep("names", std::string(1, '\xE0') + names);
    seeds.keep("names", std::string(1, '\0') + copy);
    const std::string end = "S9030000FC";
    const std::size_t first_end = copy.find(end) + end.size();
    seeds.keep("names", std::string(1, '\0') + copy.substr(0, first_end));
    seeds.keep("srecord", copy);
    seeds.keep("srecord", copy.substr(0, first_end));
    // The block alone, as one slot's data is kept.
    const std::size_t header_end = copy.find("\r", copy.find("S0")) + 1;
    seeds.keep("srecord", copy.substr(header_end, first_end - header_end));
}

void keep_plans(meter::Instrument& meter, SeedFolder& seeds) {
    const std::string rate = without_blanks(payload(meter, "SYMBRATEQPSK?"));
    const std::string width = without_blanks(payload(meter, "CHBW?"));
    std::string tabs =
        "nome\tpg_num\tfrequenza\tloc_osc\tloc_osc0\tsat_ad\tqpsk_symbolrate\t"
        "satchbw\tlnb_volt\tK22\tlogger_pos\tlogger_state\tlev_min\toscillator\n";
    std::string scan = "# transponders\n";
    int number = 0;
    for (const int mhz : {10773, 11778, 12515, 3700}) {
        const std::string frequency = std::to_string(mhz);
        tabs += "PLAN 1\t00" + std::to_string(number) + '\t' + frequency + "\t0\t1\t1\t" + rate +
                '\t' + width + "\t1\t1\t0" + std::to_string(number + 1) + "\t1\t45.5\t10600\n";
        scan += "S " + frequency + "000 V " + rate + "000 3/4\n";
        ++number;
    }
    std::string semicolons = tabs;
    std::replace(semicolons.begin(), semicolons.end(), '\t', ';');
    std::replace(semicolons.begin(), semicolons.end(), '.', ',');
    seeds.keep("plan", std::string(1, '\0') + tabs);
    seeds.keep("plan", std::string(1, '\1') + semicolons);
    seeds.keep("plan", std::string(1, '\1') + scan);
    seeds.keep("plan", std::string(1, '\0') + "frequenza,pg_num\n\"1178,5\",\"a \"\"b\"\"\"\n");
    seeds.keep("scan", scan);
    seeds.keep("scan",
               "[CHANNEL]\n\tDELIVERY_SYSTEM = DVBS2\n\tFREQUENCY = 12515000\n"
               "\tPOLARIZATION = HORIZONTAL\n\tSYMBOL_RATE = " +
                   rate + "000\n[X]\n");
}

/// Exchanges as a trace has them, a tenth of a second each.
std::string recorded(meter::Instrument& meter, const std::vector<std::string>& commands) {
    std::string text = "M47TRACE 1 2026-11-22T14:00:00+01:00 m47-meter 1\n";
    int time = 100;
    const auto line = [&](const char* kind, const std::string& words) {
        const std::string now = std::to_string(time += 10) + ".125 ";
        text += kind + (' ' + now) + now + words + '\n';
    };
    for (const std::string& command : commands) {
        line("PORT", "open /dev/x 38400,n,8,2");
        line("RX", meter::escaped(command + "\r"));
        const std::string answer = meter.handle(command).bytes;
        line("TX", meter::escaped(answer.substr(0, command.size() + 1)));
        if (answer.size() > command.size() + 1)
            line("TX", meter::escaped(answer.substr(command.size() + 1, 60)));
        line("PORT", "close");
    }
    return text;
}

void keep_recordings(meter::Instrument& meter, SeedFolder& seeds) {
    const std::string row = recorded(meter, {"FREQ 1000.0", "LEVANL?"});
    for (const char cut : {'\0', '\x50', '\xF0'}) seeds.keep("recording", cut + row);
    seeds.keep("recording", '\x30' + recorded(meter, {"UNIT?", "UNIT?", "ATTEN 99"}));
    seeds.keep("recording", '\x30' + recorded(meter, {"VER?"}) +
                                "PORT 400.000 400.000 lost unplugged\n"
                                "PORT 900.000 900.000 open-failed gone\n"
                                "PORT 990.000 990.000 open /dev/x\nRX 991.000 995.000 AT\n"
                                "TX 996.000 996.000 VER?<CR>\nRX 997.000 999.000 TEN?<CR>\n");
    seeds.keep("recording", std::string(1, '\0') + "M47TRACE 2 x\nRX 1.000 2.000 <CR>\n");
}

/** The rows of a band sweep, behind the line of their names. */
void keep_sweeps(meter::Instrument& meter, SeedFolder& seeds) {
    std::string rows;
    for (int mhz = 990; mhz <= 1150; mhz += 10) {
        meter.handle("FREQ " + std::to_string(mhz));
        const std::string frequency = std::to_string(mhz) + ".0\t" + std::to_string(mhz + 10600);
        rows +=
            frequency + ".0\t" + without_blanks(payload(meter, "LEVANL?")) + "\t\tdBuV\t18\ton\n";
        seeds.keep("sweep", rows);
    }
    seeds.keep("sweep", "920.0\t\t20\t<\t\t\t\n2150.0\t3000.0\t\t\tdBm\toff\toff\n");
}

/** Files of sites, each short enough for the fuzzer's inputs: a visit with one measurement of which
    another part is told each time. */
void keep_sites(meter::Instrument& meter, SeedFolder& seeds) {
    const std::string id = "{\"id\":\"2f6a5f3e-6a0c-4f0c-9a57-0c8f6f1f7a1";
    const std::string instant = "{\"utc\":1795248000.5,\"offset\":3600}";
    const std::string level = without_blanks(payload(meter, "LEVANL?"));
    const std::string front = "{\"format\":\"m47-sites\",\"version\":1,\"sites\":[";
    seeds.keep("site_file", front + id + "0\",\"name\":\"Sole\",\"remarks\":\"\\u00e0\"}]}");
    for (const std::string& part :
         {"\"readings\":{\"level\":{\"value\":" + level + "}}", std::string("\"unit\":\"dBuV\""),
          std::string("\"readings\":{\"ber\":{\"value\":1e-8,\"mark\":\"<\"}}"),
          std::string("\"limits\":{\"mer\":{\"minimum\":8}}"),
          std::string("\"mode\":\"digital\",\"plan\":\"A\",\"program\":\"007\""),
          std::string("\"frequency\":11778,\"oscillator\":10600,\"verdict\":\"PASS\"")})
        seeds.keep("site_file", front + id + "0\",\"visits\":[" + id + "1\",\"begun\":" + instant +
                                    ",\"measurements\":[" + id + "2\",\"instant\":" + instant +
                                    ',' + part + "}]}]}]}");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: fuzz_seeds FOLDER\n", stderr);
        return 2;
    }
    meter::Instrument meter{meter::Options()};
    SeedFolder seeds{fs::path(argv[1])};
    keep_answers(meter, seeds);
    keep_measures(meter, seeds);
    keep_logger(meter, seeds);
    keep_satellites(meter, seeds);
    keep_plans(meter, seeds);
    keep_recordings(meter, seeds);
    keep_sweeps(meter, seeds);
    keep_sites(meter, seeds);
    return 0;
}
