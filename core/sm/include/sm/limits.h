#pragma once

namespace sm {

/// How long texts may be, in UTF-16 units. The model keeps longer ones that it is given or reads,
/// since nothing of a user's may be cut; who takes a text from a user refuses it.
constexpr int kMaxNameLength = 64; ///< Names and titles of components.
constexpr int kMaxNumberLength = 32;
constexpr int kMaxPropertyNameLength = 64;

} // namespace sm
