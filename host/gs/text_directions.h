#pragma once

// Which way texts run, and which of their letters cannot be set one by one.

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "gs/fonts.h"

namespace gs {

/// Whether a letter may look or stand otherwise beside others: those that join, reorder or carry
/// marks, and those that are written from right to left. All others are set one by one.
bool isChangedByNeighbours(char32_t character);
bool isChangedByNeighbours(std::u32string_view text);
/// Joiners, marks of direction and the like: nothing is drawn of them.
bool isUnseen(char32_t character);
/// What stands in place of brackets and the like in texts that run from right to left.
char32_t mirrored(char32_t character);
/// Behind the letter at @p first and the marks that belong to it; at most @p end.
std::size_t endOfGroup(std::u32string_view text, std::size_t first, std::size_t end);
/// Letters of scripts that are written in one line from letter to letter.
bool isJoining(char32_t character);

/// The level of every character: odd ones run from right to left, higher ones within lower ones.
///
/// The line as a whole runs as its first letter does. Empty when all of it runs from left to right.
std::vector<std::uint8_t> levelsOf(std::u32string_view text);
/// The level of the line as a whole: 1 when it runs from right to left.
std::uint8_t levelOfLine(std::u32string_view text);
/// In which order things of these levels stand from left to right, by their numbers.
std::vector<std::uint32_t> visualOrder(std::span<const std::uint8_t> levels);
/// The stretches of a line from left to right. @param levels  what levelsOf() gives.
std::vector<TextStretch> stretchesOf(std::u32string_view text,
                                     std::span<const std::uint8_t> levels);

} // namespace gs
