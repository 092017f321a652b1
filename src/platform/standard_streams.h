// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace m47::platform {

/// The descriptors that every program starts with.
inline constexpr int kStandardOutput = 1;
inline constexpr int kStandardErrors = 2;

/// A file that is opened later must not come to be what a standard stream writes into. What is
/// closed is opened the wrong way round, so that using it fails.
void occupy_closed_streams();

/// True where somebody looks at what is written there.
bool is_terminal(int descriptor);

}  // namespace m47::platform
