// SPDX-License-Identifier: GPL-3.0-or-later
#include "json_repeats.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace m47::sites {
namespace {

/// No object of a file of sites has as many; one that has is refused for what it has.
constexpr std::size_t kMostNames = 64;

/// Goes through the names of all objects. In JSON that can be read a text before a colon is one.
class NameScan {
  public:
    explicit NameScan(std::string_view json) : json_(json) {}

    std::optional<RepeatedMember> run() {
        for (; place_ < json_.size(); ++place_) {
            const char letter = json_[place_];
            if (letter == '{') objects_.emplace_back();
            if (letter == '}' && !objects_.empty()) objects_.pop_back();
            if (letter != '"') continue;
            const std::size_t begin = place_ + 1;
            const std::string_view text = rest_of_text();
            if (is_name() && !is_new(text))
                return RepeatedMember{
                    QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())),
                    static_cast<qsizetype>(begin)};
        }
        return std::nullopt;
    }

  private:
    /// To the quote that ends it.
    std::string_view rest_of_text() {
        const std::size_t begin = ++place_;
        for (; place_ < json_.size() && json_[place_] != '"'; ++place_)
            if (json_[place_] == '\\') ++place_;
        return json_.substr(begin, std::min(place_, json_.size()) - begin);
    }

    bool is_name() const {
        const std::size_t next = json_.find_first_not_of(" \t\r\n", place_ + 1);
        return next != std::string_view::npos && json_[next] == ':' && !objects_.empty();
    }

    bool is_new(std::string_view name) {
        std::vector<std::string_view>& names = objects_.back();
        if (std::ranges::find(names, name) != names.end()) return false;
        if (names.size() < kMostNames) names.push_back(name);
        return true;
    }

    std::string_view json_;
    std::size_t place_ = 0;
    std::vector<std::vector<std::string_view>> objects_;  ///< names of those that are open
};

}  // namespace

std::optional<RepeatedMember> repeated_member(const QByteArray& json) {
    return NameScan({json.constData(), static_cast<std::size_t>(json.size())}).run();
}

}  // namespace m47::sites
