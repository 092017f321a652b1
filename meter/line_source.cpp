// SPDX-License-Identifier: GPL-3.0-or-later
#include "line_source.h"

namespace meter {

namespace {

constexpr std::size_t kBlock = std::size_t{64} << 10;

}  // namespace

void LineSource::seek(std::uint64_t offset) {
    file_.clear();
    file_.seekg(static_cast<std::streamoff>(offset));
    buffer_.clear();
    at_ = 0;
    buffer_offset_ = offset;
}

bool LineSource::read_on() {
    buffer_offset_ += at_;
    buffer_.erase(0, at_);
    at_ = 0;
    const std::size_t before = buffer_.size();
    buffer_.resize(before + kBlock);
    file_.read(buffer_.data() + before, static_cast<std::streamsize>(kBlock));
    buffer_.resize(before + static_cast<std::size_t>(file_.gcount()));
    return buffer_.size() > before;
}

bool LineSource::next(SourceLine& line) {
    line = {{}, buffer_offset_ + at_, true};
    std::size_t searched = 0;
    for (;;) {
        const auto end = buffer_.find('\n', at_ + searched);
        if (end != std::string::npos) {
            if (line.whole) line.text = std::string_view(buffer_).substr(at_, end - at_);
            at_ = end + 1;
            return true;
        }
        searched = buffer_.size() - at_;
        if (searched > longest_line) {
            line.whole = false;
            at_ = buffer_.size();
            searched = 0;
        }
        if (!read_on()) break;
    }
    const bool something = at_ < buffer_.size() || !line.whole;
    line.whole = false;
    at_ = buffer_.size();
    return something;
}

}  // namespace meter
