#pragma once

#include <cstddef>

namespace platform::keeper {

/// The hidden first argument by which a program of ours becomes a keeper.
inline constexpr const char *argument = "--keeper";

// What is told to a keeper: records of one byte that says what, one that says how many bytes follow, and
// those. A record is written at once and so short that no other one gets into it, whoever else writes.
inline constexpr char groupStartedWord = '+'; ///< a number in digits: the leader of the group
inline constexpr char groupEndedWord = '-';   ///< the same
inline constexpr char groupsRunOnWord = '~';  ///< all that were told of so far are to be left alone
inline constexpr char textWord = 't';         ///< a part of the text that the next of these records is about
inline constexpr char holdFileWord = 'f';     ///< path, 0, path of what keeps it, 0, content
inline constexpr char holdFolderWord = 'd';   ///< the same: the folder around it goes too
inline constexpr char letGoWord = 'l';        ///< path

inline constexpr std::size_t bytesOfHead = 2;
inline constexpr std::size_t mostBytesOfRecord = 250;

} // namespace platform::keeper
