#pragma once

// The sizes that the classification screens share.
namespace classification {

// Names of every level hold at most this many characters.
inline constexpr int NameLength = 25;
// The list of rows below the name box.
inline constexpr int ListHeight = 170;

} // namespace classification
